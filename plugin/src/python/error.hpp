// The interpreter's errors on their way through C++: taken once where a call fails, given back once at the boundary to
// the interpreter, with a traceback entry for the function that they leave.
#pragma once

#include "python/reference.hpp"

namespace morvesk::python {

/// A place in our source; as a default argument, the place of the call.
struct Where {
    const char* file;
    int line;

    static constexpr Where here(const char* file = __builtin_FILE(), int line = __builtin_LINE()) noexcept {
        return {file, line};
    }
};

/// The interpreter's current error. While one of these exists the interpreter itself has no error set.
class Error {
  public:
    /// Takes the error that the interpreter has set.
    explicit Error(Where where) noexcept;

    /// A new error of the given exception class.
    Error(PyObject* exceptionClass, const char* message, Where where) noexcept;

    Error(Error&&) noexcept = default;
    Error(const Error&) = delete;
    Error& operator=(Error&&) = delete;
    Error& operator=(const Error&) = delete;
    ~Error() = default;

    /// Whether an `except` clause with `exceptionClass` (a class or a tuple of them) would catch it.
    bool matches(const Ref& exceptionClass) const noexcept;

    /// Makes the value an instance of the exception's class, as entering an `except` clause does.
    void normalise() noexcept;

    /// Puts another value in the place of the error's own; its traceback stays.
    void replaceValue(Ref value) noexcept { value_ = std::move(value); }

    const Ref& type() const noexcept { return type_; }
    const Ref& value() const noexcept { return value_; }
    const Ref& traceback() const noexcept { return traceback_; }
    Where where() const noexcept { return where_; }

    /// Sets the error in the interpreter again.
    void restore() noexcept;

  private:
    Ref type_;
    Ref value_;
    Ref traceback_;
    Where where_;
};

/// A new reference that a call of the C API returned; where it returned none, throws the error that the call has set.
inline Ref checked(PyObject* object, Where where = Where::here()) {
    if (object == nullptr) throw Error(where);
    return Ref::steal(object);
}

/// The same for a call that returns a borrowed reference.
inline Ref checkedBorrowed(PyObject* object, Where where = Where::here()) {
    if (object == nullptr) throw Error(where);
    return Ref::borrow(object);
}

/// The result of a call of the C API that reports failure as -1; throws the error that the call has set.
template <typename Integer>
Integer checked(Integer result, Where where = Where::here()) {
    if (result == Integer{-1}) throw Error(where);
    return result;
}

/// Sets the exception that is being handled as the interpreter's error, with a traceback entry for `function` whose
/// global names are `globals`. To be called from a catch clause that catches everything.
void giveBack(const char* function, PyObject* globals, Where fallback) noexcept;

}  // namespace morvesk::python
