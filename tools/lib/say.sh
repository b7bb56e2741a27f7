# shellcheck shell=bash
# How every command of the project speaks: one line each, on standard error, with the command's name before it.

say() {
    printf '%s: %s\n' "${program:-${0##*/}}" "$*" >&2
}

# Bad input, or something that is missing: says what to do and ends.
fail() {
    say "$@"
    exit 2
}
