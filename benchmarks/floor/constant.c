/* A callable that answers every call with the same object: a call of the host that costs next to nothing. */
#include "floor.h"

typedef struct {
    PyObject_HEAD PyObject* answer;
} Constant;

static PyObject* constant_new(PyTypeObject* type, PyObject* arguments, PyObject* keywords) {
    PyObject* answer;
    (void)keywords;
    if (!PyArg_ParseTuple(arguments, "O", &answer)) return NULL;
    Constant* const constant = (Constant*)type->tp_alloc(type, 0);
    if (constant == NULL) return NULL;
    Py_INCREF(answer);
    constant->answer = answer;
    return (PyObject*)constant;
}

static void constant_dealloc(PyObject* self) {
    Py_XDECREF(((Constant*)self)->answer);
    Py_TYPE(self)->tp_free(self);
}

static PyObject* constant_call(PyObject* self, PyObject* arguments, PyObject* keywords) {
    PyObject* const answer = ((Constant*)self)->answer;
    (void)arguments;
    (void)keywords;
    Py_INCREF(answer);
    return answer;
}

PyTypeObject floor_constant_type = {
    PyVarObject_HEAD_INIT(NULL, 0).tp_name = "floor.Constant",
    .tp_basicsize = sizeof(Constant),
    .tp_dealloc = constant_dealloc,
    .tp_call = constant_call,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_doc = "Constant(answer): takes any arguments and gives the answer.",
    .tp_new = constant_new,
};
