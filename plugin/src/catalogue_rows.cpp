#include "catalogue_rows.hpp"

#include "python/strings.hpp"
#include "screen.hpp"
#include "text/catalogue.hpp"

namespace morvesk::catalogue {

using python::makeList;
using python::makeText;
using python::Module;
using python::Object;
using python::Ref;

namespace {

void appendEntry(const Ref& entries, const text::CatalogueEntry& entry) {
    const auto fields = python::makeStringTuple(entry.fields.data(), entry.fields.size());
    python::checked(PyList_Append(entries.get(), fields.get()));
}

Ref makeRow(const Object& entry, const screen::Picture& picture) {
    auto archive = entry.item(3).take();
    auto headline = makeText("%s - %s", {entry.item(0).take(), entry.item(1).take()});
    auto description = makeText("%s", {entry.item(2).take()});
    auto icon = picture.load().take();
    return python::makeTuple(
        {std::move(archive), std::move(headline), std::move(description), std::move(icon), entry.item(1).take()});
}

}  // namespace

Ref readEntries(const Object& catalogue) {
    auto entries = makeList();
    if (PyString_CheckExact(catalogue.get())) {
        text::CatalogueReader reader(catalogue.bytes("the catalogue"));
        while (const auto entry = reader.next()) {
            appendEntry(entries, *entry);
        }
        return entries;
    }
    for (const auto& line : python::Elements(catalogue)) {
        if (const auto entry = text::parseCatalogueLine(line.bytes("a line of the catalogue"))) {
            appendEntry(entries, *entry);
        }
    }
    return entries;
}

void appendRows(const Module& module, const Object& self, const Object& entries) {
    const screen::Picture picture(module, "sockets.png");
    for (const auto& entry : python::Elements(entries)) {
        self.attr(Name::list).append(makeRow(entry, picture));
    }
}

}  // namespace morvesk::catalogue
