// To be preloaded into the debug interpreter: its allocator for small objects, which packs them into arenas, gives way
// to plain malloc. Every object is then an allocation of its own, which memory checkers can watch.
//
// Only the debug interpreter calls its allocator as a function everywhere; the release one has copies of it inlined.
// Any other program is left alone.

#include <dlfcn.h>

#include <cstddef>
#include <cstdlib>

#include "redirect.hpp"

namespace {

constexpr std::size_t MOST = static_cast<std::size_t>(-1) / 2;

void* allocate(std::size_t size) {
    return size > MOST ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* reallocate(void* memory, std::size_t size) {
    if (memory == nullptr) return allocate(size);
    return size > MOST ? nullptr : std::realloc(memory, size == 0 ? 1 : size);
}

[[gnu::constructor]] void replaceAllocator() {
    if (dlsym(RTLD_DEFAULT, "_PyObject_DebugMallocApi") == nullptr) return;
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Malloc"), reinterpret_cast<void*>(allocate));
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Realloc"), reinterpret_cast<void*>(reallocate));
    sweeps::redirect(dlsym(RTLD_DEFAULT, "PyObject_Free"), reinterpret_cast<void*>(std::free));
}

}  // namespace
