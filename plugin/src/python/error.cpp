#include "python/error.hpp"

// frameobject.h and traceback.h are not part of Python.h.
#include <frameobject.h>
#include <traceback.h>

#include <exception>
#include <new>

namespace morvesk::python {

namespace {

/// The frame that a Python function of that name would have; none, and no error set, when there is no memory for it.
Ref makeFrame(const char* function, PyObject* globals, Where where) noexcept {
    if (globals == nullptr) return {};
    const auto code = Ref::steal(reinterpret_cast<PyObject*>(PyCode_NewEmpty(where.file, function, where.line)));
    auto frame =
        Ref::steal(code ? reinterpret_cast<PyObject*>(PyFrame_New(
                              PyThreadState_Get(), reinterpret_cast<PyCodeObject*>(code.get()), globals, nullptr))
                        : nullptr);
    if (!frame) PyErr_Clear();
    return frame;
}

void restoreWithEntry(Error& error, const char* function, PyObject* globals) noexcept {
    const auto frame = makeFrame(function, globals, error.where());
    error.restore();
    // Where there is no memory for the entry, that error takes the place of the one that it was meant for.
    if (frame) PyTraceBack_Here(reinterpret_cast<PyFrameObject*>(frame.get()));
}

}  // namespace

Error::Error(Where where) noexcept : where_(where) {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    type_ = Ref::steal(type);
    value_ = Ref::steal(value);
    traceback_ = Ref::steal(traceback);
}

Error::Error(PyObject* exceptionClass, const char* message, Where where) noexcept
    : Error((PyErr_SetString(exceptionClass, message), where)) {}

bool Error::matches(const Ref& exceptionClass) const noexcept {
    return PyErr_GivenExceptionMatches(type_.get(), exceptionClass.get()) != 0;
}

void Error::normalise() noexcept {
    PyObject* type = type_.release();
    PyObject* value = value_.release();
    PyObject* traceback = traceback_.release();
    PyErr_NormalizeException(&type, &value, &traceback);
    type_ = Ref::steal(type);
    value_ = Ref::steal(value);
    traceback_ = Ref::steal(traceback);
}

void Error::restore() noexcept {
    PyErr_Restore(type_.release(), value_.release(), traceback_.release());
}

void giveBack(const char* function, PyObject* globals, Where fallback) noexcept {
    try {
        throw;
    } catch (Error& error) {
        restoreWithEntry(error, function, globals);
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
        Error error(fallback);
        restoreWithEntry(error, function, globals);
    } catch (const std::exception& exception) {
        Error error(PyExc_RuntimeError, exception.what(), fallback);
        restoreWithEntry(error, function, globals);
    } catch (...) {
        Error error(PyExc_SystemError, "unknown C++ exception", fallback);
        restoreWithEntry(error, function, globals);
    }
}

}  // namespace morvesk::python
