/* What the parts of the extension module `floor` share. */
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

PyObject* floor_catalogue(PyObject* self, PyObject* arguments);
PyObject* floor_rows(PyObject* self, PyObject* arguments);
PyObject* floor_scan(PyObject* self, PyObject* arguments);
PyObject* floor_scan_lines(PyObject* self, PyObject* arguments);
PyObject* floor_rewrite(PyObject* self, PyObject* arguments);
PyObject* floor_merge(PyObject* self, PyObject* arguments);
PyObject* floor_measure(PyObject* self, PyObject* arguments);
PyObject* floor_time_outside(PyObject* self, PyObject* arguments);
PyObject* floor_call_host(PyObject* self, PyObject* arguments);

extern PyTypeObject floor_constant_type;
extern PyTypeObject floor_timed_type;

/* Seconds of processor time of this thread, user and system: what else the machine does does not count. */
double floor_processor_seconds(void);
