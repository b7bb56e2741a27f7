// Objects of the host, used the way Python code uses them: attributes and items by name, calls, truth, iteration. Each
// operation is the interpreter's own and throws Error where it raises.
#pragma once

#include <string_view>
#include <utility>

#include "python/error.hpp"
#include "python/value.hpp"

namespace morvesk::python {

class Append;

/// A reference to an object of the interpreter; empty where an optional argument was not given.
class Object {
  public:
    Object() noexcept = default;
    Object(Ref ref, Names names) noexcept : ref_(std::move(ref)), names_(names) {}

    const Ref& ref() const noexcept { return ref_; }
    Names names() const noexcept { return names_; }
    PyObject* get() const noexcept { return ref_.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(ref_); }
    [[nodiscard]] PyObject* release() noexcept { return ref_.release(); }
    Ref take() && noexcept { return std::move(ref_); }

    Object attr(Name name, Where where = Where::here()) const;
    void setAttr(Name name, const Value& value, Where where = Where::here()) const;

    Object item(const Value& key, Where where = Where::here()) const;
    Object item(int index, Where where = Where::here()) const {
        if (PyTuple_CheckExact(get()) && index >= 0 && index < PyTuple_GET_SIZE(get())) {
            return {Ref::borrow(PyTuple_GET_ITEM(get(), index)), names_};
        }
        return item(Value(index), where);
    }
    void setItem(const Value& key, const Value& value, Where where = Where::here()) const;

    /// Calls the object. Arguments are evaluated from left to right, after the object that is called, as Python does;
    /// but which of the two lists comes first is the compiler's choice, so at most one may hold what does something.
    Object operator()(Arguments&& arguments = {}, Where where = Where::here()) const;
    Object operator()(Arguments&& arguments, const Keywords& keywords, Where where = Where::here()) const;

    /// `self.name()`
    Object call(Name name, Where where = Where::here()) const;

    bool isNone() const noexcept { return ref_.get() == Py_None; }
    bool truth(Where where = Where::here()) const;
    bool equals(const Value& other, Where where = Where::here()) const;
    Py_ssize_t length(Where where = Where::here()) const;

    /// `self + other`
    Object plus(const Value& other, Where where = Where::here()) const;

    /// `str(self)`
    Object str(Where where = Where::here()) const;

    /// A list of what iteration over the object yields at this moment; itself if it is a list that nobody else holds.
    Object snapshot(Where where = Where::here()) const;

    /// `first, second = self`
    std::pair<Object, Object> unpackPair(Where where = Where::here()) const;

    /// `self.append`, for as long as the object is there.
    Append append(Where where = Where::here()) const;

    /// The bytes of a `str`, which must outlive their use.
    ///
    /// Raises TypeError for any other object: "WHAT must be a str, not TYPE".
    std::string_view bytes(const char* what, Where where = Where::here()) const;

  private:
    Ref ref_;
    Names names_;
};

/// A list's `append`: looked up before what is appended is made, as in Python code. That of a true list is known.
class Append {
  public:
    Append(const Object& list, Where where) : list_(list), where_(where) {
        if (!isTrueList()) method_ = list.attr(Name::append, where);
    }

    void operator()(const Value& value) const {
        if (isTrueList()) {
            checked(PyList_Append(list_.get(), value.get()), where_);
        } else {
            method_({value.ref()}, where_);
        }
    }

  private:
    bool isTrueList() const noexcept { return PyList_CheckExact(list_.get()); }

    const Object& list_;
    Object method_;
    Where where_;
};

inline Append Object::append(Where where) const {
    return {*this, where};
}

/// `for element in iterable`, for a range-based for loop.
class Elements {
  public:
    explicit Elements(const Object& iterable, Where where = Where::here());

    class Iterator {
      public:
        Iterator(const Elements* elements, Object current) : elements_(elements), current_(std::move(current)) {}
        const Object& operator*() const { return current_; }
        Iterator& operator++() {
            current_ = elements_->next();
            return *this;
        }
        // Only ever compared with the end, which has no element.
        bool operator!=(const Iterator&) const { return static_cast<bool>(current_); }

      private:
        const Elements* elements_;
        Object current_;
    };

    Iterator begin() const { return {this, next()}; }
    Iterator end() const { return {this, {}}; }

  private:
    Object next() const;

    Ref iterator_;
    Names names_;
    Where where_;
};

Ref makeTuple(Arguments&& items, Where where = Where::here());
Ref makeList(Arguments&& items = {}, Where where = Where::here());

/// `print text`: to whatever `sys.stdout` is at this moment.
void print(const char* text, Where where = Where::here());

}  // namespace morvesk::python
