# What a suite needs around it to run the sanitized module in an interpreter: `sanitized_environment`, empty for others.
#
# The interpreter is not sanitized: the run-time libraries have to be there before it loads the module. What it keeps until
# its end is not ours to free: see the suppressions.
set(sanitized_environment)
if(MORVESK_SANITIZE)
    set(preloaded)
    foreach(library IN ITEMS libasan.so libstdc++.so.6)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND preloaded ${path})
    endforeach()
    list(JOIN preloaded ":" preloaded)
    # It looks at the process from another one, which some containers refuse.
    execute_process(COMMAND ${CMAKE_COMMAND} -E env "LD_PRELOAD=${preloaded}" ASAN_OPTIONS=detect_leaks=1 true
                    RESULT_VARIABLE no_leaks_are_found OUTPUT_QUIET ERROR_QUIET)
    set(detect_leaks 1)
    if(no_leaks_are_found)
        set(detect_leaks 0)
    endif()
    set(sanitized_environment
        "LD_PRELOAD=${preloaded}"
        "ASAN_OPTIONS=detect_leaks=${detect_leaks}:malloc_context_size=2"
        "LSAN_OPTIONS=suppressions='${CMAKE_CURRENT_LIST_DIR}/interpreter.lsan':print_suppressions=0")
endif()
