#include "redirect.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace sweeps {

namespace {

#if defined(__x86_64__)
/// mov r11, ADDRESS; jmp r11
struct Jump {
    std::array<unsigned char, 13> code = {0x49, 0xBB, 0, 0, 0, 0, 0, 0, 0, 0, 0x41, 0xFF, 0xE3};

    explicit Jump(const void* target) { std::memcpy(code.data() + 2, &target, sizeof target); }
};
#else
#error "The sweeps replace functions of a running interpreter: write the jump for this machine"
#endif

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::_Exit(2);
}

}  // namespace

void redirect(void* function, void* replacement) {
    const Jump jump(replacement);
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(function);
    const auto firstPage = start & ~(pageSize - 1);
    const auto size = start + jump.code.size() - firstPage;
    auto* const pages = reinterpret_cast<void*>(firstPage);
    if (mprotect(pages, size, PROT_READ | PROT_WRITE | PROT_EXEC) != 0) fail("making the interpreter's code writable");
    std::memcpy(function, jump.code.data(), jump.code.size());
    if (mprotect(pages, size, PROT_READ | PROT_EXEC) != 0) fail("protecting the interpreter's code again");
}

}  // namespace sweeps
