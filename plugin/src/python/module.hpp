// The module's namespace as its functions see it: global names, the built-in `open`, the names' own strings.
//
// A function of ours carries its module along, as a Python function carries its globals, so that nothing is kept in
// static variables. What it carries is one tuple, which the interpreter's collector can look into: (module, open, the
// strings of the names...). The interpreter loads a file only once, though: whoever imports it again, under another
// name or in a sub-interpreter, gets a copy of the namespace with the functions of the first one, which go on using the
// first one's names.
#pragma once

#include <string_view>

#include "names.hpp"
#include "python/object.hpp"

namespace morvesk::python {

class Module {
  public:
    /// What make() made, as a function of ours gets it back.
    explicit Module(PyObject* state) noexcept : state_(state) {}

    /// The state for a new module.
    ///
    /// Raises NameError where the interpreter's built-ins have no `open`.
    static Ref make(PyObject* module, Where where = Where::here());

    PyObject* state() const noexcept { return state_; }
    PyObject* dict() const noexcept { return PyModule_GetDict(PyTuple_GET_ITEM(state_, MODULE)); }
    Names names() const noexcept { return Names(&PyTuple_GET_ITEM(state_, NAMES)); }

    /// The value of a global name at this moment: the module's own, else the interpreter's built-in.
    ///
    /// Raises NameError, in the words of a Python function.
    Object global(Name name, Where where = Where::here()) const;

    /// What the interpreter's built-ins have under that name at this moment; empty where they have nothing.
    Object builtin(Name name) const;

    /// The built-in `open` as it was when the module was loaded.
    Object open() const;

    /// The text in the owner's language, through the host's translation function `_`.
    Object translate(std::string_view text, Where where = Where::here()) const;

    Object object(const Value& value) const { return {value.ref(), names()}; }

  private:
    enum Slot { MODULE, OPEN, NAMES };

    PyObject* state_;
};

}  // namespace morvesk::python
