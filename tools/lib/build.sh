# shellcheck shell=bash
# Configures and builds the presets of CMake, each in build/NAME.

# The settings that an interpreter of one's own asks for. The debug build is for an interpreter that counts references.
preset_settings() {
    local preset=$1 testing=$2 kind=()
    printf '%s\n' "-DBUILD_TESTING=$testing"
    [[ -n ${MORVESK_PYTHON:-} ]] || return 0
    [[ $preset != debug ]] || kind=(--debug)
    printf -- '-DMORVESK_PYTHON_INCLUDE=%s\n' \
        "$("$tools/python" "${kind[@]}" -c 'import sysconfig; print(sysconfig.get_paths()["include"])')"
}

is_configured() {
    local folder=$1 settings=$2
    [[ -e $folder/build.ninja && -r $folder/settings && $(<"$folder/settings") == "$settings" ]] &&
        [[ ! $checkout/CMakePresets.json -nt $folder/settings ]]
}

configure() {
    local preset=$1 settings=$2 folder=$checkout/build/$1
    local -a arguments
    ! is_configured "$folder" "$settings" || return 0
    mapfile -t arguments <<<"$settings"
    say "configuring build/$preset"
    mkdir -p "$folder"
    (cd "$checkout" && cmake --preset "$preset" "${arguments[@]}") >"$folder/configure.log" 2>&1 || {
        cat "$folder/configure.log" >&2
        say "build/$preset could not be configured; CMake's words stand above"
        exit 1
    }
    printf '%s\n' "$settings" >"$folder/settings"
}

# Ninja's count of steps in place, everything else as it comes.
show_build() {
    local title=$1 line steps=0
    while IFS= read -r line; do
        case $line in
            *'no work to do.' | *'Re-checking globbed'* | *'Re-running CMake'* | '-- '* | 'ninja: Entering'* | '') ;;
            \[*/*\]*)
                steps=$((steps + 1))
                if [[ -t 2 ]]; then
                    printf '\r%s: %s: %s ' "$program" "$title" "${line%%]*}]" >&2
                elif ((steps == 1)); then
                    say "$title"
                fi
                ;;
            *) printf '%s\n' "$line" >&2 ;;
        esac
    done
    [[ ! -t 2 || $steps == 0 ]] || printf '\r%78s\r' '' >&2
}

# usage: build PRESET [TARGET...]
build() {
    local preset=$1 folder=$checkout/build/$1
    shift
    ninja -C "$folder" "$@" 2>&1 | show_build "building build/$preset" || {
        say "build/$preset could not be built; the compiler's words stand above"
        exit 1
    }
}
