# shellcheck shell=bash
# The files to look over.

# usage: known_files [PATTERN...]
# Ends each with a NUL byte. New files count as well, so that a finding comes before the commit. In a checkout that is a
# plain copy, without git, everything counts but what is made in it.
known_files() {
    local file
    if git -c safe.directory='*' rev-parse --git-dir >/dev/null 2>&1; then
        git -c safe.directory='*' ls-files -z --cached --others --exclude-standard -- "$@"
    else
        unmanaged_files "$@"
    fi | while IFS= read -r -d '' file; do
        [[ ! -f $file || -L $file ]] || printf '%s\0' "$file"
    done
}

unmanaged_files() {
    local file pattern
    find . \( -path ./.local -o -path ./build -o -path ./.git \) -prune -o -type f -not -name '*.py[co]' -print0 |
        while IFS= read -r -d '' file; do
            file=${file#./}
            (($#)) || printf '%s\0' "$file"
            for pattern; do
                # shellcheck disable=SC2053 # it is a pattern
                [[ $file != $pattern ]] || printf '%s\0' "$file"
            done
        done
}

# Those whose first line names one of the given interpreters, as a pattern.
files_run_by() {
    local file first
    while IFS= read -r -d '' file; do
        IFS= read -r first <"$file" || true
        [[ ! $first =~ ^\#!.*[/\ ]($1)([\ ]|$) ]] || printf '%s\0' "$file"
    done 2>/dev/null
}

cpp_files() {
    known_files 'plugin/*.cpp' 'plugin/*.hpp' 'benchmarks/*.cpp' 'benchmarks/*.hpp'
}

shell_scripts() {
    known_files | files_run_by '(ba|da)?sh'
}

# Parts that scripts take in.
shell_parts() {
    known_files '*.sh' | while IFS= read -r -d '' file; do
        [[ $(head -c 2 "$file") == '#!' ]] || printf '%s\0' "$file"
    done
}

python_files() {
    { known_files '*.py'; known_files | files_run_by 'python[0-9.]*'; } | sort -z -u
}
