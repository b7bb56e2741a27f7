/* The least that any catalogue reader must do: make the result's objects, from fields whose places are known already.
 */
#include <stdint.h>
#include <string.h>

#include "floor.h"

enum { FIELDS = 4 };

/* Where a field lies in the body. */
typedef struct {
    uint32_t start;
    uint32_t size;
} Field;

/* Strings refer to nothing, so that the collector of cycles need not look at an entry; it would take one that is made
 * in the ordinary way out of its sight when it first came by. */
static PyObject* make_entry(const char* body, const Field* fields, int ordinary) {
    PyObject* const entry = PyTuple_New(FIELDS);
    if (entry == NULL) return NULL;
    for (Py_ssize_t index = 0; index < FIELDS; ++index) {
        PyObject* const text = PyString_FromStringAndSize(body + fields[index].start, (Py_ssize_t)fields[index].size);
        if (text == NULL) {
            Py_DECREF(entry);
            return NULL;
        }
        PyTuple_SET_ITEM(entry, index, text);
    }
    if (!ordinary) PyObject_GC_UnTrack(entry);
    return entry;
}

/* catalogue(body, places, ordinary): the list of entries; `places` holds the Fields, four an entry, as a
 * string. */
PyObject* floor_catalogue(PyObject* self, PyObject* arguments) {
    const char* body;
    const Field* fields;
    Py_ssize_t body_size;
    Py_ssize_t fields_size;
    int ordinary;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "s#s#i", &body, &body_size, &fields, &fields_size, &ordinary)) return NULL;
    const Py_ssize_t count = fields_size / (Py_ssize_t)(FIELDS * sizeof(Field));
    PyObject* const entries = PyList_New(count);
    if (entries == NULL) return NULL;
    for (Py_ssize_t index = 0; index < count; ++index) {
        PyObject* const entry = make_entry(body, fields + index * FIELDS, ordinary);
        if (entry == NULL) {
            Py_DECREF(entries);
            return NULL;
        }
        PyList_SET_ITEM(entries, index, entry);
    }
    return entries;
}

/* scan(body): one pass of memchr over the body, for a byte that it does not hold. */
PyObject* floor_scan(PyObject* self, PyObject* arguments) {
    const char* body;
    Py_ssize_t size;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "s#", &body, &size)) return NULL;
    return PyBool_FromLong(memchr(body, '\0', (size_t)size) != NULL);
}

/* scan_lines(body): a pass of memchr from line end to line end; gives their number. */
PyObject* floor_scan_lines(PyObject* self, PyObject* arguments) {
    const char* body;
    Py_ssize_t size;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "s#", &body, &size)) return NULL;
    const char* const end = body + size;
    long lines = 0;
    for (const char* next = body; (next = memchr(next, '\n', (size_t)(end - next))) != NULL; ++next) {
        ++lines;
    }
    return PyInt_FromLong(lines);
}
