# Little-endian MIPS receivers, by Debian's cross compiler: code for the first generation of MIPS32 cores.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mips)
set(CMAKE_LIBRARY_ARCHITECTURE mipsel-linux-gnu)
set(CMAKE_CXX_COMPILER mipsel-linux-gnu-g++)
set(CMAKE_CXX_FLAGS_INIT "-march=mips32")

# Debian's start files are code of the second generation. A module needs none of them: the loader calls its initialisers
# by itself, and the interpreter never unloads it.
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-nostartfiles")

include(${CMAKE_CURRENT_LIST_DIR}/emulator.cmake)
set_emulator(mipsel)
