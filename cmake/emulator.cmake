# What runs a cross-built program (a static one) on the machine: the emulator that tools/interpreter brings along with the
# interpreter of that processor.
function(set_emulator processor)
    cmake_path(SET emulated NORMALIZE
               ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../.local/root-${processor}/usr/lib/emulated)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${emulated}/emulator PARENT_SCOPE)
endfunction()

# Libraries and headers are the target's, programs the machine's.
set(CMAKE_FIND_ROOT_PATH /usr/${CMAKE_LIBRARY_ARCHITECTURE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
