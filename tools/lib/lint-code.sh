# shellcheck shell=bash
# The checks of code.

lint_format() {
    cpp_files | xargs -0 -r clang-format --dry-run -Werror
}

# What is preloaded into an interpreter takes the place of the C library's own functions, by names and means that these
# checks are there to forbid.
checked_files() {
    known_files "$@" | grep -z -v '^plugin/tests/sweeps/native/' || true
}

# Only what is built: the compiler's arguments are those of build/release. clang knows not all that GCC takes.
lint_tidy() {
    local database=build/release/compile_commands.json
    [[ -r $database ]] || fail "build/release has not been configured yet: run ./test once"
    checked_files 'plugin/*.cpp' 'benchmarks/*.cpp' |
        while IFS= read -r -d '' file; do
            if grep -q -F "/$file\"" "$database"; then
                printf '%s\0' "$file"
            else
                say "$file is not built by build/release: clang-tidy does not look at it"
            fi
        done |
        xargs -0 -r -n 1 -P "$(nproc)" "$tools/lib/tidy-file"
}

lint_cppcheck() {
    checked_files 'plugin/*.[ch]pp' 'benchmarks/*.[ch]pp' |
        xargs -0 -r cppcheck --quiet --std=c++17 --language=c++ --library=googletest -I plugin/src --inline-suppr \
        --enable=warning,performance,portability --error-exitcode=1 \
        --template='{file}:{line}: {severity}: {message} [{id}]'
}

# A part by itself knows nothing of the variables of the script that takes it in.
lint_shell() {
    local status=0
    shell_scripts | xargs -0 -r shellcheck -x -P . -f gcc || status=1
    shell_parts | xargs -0 -r shellcheck -e SC2034,SC2154 -f gcc || status=1
    return "$status"
}

lint_python() {
    python_files | xargs -0 -r "$tools/python" "$tools/lib/lint_python.py"
}
