// Calls of the host's functions.
#pragma once

#include "python/object.hpp"

namespace morvesk::python {

/// Calls `callable` as a call in Python code does. Returns null, with the interpreter's error set, where it raised;
/// throws Error where the arguments could not be handed over.
///
/// A function that is written in Python, as nearly all of the host's are, gets its arguments without a tuple and a dict
/// around them, as it would from Python code.
PyObject* call(PyObject* callable, Arguments&& arguments, const Keywords& keywords, Names names, Where where);

}  // namespace morvesk::python
