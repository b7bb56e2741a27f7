# shellcheck shell=bash
# Words that are in no file: they are true on one machine only.

# Hosts that the machine's package managers ask, without a password that an address may hold.
registry_hosts() {
    {
        cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null
        ! command -v apt-config >/dev/null || apt-config dump
        cat /etc/npmrc /usr/etc/npmrc "${HOME:-/}"/.npmrc .npmrc 2>/dev/null
        ! command -v npm >/dev/null || npm config get registry 2>/dev/null
        cat /etc/pip.conf "${HOME:-/}"/.config/pip/pip.conf "${HOME:-/}"/.pip/pip.conf 2>/dev/null
    } | sed '/^[[:blank:]]*[#;]/d' | grep -o -E '[a-z]+://[^/[:blank:]";]+' |
        sed -E -e 's#.*://##' -e 's#.*@##' -e 's#:[0-9]+$##' | sort -u | grep -F . | grep -v -E '^(127\.|localhost)' || true
}

# Where this checkout lies, whose it is, and where people have theirs.
machine_paths() {
    printf '%s\n' "$checkout" "$(git -c safe.directory='*' rev-parse --path-format=absolute --git-common-dir 2>/dev/null || true)" |
        sed 's#/\.git$##'
    [[ ! ${HOME:-/} =~ ^/[^/] ]] || printf '%s\n' "$HOME"
}

as_pattern() {
    sed -e 's/[][\.*^$+?(){}|]/\\&/g' -e '/^$/d' | sort -u | paste -s -d '|'
}

# usage: find_words WHAT PATTERN
find_words() {
    local what=$1 pattern=$2 found
    [[ -n $pattern ]] || return 0
    found=$(known_files | xargs -0 -r grep -I -n -H -E -e "$pattern" -- || true)
    [[ -n $found ]] || return 0
    sed -E "s/^([^:]*:[0-9]+):/\1: $what: /" <<<"$found"
    return 1
}

lint_words() {
    local status=0 hosts paths
    hosts=$(registry_hosts | as_pattern)
    paths=$(machine_paths | as_pattern)
    find_words "host of a package registry" "${hosts:+(^|[^A-Za-z0-9.-])($hosts)([^A-Za-z0-9.-]|\$)}" || status=1
    find_words "path of this machine" "(^|[^A-Za-z0-9_./-])(${paths:+$paths|}/home/[a-z][a-z0-9_-]*)(/|[^A-Za-z0-9_.-]|\$)" || status=1
    return "$status"
}
