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
    std::array<Item, 3> items;
    Form form;
    int line;

    /// Runs the statement, which stands in this file, in the module's namespace, through the interpreter's
    /// `__import__`.
    ///
    /// Raises what the statement raises, ImportError above all.
    void run(const Module& target, const char* file) const;
};

constexpr Import importModule(const char* module, int line = __builtin_LINE()) {
    return {module, {}, Import::Form::Module, line};
}

constexpr Import importFromAs(const char* module, const char* name, const char* as, int line = __builtin_LINE()) {
    return {module, {{{name, as}}}, Import::Form::Items, line};
}

constexpr Import importFrom(const char* module, const char* name, int line = __builtin_LINE()) {
    return importFromAs(module, name, nullptr, line);
}

template <std::size_t Count>
constexpr Import importFrom(const char* module, const char* const (&names)[Count], int line = __builtin_LINE()) {
    Import statement{module, {}, Import::Form::Items, line};
    for (std::size_t index = 0; index < Count; ++index) {
        statement.items[index].name = names[index];
    }
    return statement;
}

constexpr Import importEverythingFrom(const char* module, int line = __builtin_LINE()) {
    return {module, {}, Import::Form::Everything, line};
}

}  // namespace morvesk::python
