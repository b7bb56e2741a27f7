// The class statement: a class whose methods are functions of ours.
#pragma once

#include "python/module.hpp"

namespace morvesk::python {

/// What a class body holds for a method: on look-up it binds to the interpreter's own `instancemethod`, like a function
/// that is written in Python. The host's layout hooks take no other type.
///
/// `base` is the base of the class that the method is for.
Ref makeMethod(const Object& function, const Object& base, Where where = Where::here());

/// `class NAME(base)` with `body` as its namespace: calls the metaclass that the statement would call.
///
/// Raises what the metaclass raises, with the statement's own hint where `base` is not a class at all.
Object makeClass(const char* name, const Object& base, const Ref& body, Where where = Where::here());

}  // namespace morvesk::python
