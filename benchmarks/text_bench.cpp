// Micro-benchmarks of the text core, without an interpreter around it.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "text/catalogue.hpp"
#include "text/feed_address.hpp"
#include "text/root_file.hpp"
#include "text/root_line.hpp"

namespace {

using morvesk::text::CatalogueReader;
using morvesk::text::RootFile;
using morvesk::text::RootType;

constexpr std::string_view REFERENCE =
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.tv\" ORDER BY bouquet\n";
constexpr int SHORT = 100;
constexpr int LONG = 10000;

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t number = 0; number < count; ++number) {
        all += text;
    }
    return all;
}

void readCatalogue(benchmark::State& state, std::string_view line) {
    const auto body = repeated(line, static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto round : state) {
        CatalogueReader reader(body);
        while (const auto entry = reader.next()) {
            benchmark::DoNotOptimize(entry->fields.data());
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(body.size()));
}

void catalogueOfEntries(benchmark::State& state) {
    readCatalogue(state,
                  "Falkenauge ::: 2023-11-04 ::: Motor 28.2E 30.0W, 5000 services ::: falkenauge/motor.tar.gz\n");
}
BENCHMARK(catalogueOfEntries)->Arg(SHORT)->Arg(LONG);

void catalogueOfRubbish(benchmark::State& state) {
    readCatalogue(state, "# a comment of the usual length\n\nFalkenauge ::: 2023-11-04 ::: no archive here\n");
}
BENCHMARK(catalogueOfRubbish)->Arg(SHORT)->Arg(LONG);

void feedAddress(benchmark::State& state) {
    const std::string line = "src/gz Qel-all http://feeds.example.org/images/5.1/receiver/all\n";
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(morvesk::text::downloadArea(line));
    }
}
BENCHMARK(feedAddress);

void rootLine(benchmark::State& state) {
    for ([[maybe_unused]] auto round : state) {
        const auto name = morvesk::text::quotedName(REFERENCE);
        benchmark::DoNotOptimize(morvesk::text::namesUserBouquet(name, ".tv"));
    }
}
BENCHMARK(rootLine);

void rootFile(benchmark::State& state) {
    for ([[maybe_unused]] auto round : state) {
        RootFile root(RootType::Tv);
        for (std::int64_t number = 0; number < state.range(0); ++number) {
            root.addLine(REFERENCE);
        }
        for (std::int64_t number = 0; number < state.range(0) / 10; ++number) {
            root.addReference("userbouquet.new.tv");
        }
        std::string content(root.room(), '\0');
        content.resize(root.write(content.data()));
        benchmark::DoNotOptimize(content.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(rootFile)->Arg(SHORT)->Arg(LONG);

}  // namespace
