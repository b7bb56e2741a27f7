/* The least that file work must do: the bare system calls. */
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "floor.h"

enum { BLOCK = 65536 };

/* Opens, reads to the end, closes; gives the number of bytes or -1. */
static ssize_t read_whole(const char* path, char* block) {
    const int file = open(path, O_RDONLY);
    if (file < 0) return -1;
    ssize_t total = 0;
    ssize_t got;
    while ((got = read(file, block, BLOCK)) > 0) {
        total += got;
    }
    close(file);
    return got < 0 ? -1 : total;
}

static int write_all(int file, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t done = write(file, bytes, size);
        if (done < 0) return -1;
        bytes += done;
        size -= (size_t)done;
    }
    return 0;
}

static int write_whole(const char* path, const char* bytes, size_t size) {
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file < 0) return -1;
    const int failed = write_all(file, bytes, size);
    return close(file) | failed;
}

static int rewrite(const char* path, const char* content, size_t size) {
    char* const block = malloc(BLOCK);
    if (block == NULL) return -1;
    const ssize_t got = read_whole(path, block);
    free(block);
    return got < 0 ? -1 : write_whole(path, content, size);
}

/* rewrite(path, content): reads the file once and writes the content over it once. */
PyObject* floor_rewrite(PyObject* self, PyObject* arguments) {
    const char* path;
    const char* content;
    Py_ssize_t size;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "ss#", &path, &content, &size)) return NULL;
    if (rewrite(path, content, (size_t)size) != 0) return PyErr_SetFromErrnoWithFilename(PyExc_IOError, path);
    Py_RETURN_NONE;
}

static int copy_content(int from, int to, char* block) {
    ssize_t got;
    while ((got = read(from, block, BLOCK)) > 0) {
        if (write_all(to, block, (size_t)got) != 0) return -1;
    }
    return (int)got;
}

/* The content, the times and the mode of a file, which is what shutil.copy2 carries over. */
static int copy_file(const char* source, const char* target, char* block) {
    struct stat facts;
    const int from = open(source, O_RDONLY);
    if (from < 0) return -1;
    const int to = open(target, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    int failed = to < 0 || fstat(from, &facts) != 0 || copy_content(from, to, block) != 0;
    if (!failed) {
        const struct timespec times[] = {facts.st_atim, facts.st_mtim};
        failed = futimens(to, times) != 0 || fchmod(to, facts.st_mode & 07777) != 0;
    }
    if (to >= 0) close(to);
    close(from);
    return failed ? -1 : 0;
}

static int merge_pair(const char* source, const char* wanted, const char* target, char* block) {
    struct stat facts;
    if (stat(source, &facts) != 0) return -1;
    if (stat(wanted, &facts) != 0 && errno != ENOENT) return -1;
    return copy_file(source, target, block);
}

static PyObject* merge_all(PyObject* lists, PyObject* triples, const char* root, const char* content, Py_ssize_t size,
                           char* block) {
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(lists); ++index) {
        const char* const path = PyString_AS_STRING(PyList_GET_ITEM(lists, index));
        if (read_whole(path, block) < 0) return PyErr_SetFromErrnoWithFilename(PyExc_IOError, path);
    }
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(triples); ++index) {
        PyObject* const triple = PyList_GET_ITEM(triples, index);
        const char* const source = PyString_AS_STRING(PyTuple_GET_ITEM(triple, 0));
        const char* const wanted = PyString_AS_STRING(PyTuple_GET_ITEM(triple, 1));
        const char* const target = PyString_AS_STRING(PyTuple_GET_ITEM(triple, 2));
        if (merge_pair(source, wanted, target, block) != 0)
            return PyErr_SetFromErrnoWithFilename(PyExc_IOError, source);
    }
    if (rewrite(root, content, (size_t)size) != 0) return PyErr_SetFromErrnoWithFilename(PyExc_IOError, root);
    Py_RETURN_NONE;
}

/* merge(lists, triples, root, content): reads the new list's root files `lists`, looks for each (source, wanted,
 * target) whether the source is there and the wanted name is taken, copies source to target, and rewrites the root
 * file. */
PyObject* floor_merge(PyObject* self, PyObject* arguments) {
    PyObject* lists;
    PyObject* triples;
    const char* root;
    const char* content;
    Py_ssize_t size;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "O!O!ss#", &PyList_Type, &lists, &PyList_Type, &triples, &root, &content, &size)) {
        return NULL;
    }
    char* const block = malloc(BLOCK);
    if (block == NULL) return PyErr_NoMemory();
    PyObject* const result = merge_all(lists, triples, root, content, size, block);
    free(block);
    return result;
}
