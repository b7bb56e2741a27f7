// The extension module `points`: runs a call of the module under test with one point of it failing.
//
//   attach(path)   hooks every call that the module in this file makes of the interpreter's C API
//   enter(path)    calls the module's entry, as an import does, and gives the module
//   run(function, arguments, kind, n, further, error) -> (raised, value, counted, failed, at)
//   trace(function, arguments, kind, list) -> [(C function, what it was about, length of the list then), ...]
//   allocated()            the bytes that the process has allocated and not freed
//   claim_version(text)    the version that the interpreter claims from now on to be; None for its own
//
// Kinds of points: "host", the calls that may run code of the host; "api", all calls that may fail; "memory", all
// allocations of the process (where allocations.so is preloaded);
// "standard" and "other", operator new alone, which throws a standard exception and no exception at all.

#define PY_SSIZE_T_CLEAN
#include <Python.h>
// These two are not part of Python.h.
#include <dlfcn.h>
#include <elf.h>
#include <frameobject.h>
#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <traceback.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "allocations.hpp"

namespace sweeps {

namespace {

enum class Kind { Host, Memory };

// What the running operation does when it comes to the n-th point.
struct Plan {
    bool active = false;
    bool tracing = false;
    bool allCalls = false;
    bool everyFurther = false;
    long failing = 0;
    PyObject* error = nullptr;
    long counted = 0;
    long failed = 0;
    const char* at = "";
};

struct Visit {
    const char* function;
    std::string about;
    Py_ssize_t before;
};

Plan plan;
PyObject* watched = nullptr;
std::vector<Visit> visits;
const char* claimedVersion = nullptr;

std::string nameOf(PyObject* object) {
    if (PyString_Check(object)) return PyString_AS_STRING(object);
    if (PyMethod_Check(object)) return nameOf(PyMethod_GET_FUNCTION(object));
    if (PyFunction_Check(object)) return PyString_AS_STRING(reinterpret_cast<PyFunctionObject*>(object)->func_name);
    if (PyCode_Check(object)) return PyString_AS_STRING(reinterpret_cast<PyCodeObject*>(object)->co_name);
    if (PyCFunction_Check(object)) return reinterpret_cast<PyCFunctionObject*>(object)->m_ml->ml_name;
    if (PyType_Check(object)) return reinterpret_cast<PyTypeObject*>(object)->tp_name;
    return Py_TYPE(object)->tp_name;
}

// What a call is about: the name or the key for a look-up, the callee for a call.
template <typename First, typename Second, typename... More>
std::string aboutOf(First first, Second second, More... /*more*/) {
    if constexpr (std::is_same_v<First, PyCodeObject*>) {
        return nameOf(reinterpret_cast<PyObject*>(first));
    } else if constexpr (std::is_convertible_v<Second, const char*>) {
        return second;
    } else if constexpr (std::is_same_v<Second, PyObject*>) {
        if (second != nullptr && PyString_Check(second)) return PyString_AS_STRING(second);
        if constexpr (std::is_same_v<First, PyObject*>) return nameOf(first);
    }
    return "";
}

template <typename... Arguments>
std::string aboutOf(Arguments... /*arguments*/) {
    return "";
}

void setError() {
    if (plan.error == nullptr) {
        PyErr_NoMemory();
    } else if (PyExceptionInstance_Check(plan.error)) {
        PyErr_SetObject(PyExceptionInstance_Class(plan.error), plan.error);
    } else {
        PyErr_SetNone(plan.error);
    }
}

template <typename... Arguments>
bool fails(Kind kind, const char* function, Arguments... arguments) {
    if (!plan.active || (kind == Kind::Memory && !plan.allCalls)) return false;
    ++plan.counted;
    if (plan.tracing) visits.push_back({function, aboutOf(arguments...), PyList_Size(watched)});
    const bool isIt =
        plan.counted == plan.failing || (plan.everyFurther && plan.failing > 0 && plan.counted > plan.failing);
    if (!isIt) return false;
    if (++plan.failed == 1) plan.at = function;
    setError();
    return true;
}

template <typename Result>
Result failure() {
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return -1;
    }
}

// One hook for each function, since a hook gets no word of which function was meant.
template <auto Function, Kind kind, const char* name>
struct Hook;

template <typename Result, typename... Arguments, Result (*Function)(Arguments...), Kind kind, const char* name>
struct Hook<Function, kind, name> {
    static Result call(Arguments... arguments) {
        if (fails(kind, name, arguments...)) return failure<Result>();
        return Function(arguments...);
    }
};

Allocations* allocations() {
    static const auto get = reinterpret_cast<Allocations* (*)()>(dlsym(RTLD_DEFAULT, "sweepAllocations"));
    return get != nullptr ? get() : nullptr;
}

/// The size of the reference by which a class knows a class derived from it, as the debug interpreter allocates it.
std::size_t subclassReference() {
    constexpr auto debugMarks = 4 * sizeof(std::size_t);
    return sizeof(PyGC_Head) + static_cast<std::size_t>(_PyWeakref_RefType.tp_basicsize) + debugMarks;
}

bool isMetaclass(PyObject* object) {
    return PyType_Check(object) && PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(object), &PyType_Type) != 0;
}

