# shellcheck shell=bash
# Shut in by chroot: for root in a container that may not make namespaces. Nothing is mounted: the instance's folder
# becomes a whole root file system, of hard links to .local/root where the disk allows it.

can_chroot() {
    ((EUID == 0)) && chroot "$root" /usr/bin/true 2>/dev/null
}

why_no_chroot() {
    if ((EUID == 0)); then
        echo "chroot is refused (root here lacks the capability CAP_SYS_CHROOT)"
    else
        echo "chroot is for root only"
    fi
}

# Links where possible, else copies.
copy_tree() {
    local from=$1 to=$2 how=-a
    mkdir -p "$to"
    rm -f "$to/.link"
    if ln "$from/$3" "$to/.link" 2>/dev/null; then
        how=-al
        rm "$to/.link"
    fi
    cp "$how" --no-preserve=ownership --remove-destination "$from/." "$to/"
}

# Never into a folder that is somebody's whole system already.
check_instance() {
    [[ -e $instance/.tree || ! -e $instance/usr/bin ]] ||
        fail "'$instance' holds a system that is not ours; give an instance's folder"
}

# Folders are copies, the files in them are write-protected: so, without rights beyond its own, is the root inside.
close_tree() {
    find "$instance" -xdev \( -path "$instance/etc/enigma2" -o -path "$instance/etc/opkg" -o -path "$instance/tmp" \
        -o -path "$instance/run" -o -path "$instance/dev" \) -prune -o -type d -exec chmod u-w {} +
}

# What the instance brought itself; a file with another name elsewhere is left alone.
close_own_files() {
    local folder
    for folder in "$instance/usr/lib/enigma2" "$instance/srv/feed"; do
        find "$folder" -xdev \( -type d -o -type f -links 1 \) -exec chmod u-w {} +
    done
}

make_tree() {
    local stamp
    stamp=$(<"$root/.made-of")
    [[ ! -r $instance/.tree || $(<"$instance/.tree") != "$stamp" ]] || return 0
    : >>"$instance/.tree"
    copy_tree "$root" "$instance" .made-of
    close_tree
    printf '%s\n' "$stamp" >"$instance/.tree"
}

choose_kinds() {
    local name
    for name in "${two_kinds[@]}"; do
        if [[ -n $gnu ]]; then
            ln -f "$instance/usr/lib/gnu-tools/$name" "$instance/usr/bin/$name"
        else
            ln -f "$instance/usr/bin/busybox" "$instance/usr/bin/$name"
        fi
    done
}

give_network() {
    local name
    for name in resolv.conf hosts; do
        rm -f "$instance/etc/$name"
        if [[ -n $network && -r /etc/$name ]]; then
            cp -L "/etc/$name" "$instance/etc/$name"
        else
            cp -a "$root/etc/$name" "$instance/etc/$name"
        fi
    done
}

# A container may refuse device files, and a disk may refuse to open them.
can_make_devices() {
    local file=$instance/dev/null
    [[ ! -c $file ]] || return 0
    rm -f "$file"
    mknod -m 666 "$file" c 1 3 2>/dev/null && { : <"$file"; } 2>/dev/null && return 0
    rm -f "$file"
    return 1
}

make_device() {
    [[ -c $instance/dev/$1 ]] || mknod -m 666 "$instance/dev/$1" c "$2" "$3"
}

# Instead: an empty file that the supervisor keeps empty, some zeros, some random bytes. Every process reads the same
# ones; that is enough here.
make_stand_in() {
    local file=$instance/dev/$1
    rm -f "$file"
    head -c "$2" "/dev/$1" >"$file"
    chmod 666 "$file"
}

make_devices() {
    ln -sfn /tmp "$instance/dev/shm"
    if can_make_devices; then
        make_device zero 1 5
        make_device random 1 8
        make_device urandom 1 9
        make_device tty 5 0
    else
        make_stand_in null 0
        make_stand_in zero 1048576
        make_stand_in random 1048576
        make_stand_in urandom 1048576
    fi
}

give_own_python() {
    local prefix
    for prefix in "${own_prefixes[@]}"; do
        [[ -e $instance$prefix ]] || copy_tree "$prefix" "$instance$prefix" "bin/${own_python##*/}"
    done
    [[ -z $own_libraries ]] || copy_tree "$own_libraries" "$instance$inside_libraries" made-for
}

enter_chroot() {
    local -a wrapped
    check_instance
    make_tree
    close_own_files
    choose_kinds
    give_network
    make_devices
    give_own_python
    wrap_command
    trap '' INT QUIT
    MORVESK_PYTHON='' exec "$tools/python" "$tools/lib/supervisor.py" "$instance" "${wrapped[@]}" "$@"
}
