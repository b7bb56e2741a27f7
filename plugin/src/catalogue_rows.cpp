#include "catalogue_rows.hpp"

#include <algorithm>

#include "picture.hpp"
#include "python/strings.hpp"
#include "text/catalogue.hpp"

namespace morvesk::catalogue {

using python::makeList;
using python::makeText;
using python::Module;
using python::Object;
using python::Ref;

namespace {

// Of a body that is longer than that.
constexpr std::size_t PIECE = 1 << 20;

void appendEntry(const Ref& entries, const text::CatalogueEntry& entry) {
    const auto fields = python::makeStringTuple(entry.fields.data(), entry.fields.size());
    python::checked(PyList_Append(entries.get(), fields.get()));
}

void readLines(const Ref& entries, std::string_view lines) {
    text::CatalogueReader reader(lines);
    while (const auto entry = reader.next()) {
        appendEntry(entries, *entry);
    }
}

void reverse(const Ref& list, Py_ssize_t from) {
    PyObject** const items = reinterpret_cast<PyListObject*>(list.get())->ob_item;
    std::reverse(items + from, items + PyList_GET_SIZE(list.get()));
}

/// Reads a long body piece by piece from its end, and gives the memory of each piece back before it reads the next one:
/// while the entries take more and more, the body takes less and less.
void readBody(const Ref& entries, Ref body) {
    for (std::size_t start = 1; start > 0;) {
        const std::string_view bytes(PyString_AS_STRING(body.get()),
                                     static_cast<std::size_t>(PyString_GET_SIZE(body.get())));
        const auto lineEnd = bytes.size() <= PIECE ? std::string_view::npos : bytes.rfind('\n', bytes.size() - PIECE);
        start = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
        const auto known = PyList_GET_SIZE(entries.get());
        readLines(entries, bytes.substr(start));
        reverse(entries, known);
        body = python::shortened(std::move(body), start);
    }
    reverse(entries, 0);
}

/// `"%s" % (value,)`: a string is its own text.
Ref asText(Object value) {
    return PyString_CheckExact(value.get()) ? std::move(value).take() : makeText("%s", {std::move(value).take()});
}

Ref makeRow(const Object& entry, const Picture& picture) {
    auto archive = entry.item(3).take();
    auto headline = makeText("%s - %s", {entry.item(0).take(), entry.item(1).take()});
    auto description = asText(entry.item(2));
    auto icon = picture.load().take();
    return python::untracked(python::makeTuple(
        {std::move(archive), std::move(headline), std::move(description), std::move(icon), entry.item(1).take()}));
}

}  // namespace

Ref readEntries(Object catalogue) {
    auto entries = makeList();
    if (PyString_CheckExact(catalogue.get())) {
        const auto bytes = catalogue.bytes("the catalogue");
        if (bytes.size() > PIECE && python::isNobodyElses(catalogue.ref())) {
            readBody(entries, std::move(catalogue).take());
        } else {
            readLines(entries, bytes);
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
    const Picture picture(module, "sockets.png");
    for (const auto& entry : python::Elements(entries)) {
        self.attr(Name::list).append()(makeRow(entry, picture));
    }
}

}  // namespace morvesk::catalogue
