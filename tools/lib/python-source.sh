# shellcheck shell=bash
# Debian's source package of Python 2.7, its security corrections applied. The other patches of the package arrange
# installed files; an interpreter that stays in its folder does without.

fetch_source_package() (
    local work=$1 mirror complaint=
    list_mirrors "$work/mirrors" "$interpreter_suites"
    : >"$work/status"
    cd "$work" || exit
    for mirror in mirrors/*.sources; do
        [[ -e $mirror ]] || break
        sed -i 's/^Types: .*/Types: deb-src/' "$mirror"
        write_apt_configuration "$work" "$(dpkg --print-architecture)" "$work/$mirror"
        if private_apt "$work" "source index" update &&
            private_apt "$work" "source package" source --download-only python2.7; then
            return 0
        fi
        [[ -n $complaint ]] || complaint=$(first_complaint "$work/errors")
    done
    fail "no mirror of the machine's apt sources delivers the source package python2.7 of $interpreter_suites:" \
        "${complaint:-there is none in /etc/apt}"
)

# Unpacks it to FOLDER/source.
unpack_source() {
    local work=$1 patch
    mkdir "$work/source"
    tar -xzf "$work"/python2.7_*.orig.tar.gz --strip-components=1 -C "$work/source"
    gzip -dc "$work"/python2.7_*.diff.gz | patch -s -p1 -d "$work/source"
    while read -r patch; do
        patch -s -p1 -d "$work/source" <"$work/source/debian/patches/$patch"
    done < <(grep '^CVE' "$work/source/debian/patches/series.in")
}

bring_python_source() {
    local work=$1/python-source
    mkdir "$work"
    say "fetching the source package of Python 2.7"
    fetch_source_package "$work"
    unpack_source "$work"
}
