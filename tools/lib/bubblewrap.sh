# shellcheck shell=bash
# Shut in by namespaces: for an ordinary user and for root.

bubblewrap_errors=

# The top folder is made anew and then closed, so that an interpreter of one's own can lie anywhere.
bubblewrap_files() {
    local name
    files=(--symlink usr/bin /bin --symlink usr/sbin /sbin --symlink usr/lib /lib --symlink usr/lib64 /lib64
        --ro-bind "$root/usr" /usr --ro-bind "$root/etc" /etc --ro-bind "$root/var" /var --dir /srv
        --bind "$instance/etc/enigma2" /etc/enigma2 --bind "$instance/etc/opkg" /etc/opkg
        --bind "$instance/tmp" /tmp --bind "$instance/run" /run)
    [[ ! -d $instance/usr/lib/enigma2 ]] || files+=(--ro-bind "$instance/usr/lib/enigma2" /usr/lib/enigma2)
    [[ ! -d $instance/srv/feed ]] || files+=(--ro-bind "$instance/srv/feed" /srv/feed)
    [[ -z $network ]] || files+=(--ro-bind-try /etc/resolv.conf /etc/resolv.conf --ro-bind-try /etc/hosts /etc/hosts)
    for name in "${two_kinds[@]}"; do
        [[ -z $gnu ]] || files+=(--ro-bind "$root/usr/lib/gnu-tools/$name" "/usr/bin/$name")
    done
    for name in "${own_prefixes[@]}"; do
        files+=(--ro-bind "$name" "$name")
    done
    [[ -z $own_libraries ]] || files+=(--ro-bind "$own_libraries" "$inside_libraries")
    files+=(--remount-ro /)
}

# Not in a session of its own: the command draws on the terminal and must hear of its size and keys.
bubblewrap_rest() {
    rest=(--unshare-pid --unshare-ipc --unshare-uts --hostname receiver --die-with-parent --cap-drop ALL --chdir /)
    [[ -n $network ]] || rest+=(--unshare-net)
}

# Finds arguments that work here. A container may allow namespaces and yet refuse a new /proc, or give them to root but
# without user namespaces.
find_bubblewrap() {
    bubblewrap_errors=
    command -v bwrap >/dev/null || return 1
    local -a files rest
    bubblewrap_files
    bubblewrap_rest
    local user process
    for user in '--unshare-user --uid 0 --gid 0' ''; do
        [[ -n $user ]] || ((EUID == 0)) || continue
        for process in '--proc /proc' '--ro-bind /proc /proc'; do
            # shellcheck disable=SC2206 # words without blanks
            bubblewrap=(bwrap $user "${rest[@]}" $process --dev /dev "${files[@]}")
            ! bubblewrap_errors=$("${bubblewrap[@]}" /usr/bin/true 2>&1 </dev/null) || return 0
        done
    done
    return 1
}

enter_bubblewrap() {
    local -a wrapped
    wrap_command
    trap '' INT QUIT
    exec "${bubblewrap[@]}" "${wrapped[@]}" "$@"
}

kernel_setting_is() {
    [[ -r /proc/sys/$1 && $(</proc/sys/"$1") == "$2" ]]
}

why_no_bubblewrap() {
    if ! command -v bwrap >/dev/null; then
        echo "the package bubblewrap is missing"
    elif kernel_setting_is user/max_user_namespaces 0; then
        echo "bubblewrap needs user namespaces, and the kernel's setting user.max_user_namespaces is 0"
    elif kernel_setting_is kernel/unprivileged_userns_clone 0; then
        echo "bubblewrap needs user namespaces, and the kernel's setting kernel.unprivileged_userns_clone is 0"
    elif kernel_setting_is kernel/apparmor_restrict_unprivileged_userns 1; then
        echo "bubblewrap needs user namespaces, and kernel.apparmor_restrict_unprivileged_userns is 1"
    else
        echo "bubblewrap is refused (${bubblewrap_errors%%$'\n'*})"
    fi
}
