// To be preloaded into an interpreter: every allocation of the process is counted while a sweep runs, and the n-th
// fails.
//
// In the debug interpreter its allocator for small objects is replaced as well, so that each object counts. `operator
// new` and the memory of C++ exceptions count in any case.

#include "allocations.hpp"

#include <dlfcn.h>
#include <malloc.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "redirect.hpp"

extern "C" {
// The C library's own functions under the names that nobody replaces.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);
}

namespace {

using sweeps::Origin;

constexpr std::size_t MOST = static_cast<std::size_t>(-1) / 2;

sweeps::Allocations allocations{};
thread_local bool isSweeping [[gnu::tls_model("initial-exec")]] = false;

/// Whether an object is the one that is spared.
bool isSpared(std::size_t size) {
    if (!allocations.active || !isSweeping || size != allocations.spared) return false;
    ++allocations.sparedObjects;
    return true;
}

/// Counts an allocation; whether it is one that fails.
bool fails(Origin origin) {
    if (!allocations.active || !isSweeping || *allocations.frame != allocations.home) return false;
    if (allocations.thrown != sweeps::BAD_ALLOC && origin != sweeps::FROM_NEW) return false;
    ++allocations.counted;
    ++allocations.countedBy[origin];
    const bool isIt =
        allocations.counted == allocations.failing ||
        (allocations.everyFurther && allocations.failing > 0 && allocations.counted > allocations.failing);
    if (!isIt) return false;
    ++allocations.failed;
    errno = ENOMEM;
    return true;
}

struct Unexpected : std::exception {
    const char* what() const noexcept override { return "an exception that nobody expects"; }
};

[[noreturn]] void throwFailure() {
    switch (allocations.thrown) {
        case sweeps::STANDARD_EXCEPTION:
            throw Unexpected();
        case sweeps::NO_EXCEPTION:
            throw 0;
        default:
            throw std::bad_alloc();
    }
}

void* allocateObject(std::size_t size) {
    const bool isFailing = !isSpared(size) && fails(sweeps::FROM_INTERPRETER);
    return size > MOST || isFailing ? nullptr : __libc_malloc(size == 0 ? 1 : size);
}

void* reallocateObject(void* memory, std::size_t size) {
    if (memory == nullptr) return allocateObject(size);
    // The interpreter counts on it that giving back a part always works.
    if (size <= malloc_usable_size(memory)) return memory;
    return size > MOST || fails(sweeps::FROM_INTERPRETER) ? nullptr : __libc_realloc(memory, size);
}

[[gnu::constructor]] void replaceAllocator() {
    if (dlsym(RTLD_DEFAULT, "_PyObject_DebugMallocApi") == nullptr) return;
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Malloc"), reinterpret_cast<void*>(allocateObject));
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Realloc"), reinterpret_cast<void*>(reallocateObject));
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Free"), reinterpret_cast<void*>(__libc_free));
}

}  // namespace

extern "C" sweeps::Allocations* sweepAllocations() {
    isSweeping = true;
    return &allocations;
}

extern "C" void* malloc(std::size_t size) {
    return fails(sweeps::FROM_ELSEWHERE) ? nullptr : __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size) {
    return fails(sweeps::FROM_ELSEWHERE) ? nullptr : __libc_calloc(count, size);
}

extern "C" void* realloc(void* memory, std::size_t size) {
    return fails(sweeps::FROM_ELSEWHERE) ? nullptr : __libc_realloc(memory, size);
}

void* operator new(std::size_t size) {
    if (fails(sweeps::FROM_NEW)) throwFailure();
    void* const memory = __libc_malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    __libc_free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    __libc_free(memory);
}
