// What can be handed to the interpreter: objects, C++ values that are made into objects, the arguments of a call.
//
// Arguments are made by a constructor and not as a braced list of values: before its version 12, GCC does not destroy
// the elements of such a list that were there already when a later one throws, and images are built with older ones.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "names.hpp"
#include "python/reference.hpp"

namespace morvesk::python {

/// The interned strings of the names, in the order of Name. They belong to the module, which outlives every call of its
/// functions.
class Names {
  public:
    Names() noexcept = default;
    explicit Names(PyObject* const* strings) noexcept : strings_(strings) {}

    PyObject* operator[](Name name) const noexcept { return strings_[static_cast<Py_ssize_t>(name)]; }

  private:
    PyObject* const* strings_ = nullptr;
};

class Object;

struct NoneType {};
inline constexpr NoneType NONE;

/// Anything that can be handed to the interpreter: an object, or a C++ value that is made into one.
class Value {
  public:
    Value(const Object& object) noexcept;
    Value(Ref ref) noexcept : ref_(std::move(ref)) {}
    Value(NoneType) noexcept;
    Value(bool value) noexcept;
    Value(const void*) = delete;  // any other pointer would become a bool
    Value(int value);
    Value(double value);
    Value(std::string_view bytes);
    Value(const std::string& bytes) : Value(std::string_view(bytes)) {}
    Value(const char* text) : Value(std::string_view(text)) {}

    const Ref& ref() const noexcept { return ref_; }
    PyObject* get() const noexcept { return ref_.get(); }
    Ref take() && noexcept { return std::move(ref_); }

  private:
    Ref ref_;
};

/// Positional arguments of a call, or the items of a tuple or a list: `{first, second}`.
class Arguments {
  public:
    template <typename... Values>
    Arguments(Values&&... values) {  // NOLINT(bugprone-forwarding-reference-overload): there are no copies
        static_assert(sizeof...(values) <= References::MOST);
        (references_.push(Value(std::forward<Values>(values)).take()), ...);
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() = default;

    std::size_t size() const noexcept { return references_.size(); }
    PyObject* const* begin() const noexcept { return references_.begin(); }
    PyObject* const* end() const noexcept { return references_.end(); }

    /// Gives the references to the caller, who has read them.
    void release() noexcept { references_.release(); }

  private:
    References references_;
};

/// Keyword arguments of a call, after each name its value: `{Name::cached, true}`.
class Keywords {
  public:
    static constexpr std::size_t MOST = 2;

    Keywords() noexcept = default;
    Keywords(Name name, Value value) noexcept { push(name, std::move(value)); }
    Keywords(Name first, Value firstValue, Name second, Value secondValue) noexcept {
        push(first, std::move(firstValue));
        push(second, std::move(secondValue));
    }

    std::size_t size() const noexcept { return values_.size(); }
    Name name(std::size_t index) const noexcept { return names_[index]; }
    PyObject* value(std::size_t index) const noexcept { return values_.begin()[index]; }

  private:
    void push(Name name, Value&& value) noexcept {
        names_[values_.size()] = name;
        values_.push(std::move(value).take());
    }

    std::array<Name, MOST> names_;
    References values_;
};

}  // namespace morvesk::python
