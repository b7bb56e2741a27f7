# shellcheck shell=bash
# What the package manager has to say.

# Reads its status lines ("dlstatus:N:PERCENT:TEXT", "pmstatus:NAME:PERCENT:TEXT"). On a terminal one line that changes,
# else one line for every quarter.
show_progress() {
    local title=$1 kind number percent text quarter shown=0
    while IFS=: read -r kind number percent text; do
        [[ $kind == dlstatus || $kind == pmstatus ]] || continue
        percent=${percent%%.*}
        if [[ -t 2 ]]; then
            printf '\r%s: %s: %3d %% %-40.40s' "$program" "$title" "$percent" "$text" >&2
            continue
        fi
        quarter=$((percent / 25))
        ((quarter > shown)) || continue
        shown=$quarter
        say "$title: $percent %"
    done
    [[ ! -t 2 ]] || printf '\r%78s\r' '' >&2
}

# What apt complained about first, without a password that the mirror's address may hold.
first_complaint() {
    local text
    text=$(sed -n -E -e 's#//[^/@ ]*@#//#g' -e 's/^[EW]: //p' "$1" | head -n 1)
    printf '%s\n' "${text:-apt-get ended without a word}"
}
