/* An extension module that does nothing: what the loader itself costs. */
#define PY_SSIZE_T_CLEAN
#include <Python.h>

PyMODINIT_FUNC initMorvesk(void);

__attribute__((visibility("default"))) PyMODINIT_FUNC initMorvesk(void) {
    Py_InitModule("Morvesk", NULL);
}
