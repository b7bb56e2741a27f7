# shellcheck shell=bash
# The suites that CTest knows in each preset's build folder.

# What takes long is left to those who ask for all, or for it by its name.
left_out() {
    [[ -n ${everything:-} || -n ${name:-} ]] || printf '%s\n' --label-exclude '^full$'
}

# The suites of a preset, one a line; with a name, those that begin so.
suites_of() {
    local -a without
    mapfile -t without < <(left_out)
    ctest --test-dir "$checkout/build/$1" --show-only=human -R "$(name_pattern)" "${without[@]}" 9>&- |
        sed -n 's/^ *Test *#[0-9]*: //p'
}

# The name is text, not a pattern.
name_pattern() {
    printf '%s\n' "$name" | sed -e 's/[][\.*^$+?(){}|]/\\&/g' -e '1s/^/^/'
}

presets_with_suites() {
    local preset
    for preset in "${presets[@]}"; do
        [[ -z $(suites_of "$preset") ]] || printf '%s\n' "$preset"
    done
}

list_suites() {
    local preset
    for preset in "${presets[@]}"; do
        suites_of "$preset" | sed "s/^/$preset  /"
    done
}

# CTest takes a skipped or disabled suite for no failure; here it is one.
suites_not_run() {
    sed -n 's/.*<testcase name="\([^"]*\)".* status="\(notrun\|disabled\)".*/\1/p' "$1"
}

# A suite that passes may have checks which this machine does not allow; it prints "not run: " before each.
checks_not_run() {
    sed -n -E -e "s/&apos;/'/g; s/&quot;/\"/g; s/&lt;/</g; s/&gt;/>/g; s/&amp;/\\&/g" \
        -e 's/^([[:blank:]]*<system-out>)?not run: //p' "$1"
}

run_preset() {
    local preset=$1 folder=$checkout/build/$1 status=0 suite check
    local -a without
    mapfile -t without < <(left_out)
    say "running the suites of build/$preset"
    ctest --test-dir "$folder" --output-on-failure --no-tests=error --parallel 2 -R "$(name_pattern)" "${without[@]}" \
        --test-output-size-passed 10000000 --output-junit "$folder/suites.xml" || status=1
    while read -r suite; do
        say "$preset: $suite did not run"
        status=1
    done < <(suites_not_run "$folder/suites.xml")
    while read -r check; do
        say "$preset: not run on this machine: $check"
    done < <(checks_not_run "$folder/suites.xml")
    return "$status"
}

run_suites() {
    local preset status=0
    local -a chosen
    mapfile -t chosen < <(presets_with_suites)
    ((${#chosen[@]})) || fail "no suite's name begins with '$name'; ./test --list names them all"
    for preset in "${chosen[@]}"; do
        run_preset "$preset" || status=1
    done
    return "$status"
}
