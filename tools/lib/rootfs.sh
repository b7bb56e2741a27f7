# shellcheck shell=bash
# .local/root: a Debian root file system with Python 2.7, in which the virtual receiver lives and whose interpreter the
# project also uses directly. It is made beside its place and renamed, so that an interrupted set-up is simply repeated.

# To be raised when a change in making it must reach the root file systems that are there already.
root_version=3

# Python comes out of the first, everything else out of the second: its C library is that of the machine.
root_suites="bullseye bookworm"

# What a root file system was made of; it lies in it as /.made-of and is compared before anything is done.
root_stamp() {
    printf 'version %s, %s, %s\n' "$root_version" "$HOSTTYPE" "$root_suites"
    printf '%s\n' "$(<"$tools/packages/root")" "$(<"$tools/packages/root-without")"
}

root_is_current() {
    [[ -r $root/.made-of && $(<"$root/.made-of") == "$(root_stamp)" ]]
}

# Renames cannot be interrupted half-way; a root file system that is in use lives on until its last user has gone.
put_root_in_place() {
    [[ ! -e $root ]] || mv "$root" "$1/old"
    mv "$1/root" "$root"
}

# A process of its own makes it: a shell that looks at a function's result does not stop at the function's errors.
bring_root() {
    ! root_is_current || return 0
    rm -rf "$local_folder"/work.*
    local work made=0
    work=$(mktemp -d "$local_folder/work.XXXXXX")
    "$BASH" "$tools/lib/make-root" "$work" 9>&- || made=$?
    ((made != 0)) || put_root_in_place "$work"
    rm -rf "$work"
    return "$made"
}
