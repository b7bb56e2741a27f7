// References to the interpreter's objects: the only place where reference counts are touched.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <array>
#include <cstddef>
#include <utility>

namespace morvesk::python {

/// Owns one reference to an object, or none. Made from a raw pointer only by saying whose reference it is.
class Ref {
  public:
    Ref() noexcept = default;

    /// Takes over the reference that the caller holds (a "new reference" of the C API).
    static Ref steal(PyObject* object) noexcept { return Ref(object); }

    /// Adds a reference of its own (to a "borrowed reference" of the C API).
    static Ref borrow(PyObject* object) noexcept {
        Py_XINCREF(object);
        return Ref(object);
    }

    Ref(const Ref& other) noexcept : object_(other.object_) { Py_XINCREF(object_); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    // The analyser loses sight of the elements of a pair.
    ~Ref() {
        if (object_ != nullptr) drop(object_);  // NOLINT(clang-analyzer-core.UndefinedBinaryOperatorResult)
    }

    // By value: the old object is released last, when nothing refers to it through this reference any more.
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    PyObject* get() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Gives the reference to the caller.
    [[nodiscard]] PyObject* release() noexcept { return std::exchange(object_, nullptr); }

  private:
    explicit Ref(PyObject* object) noexcept : object_(object) {}

    // Not inline: every temporary ends here, and flash memory is short on a receiver.
    static void drop(PyObject* object) noexcept;

    PyObject* object_ = nullptr;
};

/// Owns references that stand side by side, the way in which the interpreter takes the arguments of a call.
class References {
  public:
    // A list row has five elements, and no call has more arguments.
    static constexpr std::size_t MOST = 5;

    References() noexcept = default;
    References(const References&) = delete;
    References& operator=(const References&) = delete;
    ~References();

    /// For MOST references at most.
    void push(Ref reference) noexcept { objects_[size_++] = reference.release(); }

    std::size_t size() const noexcept { return size_; }
    PyObject* const* begin() const noexcept { return objects_.data(); }
    PyObject* const* end() const noexcept { return objects_.data() + size_; }

    /// Gives all the references to the caller, who has read them.
    void release() noexcept { size_ = 0; }

  private:
    std::array<PyObject*, MOST> objects_;
    std::size_t size_ = 0;
};

}  // namespace morvesk::python
