/* Measures calls, so that what measures is the same for every contender and next to nothing itself. */
#include <time.h>

#include "floor.h"

static double seconds(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return (double)now.tv_sec + (double)now.tv_nsec * 1e-9;
}

double floor_processor_seconds(void) {
    return seconds(CLOCK_THREAD_CPUTIME_ID);
}

/* All that callgrind counts happens below this function, which it knows by its name. */
int measured_region(PyObject* work, PyObject* results);

__attribute__((noinline)) int measured_region(PyObject* work, PyObject* results) {
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(results); ++index) {
        PyObject* const result = PyObject_CallObject(work, NULL);
        if (result == NULL) return -1;
        PyList_SetItem(results, index, result);
    }
    return 0;
}

/* measure(work, count): calls `work` so many times; gives the seconds of processor time that it took and the list of
 * the results, which therefore are thrown away outside of the measured time. */
PyObject* floor_measure(PyObject* self, PyObject* arguments) {
    PyObject* work;
    Py_ssize_t count;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "On", &work, &count)) return NULL;
    PyObject* const results = PyList_New(count);
    if (results == NULL) return NULL;
    for (Py_ssize_t index = 0; index < count; ++index) {
        Py_INCREF(Py_None);
        PyList_SET_ITEM(results, index, Py_None);
    }
    const double start = floor_processor_seconds();
    const int failed = measured_region(work, results);
    const double end = floor_processor_seconds();
    if (failed) {
        Py_DECREF(results);
        return NULL;
    }
    return Py_BuildValue("dN", end - start, results);
}

/* A callable of the host whose time is kept apart. */
typedef struct {
    PyObject_HEAD PyObject* wrapped;
} Timed;

static double time_in_host;
static int depth;

static PyObject* timed_new(PyTypeObject* type, PyObject* arguments, PyObject* keywords) {
    PyObject* wrapped;
    (void)keywords;
    if (!PyArg_ParseTuple(arguments, "O", &wrapped)) return NULL;
    Timed* const timed = (Timed*)type->tp_alloc(type, 0);
    if (timed == NULL) return NULL;
    Py_INCREF(wrapped);
    timed->wrapped = wrapped;
    return (PyObject*)timed;
}

static void timed_dealloc(PyObject* self) {
    Py_XDECREF(((Timed*)self)->wrapped);
    Py_TYPE(self)->tp_free(self);
}

static PyObject* timed_call(PyObject* self, PyObject* arguments, PyObject* keywords) {
    PyObject* const wrapped = ((Timed*)self)->wrapped;
    // What a call of the host calls in its turn is the host's time already.
    if (depth > 0) return PyObject_Call(wrapped, arguments, keywords);
    const double start = seconds(CLOCK_MONOTONIC);
    ++depth;
    PyObject* const result = PyObject_Call(wrapped, arguments, keywords);
    --depth;
    time_in_host += seconds(CLOCK_MONOTONIC) - start;
    return result;
}

PyTypeObject floor_timed_type = {
    PyVarObject_HEAD_INIT(NULL, 0).tp_name = "floor.Timed",
    .tp_basicsize = sizeof(Timed),
    .tp_dealloc = timed_dealloc,
    .tp_call = timed_call,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_doc = "Timed(callable): calls it and adds the time to that in the host.",
    .tp_new = timed_new,
};

/* time_outside(work): calls `work`; gives the seconds outside of Timed callables, and the processor time of the whole.
 * Between two calls of the host there is hardly ever anything else that the machine does, in the whole there often is.
 */
PyObject* floor_time_outside(PyObject* self, PyObject* arguments) {
    PyObject* work;
    (void)self;
    if (!PyArg_ParseTuple(arguments, "O", &work)) return NULL;
    time_in_host = 0;
    const double processor_start = floor_processor_seconds();
    const double start = seconds(CLOCK_MONOTONIC);
    PyObject* const result = PyObject_CallObject(work, NULL);
    const double whole = seconds(CLOCK_MONOTONIC) - start;
    const double processor = floor_processor_seconds() - processor_start;
    if (result == NULL) return NULL;
    Py_DECREF(result);
    return Py_BuildValue("dd", whole - time_in_host, processor);
}
