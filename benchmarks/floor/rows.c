/* The least that making the list's rows must do: the row tuples and a new text each, without any call of the host. */
#include <string.h>

#include "floor.h"

static PyObject* join(PyObject* first, PyObject* second) {
    static const char between[] = " - ";
    enum { BETWEEN = sizeof(between) - 1 };
    const Py_ssize_t first_size = PyString_GET_SIZE(first);
    const Py_ssize_t second_size = PyString_GET_SIZE(second);
    PyObject* const text = PyString_FromStringAndSize(NULL, first_size + BETWEEN + second_size);
    if (text == NULL) return NULL;
    char* const bytes = PyString_AS_STRING(text);
    memcpy(bytes, PyString_AS_STRING(first), (size_t)first_size);
    memcpy(bytes + first_size, between, BETWEEN);
    memcpy(bytes + first_size + BETWEEN, PyString_AS_STRING(second), (size_t)second_size);
    return text;
}

static PyObject* copy(PyObject* text) {
    return PyString_FromStringAndSize(PyString_AS_STRING(text), PyString_GET_SIZE(text));
}

static PyObject* share(PyObject* object) {
    Py_INCREF(object);
    return object;
}

/* The second text of a row equals a field of the entry: the least is to share it. What a row holds refers to nothing,
 * so that the collector of cycles need not look at it. */
static PyObject* make_row(PyObject* entry, PyObject* picture, int ordinary) {
    enum { COLUMNS = 5 };
    PyObject* const row = PyTuple_New(COLUMNS);
    if (row == NULL) return NULL;
    PyObject* const title = join(PyTuple_GET_ITEM(entry, 0), PyTuple_GET_ITEM(entry, 1));
    PyTuple_SET_ITEM(row, 1, title);
    PyObject* const description = ordinary ? copy(PyTuple_GET_ITEM(entry, 2)) : share(PyTuple_GET_ITEM(entry, 2));
    PyTuple_SET_ITEM(row, 2, description);
    PyTuple_SET_ITEM(row, 0, share(PyTuple_GET_ITEM(entry, 3)));
    PyTuple_SET_ITEM(row, 3, share(picture));
    PyTuple_SET_ITEM(row, 4, share(PyTuple_GET_ITEM(entry, 1)));
    if (title == NULL || description == NULL) {
        Py_DECREF(row);
        return NULL;
    }
    if (!ordinary) PyObject_GC_UnTrack(row);
    return row;
}

/* rows(entries, picture, ordinary): the list of rows, the least or as one ordinarily makes them. */
PyObject* floor_rows(PyObject* self, PyObject* arguments) {
    PyObject* entries;
    PyObject* picture;
    int ordinary;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "O!Oi", &PyList_Type, &entries, &picture, &ordinary)) return NULL;
    const Py_ssize_t count = PyList_GET_SIZE(entries);
    PyObject* const rows = PyList_New(count);
    if (rows == NULL) return NULL;
    for (Py_ssize_t index = 0; index < count; ++index) {
        PyObject* const row = make_row(PyList_GET_ITEM(entries, index), picture, ordinary);
        if (row == NULL) {
            Py_DECREF(rows);
            return NULL;
        }
        PyList_SET_ITEM(rows, index, row);
    }
    return rows;
}

static PyObject* load_picture(PyObject* names, PyObject* const* keys, PyObject* relative) {
    PyObject* const resolve = PyDict_GetItem(names, keys[0]);
    PyObject* const scope = PyDict_GetItem(names, keys[1]);
    PyObject* const load = PyDict_GetItem(names, keys[2]);
    PyObject* const path = PyObject_CallFunctionObjArgs(resolve, scope, relative, NULL);
    if (path == NULL) return NULL;
    PyObject* const keywords = PyDict_New();
    PyObject* const nothing = PyTuple_New(0);
    PyObject* picture = NULL;
    if (keywords != NULL && nothing != NULL && PyDict_SetItem(keywords, keys[3], Py_True) == 0 &&
        PyDict_SetItem(keywords, keys[4], path) == 0) {
        picture = PyObject_Call(load, nothing, keywords);
    }
    Py_XDECREF(keywords);
    Py_XDECREF(nothing);
    Py_DECREF(path);
    return picture;
}

/* call_host(names, keys, relative, count): the calls of the host that `count` rows need, and nothing else:
 * load(cached=True, path=resolve(scope, relative)), with each name looked up in the dict `names`. `keys` holds the
 * strings that name resolve, scope, load, "cached" and "path", in this order. */
PyObject* floor_call_host(PyObject* self, PyObject* arguments) {
    PyObject* names;
    PyObject* keys;
    PyObject* relative;
    Py_ssize_t count;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "O!O!On", &PyDict_Type, &names, &PyTuple_Type, &keys, &relative, &count))
        return NULL;
    for (Py_ssize_t index = 0; index < count; ++index) {
        PyObject* const picture = load_picture(names, &PyTuple_GET_ITEM(keys, 0), relative);
        if (picture == NULL) return NULL;
        Py_DECREF(picture);
    }
    Py_RETURN_NONE;
}