PyObject* hookCall(PyObject* callable, PyObject* arguments, PyObject* keywords) {
    if (fails(Kind::Host, "PyObject_Call", callable, arguments, keywords)) return nullptr;
    Allocations* const state = isMetaclass(callable) ? allocations() : nullptr;
    if (state != nullptr) state->spared = subclassReference();
    PyObject* const result = PyObject_Call(callable, arguments, keywords);
    if (state != nullptr) state->spared = 0;
    return result;
}

// Variadic; of ours, no call has more than the format.
PyObject* hookCallMethod(PyObject* object, char* method, char* format, ...) {
    if (fails(Kind::Host, "PyObject_CallMethod", object, method)) return nullptr;
    return PyObject_CallMethod(object, method, format);
}

PyObject* hookFromFormat(const char* format, ...) {
    if (fails(Kind::Memory, "PyString_FromFormat", format)) return nullptr;
    va_list values;
    va_start(values, format);
    PyObject* const text = PyString_FromFormatV(format, values);
    va_end(values);
    return text;
}

// Takes the string away where it fails.
int hookResize(PyObject** string, Py_ssize_t size) {
    if (!fails(Kind::Memory, "_PyString_Resize")) return _PyString_Resize(string, size);
    Py_DECREF(*string);
    *string = nullptr;
    return -1;
}

const char* hookGetVersion() {
    return claimedVersion != nullptr ? claimedVersion : Py_GetVersion();
}

struct Entry {
    std::string_view symbol;
    void* hook;
};

#define SWEEPS_SPELLED(symbol) #symbol
#define SWEEPS_SYMBOL(symbol) SWEEPS_SPELLED(symbol)

#define SWEEPS_FUNCTIONS(HOST, MEMORY)   \
    /* What may run code of the host. */ \
    HOST(PyErr_WarnEx)                   \
    HOST(PyEval_EvalCodeEx)              \
    HOST(PyFile_WriteObject)             \
    HOST(PyFile_WriteString)             \
    HOST(PyIter_Next)                    \
    HOST(PyNumber_Add)                   \
    HOST(PyObject_GetAttr)               \
    HOST(PyObject_GetAttrString)         \
    HOST(PyObject_GetItem)               \
    HOST(PyObject_GetIter)               \
    HOST(PyObject_IsTrue)                \
    HOST(PyObject_RichCompare)           \
    HOST(PyObject_RichCompareBool)       \
    HOST(PyObject_SetAttr)               \
    HOST(PyObject_SetItem)               \
    HOST(PyObject_Size)                  \
    HOST(PyObject_Str)                   \
    HOST(PySequence_GetItem)             \
    HOST(PySequence_List)                \
    HOST(PyString_Format)                \
    /* What only wants memory. */        \
    MEMORY(PyCFunction_NewEx)            \
    MEMORY(PyCode_NewEmpty)              \
    MEMORY(PyDict_New)                   \
    MEMORY(PyDict_SetItem)               \
    MEMORY(PyDict_SetItemString)         \
    MEMORY(PyFloat_FromDouble)           \
    MEMORY(PyFrame_New)                  \
    MEMORY(PyInt_FromLong)               \
    MEMORY(PyList_Append)                \
    MEMORY(PyList_AsTuple)               \
    MEMORY(PyList_New)                   \
    MEMORY(PyMethod_New)                 \
    MEMORY(PyString_AsString)            \
    MEMORY(PyString_FromString)          \
    MEMORY(PyString_FromStringAndSize)   \
    MEMORY(PyString_InternFromString)    \
    MEMORY(PyTraceBack_Here)             \
    MEMORY(PyTuple_New)                  \
    MEMORY(Py_InitModule4)

