#include "python/reference.hpp"

namespace morvesk::python {

void Ref::drop(PyObject* object) noexcept {
    Py_XDECREF(object);
}

}  // namespace morvesk::python
