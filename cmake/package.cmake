# The package that a receiver's package manager installs: `cpack` in the build folder, or the target `package`.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
    message(STATUS "No package: only what is built with CMAKE_BUILD_TYPE=Release is stripped for receivers")
    return()
endif()

# Image feeds name the architecture after how the image was tuned, which no compiler tells for certain.
function(guess_architecture result)
    set(compiler ${CMAKE_CXX_COMPILER})
    if(CMAKE_CXX_COMPILER_TARGET)
        list(APPEND compiler --target=${CMAKE_CXX_COMPILER_TARGET})
    endif()
    separate_arguments(flags UNIX_COMMAND "${CMAKE_CXX_COMPILER_ARG1} ${CMAKE_CXX_FLAGS}")
    execute_process(COMMAND ${compiler} ${flags} -dM -E -x c++ /dev/null OUTPUT_VARIABLE macros)
    execute_process(COMMAND ${compiler} -dumpmachine OUTPUT_VARIABLE machine OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(REGEX REPLACE "-.*" "" architecture "${machine}")
    if(macros MATCHES "define __ARM_ARCH 7" AND macros MATCHES "define __ARM_PCS_VFP 1")
        set(architecture armv7ahf-neon)
    elseif(macros MATCHES "define __AARCH64EL__ 1")
        set(architecture aarch64)
    elseif(macros MATCHES "define _MIPSEL 1" AND macros MATCHES "define __mips 32")
        set(architecture mips32el)
    endif()
    set(${result} ${architecture} PARENT_SCOPE)
endfunction()

guess_architecture(architecture)
set(MORVESK_PACKAGE_NAME enigma2-plugin-systemplugins-qelpanel-morvesk CACHE STRING "Name of the package")
set(MORVESK_PACKAGE_ARCHITECTURE ${architecture} CACHE STRING "Architecture of the package, as the image's feed names it")
set(MORVESK_PACKAGE_DEPENDS
    "enigma2, libc6, libgcc1, libstdc++6, python-core, python-datetime, python-netclient, python-shell"
    CACHE STRING "Packages of the image that the module needs")

install(TARGETS Morvesk
    LIBRARY DESTINATION lib/enigma2/python/Plugins/SystemPlugins/QelPanel
    PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# The feeds' versions end in that of the recipe; ours changes with every release, so that this one need not.
set(CPACK_MORVESK_VERSION ${PROJECT_VERSION}-r0)
set(CPACK_MORVESK_NAME ${MORVESK_PACKAGE_NAME})
set(CPACK_MORVESK_ARCHITECTURE ${MORVESK_PACKAGE_ARCHITECTURE})
set(CPACK_MORVESK_DEPENDS ${MORVESK_PACKAGE_DEPENDS})
set(CPACK_MORVESK_DESCRIPTION ${PROJECT_DESCRIPTION})
set(CPACK_MORVESK_AR ${CMAKE_AR})

set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/ipk.cmake)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_NAME ${MORVESK_PACKAGE_NAME})
set(CPACK_PACKAGE_FILE_NAME ${MORVESK_PACKAGE_NAME}_${CPACK_MORVESK_VERSION}_${MORVESK_PACKAGE_ARCHITECTURE})
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