#define SWEEPS_NAME(function) constexpr char NAME_##function[] = #function;
SWEEPS_FUNCTIONS(SWEEPS_NAME, SWEEPS_NAME)
#undef SWEEPS_NAME

#define SWEEPS_HOST(function) \
    {SWEEPS_SYMBOL(function), reinterpret_cast<void*>(Hook<function, Kind::Host, NAME_##function>::call)},
#define SWEEPS_MEMORY(function) \
    {SWEEPS_SYMBOL(function), reinterpret_cast<void*>(Hook<function, Kind::Memory, NAME_##function>::call)},

const Entry HOOKS[] = {SWEEPS_FUNCTIONS(SWEEPS_HOST, SWEEPS_MEMORY)  //
                       {"PyObject_Call", reinterpret_cast<void*>(hookCall)},
                       {"_PyObject_CallMethod_SizeT", reinterpret_cast<void*>(hookCallMethod)},
                       {"PyObject_CallMethod", reinterpret_cast<void*>(hookCallMethod)},
                       {"PyString_FromFormat", reinterpret_cast<void*>(hookFromFormat)},
                       {"_PyString_Resize", reinterpret_cast<void*>(hookResize)},
                       {"Py_GetVersion", reinterpret_cast<void*>(hookGetVersion)}};

// What can neither fail nor run code of the host, or swallows its own failure.
const std::set<std::string_view> CANNOT_FAIL = {
    "PyCallable_Check",
    "PyDict_Clear",
    "PyDict_DelItem",
    "PyDict_DelItemString",
    "PyDict_GetItem",
    "PyDict_GetItemString",
    "PyDict_Next",
    "PyDict_Size",
    "PyErr_Clear",
    "PyErr_ExceptionMatches",
    "PyErr_Fetch",
    "PyErr_Format",
    "PyErr_GivenExceptionMatches",
    "PyErr_NoMemory",
    "PyErr_NormalizeException",
    "PyErr_Occurred",
    "PyErr_Restore",
    "PyErr_SetObject",
    "PyErr_SetString",
    "PyEval_GetBuiltins",
    "PyEval_GetGlobals",
    "PyFile_SoftSpace",
    "PyGILState_Ensure",
    "PyImport_GetModuleDict",
    "PyModule_GetDict",
    "PyModule_GetName",
    "PyObject_GC_UnTrack",
    "PySys_GetObject",
    "PyThreadState_Get",
    "PyType_IsSubtype",
    "_Py_AddToAllObjects",
    "_Py_Dealloc",
    "_Py_NegativeRefcount",
};

void* hookFor(std::string_view symbol) {
    for (const auto& entry : HOOKS) {
        if (entry.symbol == symbol) return entry.hook;
    }
    return nullptr;
}

bool isData(const char* symbol) {
    void* const address = dlsym(RTLD_DEFAULT, symbol);
    Dl_info info;
    ElfW(Sym)* found = nullptr;
    return address != nullptr && dladdr1(address, &info, reinterpret_cast<void**>(&found), RTLD_DL_SYMENT) != 0 &&
           found != nullptr && ELF64_ST_TYPE(found->st_info) == STT_OBJECT;
}

/// The tables of a loaded file that say which of its slots hold the addresses of which functions.
class Slots {
  public:
    explicit Slots(const link_map& file) : base_(file.l_addr) {
        for (const ElfW(Dyn)* entry = file.l_ld; entry->d_tag != DT_NULL; ++entry) {
            switch (entry->d_tag) {
                case DT_SYMTAB:
                    symbols_ = reinterpret_cast<const ElfW(Sym)*>(entry->d_un.d_ptr);
                    break;
                case DT_STRTAB:
                    strings_ = reinterpret_cast<const char*>(entry->d_un.d_ptr);
                    break;
                case DT_JMPREL:
                    tables_[0].first = reinterpret_cast<const ElfW(Rela)*>(entry->d_un.d_ptr);
                    break;
                case DT_PLTRELSZ:
                    tables_[0].second = entry->d_un.d_val / sizeof(ElfW(Rela));
                    break;
                case DT_RELA:
                    tables_[1].first = reinterpret_cast<const ElfW(Rela)*>(entry->d_un.d_ptr);
                    break;
                case DT_RELASZ:
                    tables_[1].second = entry->d_un.d_val / sizeof(ElfW(Rela));
                    break;
                default:
                    break;
            }
        }
    }

    /// Hooks the slots; the name of a function of the interpreter that is in no table above, if there is one.
    const char* hook() const {
        for (const auto& [relocations, count] : tables_) {
            for (std::size_t index = 0; index < count; ++index) {
                const auto& relocation = relocations[index];
                const char* const name = strings_ + symbols_[ELF64_R_SYM(relocation.r_info)].st_name;
                if (void* const replacement = hookFor(name)) {
                    write(reinterpret_cast<void**>(base_ + relocation.r_offset), replacement);
                } else if (isUnknown(name)) {
                    return name;
                }
            }
        }
        return nullptr;
    }

  private:
    static bool isUnknown(const char* name) {
        const bool isInterpreters = std::strncmp(name, "Py", 2) == 0 || std::strncmp(name, "_Py", 3) == 0;
        return isInterpreters && CANNOT_FAIL.count(name) == 0 && !isData(name);
    }

    static void write(void** slot, void* value) {
        const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        auto* const page = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(slot) & ~(pageSize - 1));
        mprotect(page, pageSize, PROT_READ | PROT_WRITE);
        *slot = value;
    }

    ElfW(Addr) base_;
    const ElfW(Sym) * symbols_ = nullptr;
    const char* strings_ = nullptr;
    std::array<std::pair<const ElfW(Rela)*, std::size_t>, 2> tables_{};
};

void* open(const char* path) {
    void* const file = dlopen(path, RTLD_NOW);
    if (file == nullptr) PyErr_SetString(PyExc_ImportError, dlerror());
    return file;
}

PyObject* attach(PyObject* /*self*/, PyObject* arguments) {
    const char* path = nullptr;
    if (PyArg_ParseTuple(arguments, "s", &path) == 0) return nullptr;
    void* const file = open(path);
    if (file == nullptr) return nullptr;
    link_map* map = nullptr;
    dlinfo(file, RTLD_DI_LINKMAP, static_cast<void*>(&map));
    if (const char* const unknown = Slots(*map).hook()) {
        return PyErr_Format(PyExc_RuntimeError, "the module calls %s, which is in no table of the sweeps: add it there",
                            unknown);
    }
    Py_RETURN_NONE;
}

PyObject* enter(PyObject* /*self*/, PyObject* arguments) {
    const char* path = nullptr;
    if (PyArg_ParseTuple(arguments, "s", &path) == 0) return nullptr;
    void* const file = open(path);
    if (file == nullptr) return nullptr;
    reinterpret_cast<void (*)()>(dlsym(file, "initMorvesk"))();
    if (PyErr_Occurred() != nullptr) return nullptr;
    // As loaded as it will ever be: looking it up is no part of that.
    PyObject* module = nullptr;
    PyObject* name = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(PyImport_GetModuleDict(), &position, &name, &module) != 0) {
        if (std::strcmp(PyString_AS_STRING(name), "Morvesk") != 0) continue;
        Py_INCREF(module);
        return module;
    }
    Py_RETURN_NONE;
}

/// Takes the interpreter's error as (class, value, traceback), without making an instance where there is none yet.
PyObject* takeError() {
    std::array<PyObject*, 3> parts{};
    PyErr_Fetch(&parts[0], &parts[1], &parts[2]);
    PyObject* const error = PyTuple_New(3);
    Py_ssize_t index = 0;
    for (PyObject* part : parts) {
        if (part == nullptr) {
            Py_INCREF(Py_None);
            part = Py_None;
        }
        PyTuple_SET_ITEM(error, index++, part);
    }
    return error;
}

/// The interpreter keeps freed objects of some types for the next ones: away with them, so that each asks for memory.
void forgetFreedObjects() {
    PyMethod_ClearFreeList();
    PyFrame_ClearFreeList();
    PyCFunction_ClearFreeList();
    PyTuple_ClearFreeList();
    PyInt_ClearFreeList();
    PyFloat_ClearFreeList();
    PyList_Fini();
    PyDict_Fini();
}

PyObject* runMemory(PyObject* function, PyObject* callArguments, Thrown thrown, long failing, int further) {
    Allocations* const state = allocations();
    if (state == nullptr) {
        PyErr_SetString(PyExc_RuntimeError, "points in memory need allocations.so to be preloaded");
        return nullptr;
    }
    forgetFreedObjects();
    PyThreadState* const thread = PyThreadState_Get();
    *state = {};
    state->active = true;
    state->frame = reinterpret_cast<void* const*>(&thread->frame);
    state->home = thread->frame;
    state->thrown = thrown;
    state->everyFurther = further != 0;
    state->failing = failing;
    PyObject* value = PyObject_Call(function, callArguments, nullptr);
    state->active = false;
    const bool raised = value == nullptr;
    if (raised) value = takeError();
    return Py_BuildValue("(ONll(llll))", raised ? Py_True : Py_False, value, state->counted, state->failed,
                         state->countedBy[FROM_INTERPRETER], state->countedBy[FROM_NEW],
                         state->countedBy[FROM_ELSEWHERE], state->sparedObjects);
}

PyObject* runCalls(PyObject* function, PyObject* callArguments, const Plan& wanted) {
    const Plan outer = plan;
    plan = wanted;
    PyObject* value = PyObject_Call(function, callArguments, nullptr);
    const Plan done = plan;
    plan = outer;
    const bool raised = value == nullptr;
    if (raised) value = takeError();
    return Py_BuildValue("(ONlls)", raised ? Py_True : Py_False, value, done.counted, done.failed, done.at);
}

bool isCalls(std::string_view kind, Plan& wanted) {
    wanted.active = true;
    wanted.allCalls = kind == "api";
    return kind == "host" || kind == "api";
}

PyObject* run(PyObject* /*self*/, PyObject* arguments) {
    PyObject* function = nullptr;
    PyObject* callArguments = nullptr;
    const char* kind = nullptr;
    long failing = 0;
    int further = 0;
    PyObject* error = nullptr;
    if (PyArg_ParseTuple(arguments, "OO!s|liO", &function, &PyTuple_Type, &callArguments, &kind, &failing, &further,
                         &error) == 0) {
        return nullptr;
    }
    Plan wanted;
    if (!isCalls(kind, wanted)) {
        const std::string_view asked(kind);
        const auto thrown = asked == "standard" ? STANDARD_EXCEPTION : asked == "other" ? NO_EXCEPTION : BAD_ALLOC;
        return runMemory(function, callArguments, thrown, failing, further);
    }
    wanted.everyFurther = further != 0;
    wanted.failing = failing;
    wanted.error = error == Py_None ? nullptr : error;
    return runCalls(function, callArguments, wanted);
}

PyObject* trace(PyObject* /*self*/, PyObject* arguments) {
    PyObject* function = nullptr;
    PyObject* callArguments = nullptr;
    const char* kind = nullptr;
    if (PyArg_ParseTuple(arguments, "OO!sO!", &function, &PyTuple_Type, &callArguments, &kind, &PyList_Type,
                         &watched) == 0) {
        return nullptr;
    }
    Plan wanted;
    if (!isCalls(kind, wanted)) return PyErr_Format(PyExc_ValueError, "no trace of %s", kind);
    wanted.tracing = true;
    visits.clear();
    PyObject* const result = runCalls(function, callArguments, wanted);
    if (result == nullptr) return nullptr;
    Py_DECREF(result);
    PyObject* const list = PyList_New(0);
    for (const auto& visit : visits) {
        PyObject* const item = Py_BuildValue("(ssn)", visit.function, visit.about.c_str(), visit.before);
        PyList_Append(list, item);
        Py_DECREF(item);
    }
    visits.clear();
    return list;
}

PyObject* claimVersion(PyObject* /*self*/, PyObject* arguments) {
    static std::string version;
    const char* text = nullptr;
    if (PyArg_ParseTuple(arguments, "z", &text) == 0) return nullptr;
    version = text != nullptr ? text : "";
    claimedVersion = text != nullptr ? version.c_str() : nullptr;
    Py_RETURN_NONE;
}

PyObject* allocated(PyObject* /*self*/, PyObject* /*arguments*/) {
    const auto info = mallinfo2();
    return PyInt_FromSize_t(info.uordblks + info.hblkhd);
}

std::array<PyMethodDef, 7> methods = {{{"attach", attach, METH_VARARGS, nullptr},
                                       {"enter", enter, METH_VARARGS, nullptr},
                                       {"run", run, METH_VARARGS, nullptr},
                                       {"trace", trace, METH_VARARGS, nullptr},
                                       {"allocated", allocated, METH_NOARGS, nullptr},
                                       {"claim_version", claimVersion, METH_VARARGS, nullptr},
                                       {nullptr, nullptr, 0, nullptr}}};

}  // namespace

}  // namespace sweeps

extern "C" [[gnu::visibility("default")]] void initpoints() {
    Py_InitModule("points", sweeps::methods.data());
}
