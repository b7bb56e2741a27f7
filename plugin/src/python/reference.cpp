#include "python/reference.hpp"

namespace morvesk::python {

void Ref::drop(PyObject* object) noexcept {
    Py_XDECREF(object);
}

// The last first, as the interpreter does it after a call.
References::~References() {
    while (size_ > 0) {
        Ref::steal(objects_[--size_]);
    }
}

}  // namespace morvesk::python
