# shellcheck shell=bash
# Lists of packages, and packages laid out in a folder.

# The names that a list of packages holds.
package_names() {
    sed -e 's/#.*//' -e '/^$/d' "$1"
}

# Unpacks every package of a folder, as the package manager would lay it out.
unpack_packages() {
    local from=$1 to=$2 package
    for package in "$from"/*.deb; do
        dpkg --fsys-tarfile "$package" | tar -x -p --keep-directory-symlink -C "$to"
    done
}

# What packages ask for and nothing here uses, as entries of apt's status file.
pretend_unused_installed() {
    local name
    while read -r name; do
        pretend_installed "$name" "$1"
    done < <(package_names "$tools/packages/root-without")
}
