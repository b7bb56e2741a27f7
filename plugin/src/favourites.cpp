#include "favourites.hpp"

#include "installation.hpp"
#include "python/strings.hpp"
#include "text/root_file.hpp"
#include "text/root_line.hpp"

namespace morvesk::favourites {

using python::Elements;
using python::Error;
using python::makeList;
using python::makeText;
using python::makeTuple;
using python::NONE;

namespace {

/// A kind of user bouquets: the word for it, its root file in an unpacked list, and the suffix of its files.
struct Kind {
    const char* word;
    const char* rootFile;
    std::string_view suffix;
};

constexpr const char* LAMEDB = "/lamedb";
constexpr const char* LINE = "a line of a root file";

constexpr Kind TV = {"tv", "/bouquets.tv", ".tv"};
constexpr Kind RADIO = {"radio", "/bouquets.radio", ".radio"};

Object currentTimeStamp(const Module& module) {
    const auto fromTimeStamp = module.global(Name::datetime).attr(Name::datetime).attr(Name::fromtimestamp);
    const auto now = fromTimeStamp({module.global(Name::time).call(Name::time)});
    return now.attr(Name::strftime)({"%Y-%m-%d_%H-%M-%S"});
}

Object pathFunction(const Module& module, Name name) {
    return module.global(Name::os).attr(Name::path).attr(name);
}

/// `with open(path, "r") as file: lines = file.readlines()`
Object readLines(const Module& module, const Object& path) {
    const auto file = module.open()({path, "r"});
    const auto leave = file.attr(Name::exit);
    const auto entered = file.call(Name::enter);
    Object lines;
    try {
        lines = entered.call(Name::readlines);
    } catch (Error& error) {
        error.normalise();
        leave({error.type(), error.value(), error.traceback() ? python::Value(error.traceback()) : NONE});
        throw;
    }
    leave({NONE, NONE, NONE});
    return lines;
}

/// The name under which a user bouquet is stored: its own, or one with the time stamp where that is taken.
Object targetName(const Module& module, const Object& self, const Object& name, const Kind& kind,
                  const Object& timeStamp) {
    if (!pathFunction(module, Name::exists)({self.attr(Name::dest_dir).plus(name)}).truth()) return name;
    auto stem = name.bytes("the name of a user bouquet");
    stem.remove_suffix(kind.suffix.size());
    return module.object(stem).plus(timeStamp).plus(kind.suffix);
}

/// The user bouquets that the unpacked list's root file names and brings along, as pairs (source, target).
Object collect(const Module& module, const Object& self, const Kind& kind, const Object& timeStamp) {
    auto found = module.object(makeList());
    const auto lines = readLines(module, self.attr(Name::tmp_path).plus(kind.rootFile));
    for (const auto& line : Elements(lines)) {
        const auto quoted = text::quotedName(line.bytes(LINE));
        if (!text::namesUserBouquet(quoted, kind.suffix)) continue;
        const auto name = module.object(quoted);
        if (!pathFunction(module, Name::exists)({self.attr(Name::tmp_path).plus("/").plus(name)}).truth()) continue;
        found.append()(makeTuple({name, targetName(module, self, name, kind, timeStamp)}));
    }
    return found;
}

/// Puts the list's services and transponders on top of the receiver's own and saves the union.
void mergeDatabase(const Module& module, const Object& self) {
    const auto database = module.global(Name::eDVBDB).call(Name::getInstance);
    database.call(Name::reloadServicelist);
    database.attr(Name::loadServicelist)({self.attr(Name::tmp_path).plus(LAMEDB)});
    database.call(Name::saveServicelist);
}

/// The lines of the root file, or nothing where there is none yet.
Object readRootFile(const Module& module, const Object& path) {
    if (!module.global(Name::fileExists)({path}).truth()) return {};
    return readLines(module, path).snapshot();
}

/// A root file of these lines, which must outlive it.
text::RootFile rootFileOf(const Object& lines, text::RootType type) {
    text::RootFile root(type);
    if (lines) {
        python::forEachString(lines, LINE, [&](std::string_view line) { root.addLine(line); });
    } else {
        for (const auto line : text::freshRootLines(type)) {
            root.addLine(line);
        }
    }
    return root;
}

void addBouquet(const Module& module, const Object& self, text::RootFile& root, const Object& favourite) {
    const auto [source, target] = favourite.unpackPair();
    const auto name = target.str();
    if (!root.addReference(name.bytes("the name of a user bouquet"))) return;
    module.global(Name::shutil)
        .attr(Name::copy2)({self.attr(Name::tmp_path).plus("/").plus(source), self.attr(Name::dest_dir).plus(target)});
}

}  // namespace

Object installNewFavourites(const Module& module, const Object& self, const Object& append) {
    const auto answer = append ? append : module.object(makeTuple({"NONE", true}));
    if (answer.truth() && answer.item(1).truth()) {
        self.call(Name::mergeNewFavourites);
        self.attr(Name::copy_finished)({self, 0, 0});
    } else if (answer.truth()) {
        installation::overwrite(self);
    } else {
        self.call(Name::init_vars);
    }
    return module.object(NONE);
}

Object mergeNewFavourites(const Module& module, const Object& self) {
    self.setAttr(Name::dest_dir, module.global(Name::resolveFilename)({module.global(Name::SCOPE_CONFIG)}));
    const auto timeStamp = currentTimeStamp(module);
    const auto television = collect(module, self, TV, timeStamp);
    const auto radio = collect(module, self, RADIO, timeStamp);

    if (television.truth()) self.attr(Name::writeBouquetFiles)({TV.word, television});
    if (radio.truth()) self.attr(Name::writeBouquetFiles)({RADIO.word, radio});

    if (pathFunction(module, Name::isfile)({self.attr(Name::tmp_path).plus(LAMEDB)}).truth()) {
        mergeDatabase(module, self);
    }
    module.global(Name::eDVBDB).call(Name::getInstance).call(Name::reloadBouquets);
    return module.object(NONE);
}

Object writeBouquetFiles(const Module& module, const Object& self, const Object& rootType, const Object& favourites) {
    const auto config = module.global(Name::resolveFilename)({module.global(Name::SCOPE_CONFIG)});
    const auto path = module.object(makeText("%sbouquets.%s", {config, rootType}));
    const auto type = rootType.equals("radio") ? text::RootType::Radio : text::RootType::Tv;

    const auto lines = readRootFile(module, path);
    auto root = rootFileOf(lines, type);
    for (const auto& favourite : Elements(favourites)) {
        addBouquet(module, self, root, favourite);
    }

    const auto file = module.open()({path, "w"});
    file.attr(Name::write)({python::makeString(root.room(), [&](char* bytes) { return root.write(bytes); })});
    file.call(Name::close);
    return module.object(NONE);
}

}  // namespace morvesk::favourites
