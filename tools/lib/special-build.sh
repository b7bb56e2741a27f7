# shellcheck shell=bash
# Builds that nobody else needs, each in build/NAME: a preset of CMake with settings of its own.

# usage: configure_special NAME PRESET SETTING...
configure_special() {
    local name=$1 preset=$2 folder=$checkout/build/$1 settings
    shift 2
    settings=$(preset_settings "$preset" ON; printf '%s\n' "$@")
    ! is_configured "$folder" "$settings" || return 0
    local -a arguments
    mapfile -t arguments <<<"$settings"
    say "configuring build/$name"
    mkdir -p "$folder"
    (cd "$checkout" && cmake --preset "$preset" -B "$folder" "${arguments[@]}") >"$folder/configure.log" 2>&1 || {
        cat "$folder/configure.log" >&2
        say "build/$name could not be configured; CMake's words stand above"
        exit 1
    }
    printf '%s\n' "$settings" >"$folder/settings"
}

# usage: make_special NAME PRESET SETTING... -- [TARGET...]
make_special() (
    local name=$1 preset=$2
    local -a settings=()
    shift 2
    while [[ $1 != -- ]]; do
        settings+=("$1")
        shift
    done
    shift
    lock_build
    configure_special "$name" "$preset" "${settings[@]}"
    build "$name" "$@"
)
