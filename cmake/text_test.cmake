# The text core's suites for a receiver's processor: not part of the build unless asked for (target text_test). The
# machine's package of GoogleTest is built for the machine; its source is for any.
set(googletest /usr/src/googletest/googletest)
if(NOT EXISTS ${googletest}/src/gtest-all.cc)
    return()
endif()
file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/plugin/tests/text/*_test.cpp)
add_executable(text_test EXCLUDE_FROM_ALL ${sources} ${googletest}/src/gtest-all.cc ${googletest}/src/gtest_main.cc)
target_include_directories(text_test PRIVATE ${googletest})
target_include_directories(text_test SYSTEM PRIVATE ${googletest}/include)
target_link_libraries(text_test PRIVATE morvesk_text)
# The emulator brings no libraries along. GoogleTest could send its results over the network, which the linker warns of.
target_link_options(text_test PRIVATE -static LINKER:--no-warnings)
set_source_files_properties(${googletest}/src/gtest-all.cc ${googletest}/src/gtest_main.cc PROPERTIES COMPILE_OPTIONS -w)
