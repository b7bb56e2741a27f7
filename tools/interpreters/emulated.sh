#!/bin/sh
# Runs the interpreter of another processor under its emulator, with its own loader and libraries; every path that it opens
# is the machine's. Its processes may start this file as any other program: sitecustomize.py says that it is the interpreter.
self=$0
[ ! -L "$self" ] || self=$(readlink -f "$self")
case $self in
    /*) ;;
    *) self=$PWD/$self ;;
esac
emulated=${self%/bin/*}/lib/emulated
exec "$emulated/emulator" "$emulated/loader" --library-path "$emulated/lib" "$emulated/python2.7" "$@"
