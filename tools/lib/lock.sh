# shellcheck shell=bash
# One set-up, and one build, at a time in a checkout. A lock is held until this shell ends; children that are started with
# 9>&- do not hold it on.

hold_lock() {
    local file=$1 what=$2
    { mkdir -p "$local_folder" && : >>"$file"; } 2>/dev/null ||
        fail "cannot write to $local_folder: the checkout must belong to you"
    exec 9>>"$file"
    flock -n 9 && return
    say "waiting for another $what in this checkout"
    flock 9
}

lock_project() {
    hold_lock "$local_folder/lock" set-up
}

lock_build() {
    hold_lock "$local_folder/build.lock" build
}
