# shellcheck shell=bash
# .local/lib: links to those libraries of the root file system that its interpreter needs and the machine has not.

# What decides which libraries the machine has.
libraries_stamp() {
    stat -L -c '%n %s %Y' /etc/ld.so.cache /etc/os-release "$root/.made-of" 2>/dev/null || true
}

missing_libraries() {
    LD_LIBRARY_PATH=$1 ldd "$root"/usr/bin/python2.7{,-dbg} "$root"/usr/lib/python2.7/lib-dynload/*.so 2>/dev/null |
        sed -n 's/^[[:blank:]]*\(.*\) => not found.*/\1/p' | sort -u
}

# Libraries that are linked in may lack others in turn.
link_libraries() {
    local folder=$1 name found linked=1
    while ((linked)); do
        linked=0
        while read -r name; do
            found=$(compgen -G "$root/usr/lib/*-linux-*/$name" | head -n 1) || continue
            ln -s "../${found#"$local_folder/"}" "$folder/$name" 2>/dev/null || continue
            linked=1
        done < <(missing_libraries "$folder")
    done
}

libraries_are_current() {
    [[ -r $local_folder/lib/made-for && $(<"$local_folder/lib/made-for") == "$(libraries_stamp)" ]]
}

bring_libraries() {
    local folder=$local_folder/lib.new
    [[ -e $root/.made-of ]] || return 0
    ! libraries_are_current || return 0
    rm -rf "$folder"
    mkdir "$folder"
    link_libraries "$folder"
    libraries_stamp >"$folder/made-for"
    rm -rf "${local_folder:?}/lib"
    mv "$folder" "$local_folder/lib"
}
