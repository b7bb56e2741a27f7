# shellcheck shell=bash
# The interpreter that MORVESK_PYTHON names, as it has to appear inside of the sandbox.

own_python=
own_prefixes=()
own_libraries=

# Where the libraries lie inside that this interpreter needs and the receiver's root file system has not.
inside_libraries=/machine-libraries

# The name may be that of a small script which looks for the interpreter: the interpreter says where it really is.
find_own_python() {
    [[ -n ${MORVESK_PYTHON:-} ]] || return 0
    local -a answer
    mapfile -t answer < <("$MORVESK_PYTHON" -c '
import os, sys
for path in sys.executable, sys.prefix, sys.exec_prefix, os.path.realpath(sys.executable): print(path)' 2>/dev/null)
    ((${#answer[@]} == 4)) || fail "MORVESK_PYTHON names '$MORVESK_PYTHON', which is no Python"
    own_python=${answer[0]}
    mapfile -t own_prefixes < <(printf '%s\n' "${answer[1]}" "${answer[2]}" "${answer[3]%/bin/*}" | sort -u)
    local prefix
    for prefix in "${own_prefixes[@]}"; do
        [[ $prefix != / && $prefix != /usr && $prefix == /* ]] ||
            fail "MORVESK_PYTHON is installed in '$prefix', where the receiver has its own files; take one in a folder of its own"
    done
    find_own_libraries
}

libraries_needed() {
    find "${own_prefixes[@]}" \( -path '*/lib-dynload/*.so' -o -path '*/bin/python2*' -o -name 'libpython2*.so*' \) \
        -exec ldd {} + 2>/dev/null | sed -n 's/^[[:blank:]]*\(.*\) => \(\/.*\) (0x.*/\1 \2/p' | sort -u
}

own_libraries_stamp() {
    printf '%s\n' "$own_python"
    stat -L -c '%n %s %Y' /etc/ld.so.cache "$own_python" "$root/.made-of" 2>/dev/null || true
}

copy_own_libraries() {
    local folder=$1 name file
    while read -r name file; do
        [[ $file != "${own_prefixes[0]}"/* ]] || continue
        [[ -n $(compgen -G "$root/usr/lib/*-linux-*/$name") ]] || cp -L "$file" "$folder/$name"
    done < <(libraries_needed)
    own_libraries_stamp >"$folder/made-for"
}

# Copies, kept until another interpreter is named or the machine's libraries change; another user's checkout is left alone.
find_own_libraries() {
    local work
    own_libraries=$local_folder/machine-libraries
    if [[ -r $own_libraries/made-for && $(<"$own_libraries/made-for") == "$(own_libraries_stamp)" ]]; then
        return
    fi
    [[ -w $local_folder ]] || own_libraries=$instance/run/machine-libraries
    work=$(mktemp -d "${own_libraries%/*}/libraries.XXXXXX")
    chmod 755 "$work"
    copy_own_libraries "$work"
    rm -rf "$own_libraries"
    mv -T "$work" "$own_libraries" 2>/dev/null || rm -rf "$work"
}
