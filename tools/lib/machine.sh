# shellcheck shell=bash
# Packages of the machine's package manager.

# True when the command is in the path, or a file of that pattern is there.
is_there() {
    [[ $1 == /* ]] || { command -v "$1" >/dev/null; return; }
    compgen -G "$1" >/dev/null
}

# The packages of a set whose command or file is missing.
missing_packages() {
    local package probe
    while read -r package probe; do
        [[ -z $package || $package == \#* ]] || is_there "$probe" || printf '%s\n' "$package"
    done <"$tools/packages/$1"
}

as_root() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo -n "$@"
    fi
}

can_be_root() {
    ((EUID == 0)) || sudo -n true 2>/dev/null
}

machine_apt() {
    as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -q -y -o APT::Status-Fd=3 -o DPkg::Lock::Timeout=300 "$@" \
        3>&1 >"$local_folder/packages.log" 2>&1 9>&-
}

# An index that cannot be renewed may still be good enough.
install_packages() {
    say "installing packages of the machine: $*"
    machine_apt update >/dev/null || say "the package index could not be renewed, going on with the one that is there"
    machine_apt install --no-install-recommends "$@" | show_progress "installing" ||
        fail "apt-get could not install them: $(first_complaint "$local_folder/packages.log")"
    rm -f "$local_folder/packages.log"
}

bring_packages() {
    local set
    local -a missing=()
    for set; do
        mapfile -t -O "${#missing[@]}" missing < <(missing_packages "$set")
    done
    ((${#missing[@]})) || return 0
    command -v apt-get >/dev/null ||
        fail "the machine lacks (names of Debian's packages): ${missing[*]}; install them and start again"
    can_be_root ||
        fail "packages are missing; have root run: apt-get install --no-install-recommends ${missing[*]}"
    install_packages "${missing[@]}"
}
