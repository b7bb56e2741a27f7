// The import statements, as a table that reads like them.
#pragma once

#include <array>

#include "python/module.hpp"

namespace morvesk::python {

/// One import statement: `import MODULE`, `from MODULE import NAME [as OTHER], ...` or `from MODULE import *`.
struct Import {
    struct Item {
        const char* name = nullptr;
        const char* as = nullptr;  // where that is another name; each pointer is work for the loader
    };
    enum class Form { Module, Items, Everything };

    const char* module;
    Form form;
    std::array<Item, 3> items;
    Where where;

    /// Runs the statement in the module's namespace, through the interpreter's `__import__`.
    ///
    /// Raises what the statement raises, ImportError above all.
    void run(const Module& target) const;
};

constexpr Import importModule(const char* module, Where where = Where::here()) {
    return {module, Import::Form::Module, {}, where};
}

constexpr Import importFromAs(const char* module, const char* name, const char* as, Where where = Where::here()) {
    return {module, Import::Form::Items, {{{name, as}}}, where};
}

constexpr Import importFrom(const char* module, const char* name, Where where = Where::here()) {
    return importFromAs(module, name, nullptr, where);
}

template <std::size_t Count>
constexpr Import importFrom(const char* module, const char* const (&names)[Count], Where where = Where::here()) {
    Import statement{module, Import::Form::Items, {}, where};
    for (std::size_t index = 0; index < Count; ++index) {
        statement.items[index].name = names[index];
    }
    return statement;
}

constexpr Import importEverythingFrom(const char* module, Where where = Where::here()) {
    return {module, Import::Form::Everything, {}, where};
}

}  // namespace morvesk::python
