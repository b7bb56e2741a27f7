#include "python/object.hpp"

#include <algorithm>

namespace morvesk::python {

Value::Value(const Object& object) noexcept : ref_(object.ref()) {}

Value::Value(NoneType) noexcept : ref_(Ref::borrow(Py_None)) {}

Value::Value(bool value) noexcept : ref_(Ref::borrow(value ? Py_True : Py_False)) {}

Value::Value(int value) : ref_(checked(PyInt_FromLong(value))) {}

Value::Value(double value) : ref_(checked(PyFloat_FromDouble(value))) {}

Value::Value(std::string_view bytes)
    : ref_(checked(PyString_FromStringAndSize(bytes.data(), static_cast<Py_ssize_t>(bytes.size())))) {}

Object Object::attr(Name name, Where where) const {
    return {checked(PyObject_GetAttr(get(), names_[name]), where), names_};
}

void Object::setAttr(Name name, const Value& value, Where where) const {
    checked(PyObject_SetAttr(get(), names_[name], value.get()), where);
}

Object Object::item(const Value& key, Where where) const {
    return {checked(PyObject_GetItem(get(), key.get()), where), names_};
}

void Object::setItem(const Value& key, const Value& value, Where where) const {
    checked(PyObject_SetItem(get(), key.get(), value.get()), where);
}

Object Object::operator()(Arguments&& arguments, Where where) const {
    return operator()(std::move(arguments), {}, where);
}

Object Object::call(Name name, Where where) const {
    return attr(name, where)({}, where);
}

bool Object::truth(Where where) const {
    return checked(PyObject_IsTrue(get()), where) != 0;
}

bool Object::equals(const Value& other, Where where) const {
    const auto result = checked(PyObject_RichCompare(get(), other.get(), Py_EQ), where);
    return checked(PyObject_IsTrue(result.get()), where) != 0;
}

Py_ssize_t Object::length(Where where) const {
    return checked(PyObject_Size(get()), where);
}

Object Object::plus(const Value& other, Where where) const {
    return {checked(PyNumber_Add(get(), other.get()), where), names_};
}

Object Object::str(Where where) const {
    return {checked(PyObject_Str(get()), where), names_};
}

Object Object::snapshot(Where where) const {
    const bool isNobodyElses = PyList_CheckExact(get()) && Py_REFCNT(get()) == 1;
    if (isNobodyElses) return *this;
    return {checked(PySequence_List(get()), where), names_};
}

std::pair<Object, Object> Object::unpackPair(Where where) const {
    if (PyTuple_CheckExact(get()) && PyTuple_GET_SIZE(get()) == 2) return {item(0, where), item(1, where)};
    const auto iterator = checked(PyObject_GetIter(get()), where);
    const auto next = [&](const char* whenNone) -> Ref {
        if (auto element = Ref::steal(PyIter_Next(iterator.get()))) return element;
        if (PyErr_Occurred() != nullptr) throw Error(where);
        if (whenNone != nullptr) throw Error(PyExc_ValueError, whenNone, where);
        return {};
    };
    auto first = next("need more than 0 values to unpack");
    auto second = next("need more than 1 value to unpack");
    if (next(nullptr)) throw Error(PyExc_ValueError, "too many values to unpack", where);
    return {{std::move(first), names_}, {std::move(second), names_}};
}

std::string_view Object::bytes(const char* what, Where where) const {
    if (!PyString_Check(get())) {
        PyErr_Format(PyExc_TypeError, "%s must be a str, not %.200s", what, Py_TYPE(get())->tp_name);
        throw Error(where);
    }
    return {PyString_AS_STRING(get()), static_cast<std::size_t>(PyString_GET_SIZE(get()))};
}

Elements::Elements(const Object& iterable, Where where)
    : iterator_(checked(PyObject_GetIter(iterable.get()), where)), names_(iterable.names()), where_(where) {}

Object Elements::next() const {
    auto element = Ref::steal(PyIter_Next(iterator_.get()));
    if (!element && PyErr_Occurred() != nullptr) throw Error(where_);
    return {std::move(element), names_};
}

Ref makeList(Arguments&& items, Where where) {
    auto list = checked(PyList_New(static_cast<Py_ssize_t>(items.size())), where);
    std::copy(items.begin(), items.end(), reinterpret_cast<PyListObject*>(list.get())->ob_item);
    items.release();
    return list;
}

namespace {

Ref standardOutput(Where where) {
    auto output = Ref::borrow(PySys_GetObject(const_cast<char*>("stdout")));
    if (!output && PyErr_Occurred() != nullptr) throw Error(where);
    if (!output) throw Error(PyExc_RuntimeError, "lost sys.stdout", where);
    return output;
}

}  // namespace

// The two halves of the statement look sys.stdout up by themselves, since writing the text may replace it.
void print(const char* text, Where where) {
    const Value item(text);
    const auto output = standardOutput(where);
    if (PyFile_SoftSpace(output.get(), 0) != 0) checked(PyFile_WriteString(" ", output.get()), where);
    checked(PyFile_WriteObject(item.get(), output.get(), Py_PRINT_RAW), where);
    PyFile_SoftSpace(output.get(), 1);

    const auto lineOutput = standardOutput(where);
    checked(PyFile_WriteString("\n", lineOutput.get()), where);
    PyFile_SoftSpace(lineOutput.get(), 0);
}

}  // namespace morvesk::python
