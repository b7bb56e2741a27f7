# shellcheck shell=bash
# Interpreters besides that of .local/root: each in .local/root-NAME, laid out as in .local/root (usr/bin/python2.7,
# usr/include/python2.7), made beside its place and renamed.

# To be raised when a change in making them must reach those that are there already.
interpreters_version=1

# The oldest suite that the mirrors still have: what runs with its libraries runs with newer ones.
interpreter_suites=bullseye

# The suite of the machine's own age; its emulators are static programs.
emulator_suites=bookworm

interpreter_stamp() {
    printf 'version %s, %s, %s, %s %s\n' "$interpreters_version" "$1" "$HOSTTYPE" "$interpreter_suites" "$emulator_suites"
    cat "$tools/packages/foreign-root" "$tools/interpreters"/*
}

interpreter_is_current() {
    [[ -r $local_folder/root-$1/.made-of && $(<"$local_folder/root-$1/.made-of") == "$(interpreter_stamp "$1")" ]]
}

put_interpreter_in_place() {
    local name=$1 work=$2
    [[ ! -e $local_folder/root-$name ]] || mv "$local_folder/root-$name" "$work/old"
    mv "$work/root" "$local_folder/root-$name"
}

bring_interpreter() {
    local name=$1 work made=0
    ! interpreter_is_current "$name" || return 0
    rm -rf "$local_folder"/interpreter.*
    work=$(mktemp -d "$local_folder/interpreter.XXXXXX")
    "$BASH" "$tools/lib/make-interpreter" "$name" "$work" 9>&- || made=$?
    ((made != 0)) || put_interpreter_in_place "$name" "$work"
    rm -rf "$work"
    return "$made"
}
