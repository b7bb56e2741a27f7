/* The extension module `floor`: the least work that any implementation must do, and what measures. */
#include "floor.h"

static PyMethodDef functions[] = {
    {"catalogue", floor_catalogue, METH_VARARGS,
     "catalogue(body, places, ordinary): the entries at these places of the body."},
    {"scan", floor_scan, METH_VARARGS, "scan(body): one pass of memchr over the body."},
    {"scan_lines", floor_scan_lines, METH_VARARGS, "scan_lines(body): a pass of memchr from line end to line end."},
    {"rows", floor_rows, METH_VARARGS, "rows(entries, picture, ordinary): the list's rows."},
    {"call_host", floor_call_host, METH_VARARGS,
     "call_host(names, keys, relative, count): the host calls of the rows."},
    {"rewrite", floor_rewrite, METH_VARARGS, "rewrite(path, content): reads and writes a file once."},
    {"merge", floor_merge, METH_VARARGS, "merge(lists, triples, root, content): the system calls of a merge."},
    {"measure", floor_measure, METH_VARARGS, "measure(work, count): processor time of the calls, and their results."},
    {"time_outside", floor_time_outside, METH_VARARGS,
     "time_outside(work): time outside of the host, and of the whole."},
    {NULL, NULL, 0, NULL},
};

PyMODINIT_FUNC initfloor(void);

__attribute__((visibility("default"))) PyMODINIT_FUNC initfloor(void) {
    if (PyType_Ready(&floor_constant_type) < 0 || PyType_Ready(&floor_timed_type) < 0) return;
    PyObject* const module = Py_InitModule("floor", functions);
    if (module == NULL) return;
    Py_INCREF(&floor_constant_type);
    PyModule_AddObject(module, "Constant", (PyObject*)&floor_constant_type);
    Py_INCREF(&floor_timed_type);
    PyModule_AddObject(module, "Timed", (PyObject*)&floor_timed_type);
}
