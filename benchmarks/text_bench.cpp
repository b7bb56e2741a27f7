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
    const std::string line = morvesk::text::reference(RootType::Tv, "userbouquet.favourites.tv") + "\n";
    for ([[maybe_unused]] auto round : state) {
        const auto name = morvesk::text::quotedName(line);
        benchmark::DoNotOptimize(morvesk::text::namesUserBouquet(name, ".tv"));
    }
}
BENCHMARK(rootLine);

void rootFile(benchmark::State& state) {
    const auto line = morvesk::text::reference(RootType::Tv, "userbouquet.favourites.tv") + "\n";
    const auto added = morvesk::text::reference(RootType::Tv, "userbouquet.new.tv");
    for ([[maybe_unused]] auto round : state) {
        RootFile root;
        for (std::int64_t number = 0; number < state.range(0); ++number) {
            root.addLine(line);
        }
        for (std::int64_t number = 0; number < state.range(0) / 10; ++number) {
            if (!root.holds(added)) root.addReference(added);
        }
        benchmark::DoNotOptimize(root.content().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(rootFile)->Arg(SHORT)->Arg(LONG);

}  // namespace
