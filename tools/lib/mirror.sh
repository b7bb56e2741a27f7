# shellcheck shell=bash
# The machine's own package mirrors, asked through apt with a state of our own: nothing of the machine is touched.

# Debian's keys for its releases, old ones among them.
debian_keys=/usr/share/keyrings/debian-archive-keyring.gpg

# Every source of the machine's configuration as a stanza of the newer form.
machine_sources() {
    local file
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [[ ! -r $file ]] || awk -f "$tools/lib/sources-list.awk" "$file"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ ! -r $file ]] || { cat "$file" && echo; }
    done
}

# Writes one source file for each mirror that the machine uses (FOLDER/NUMBER.sources), with our suites in place of the
# machine's. Mirrors whose path ends in "debian" get the lower numbers: they are tried first.
list_mirrors() {
    local folder=$1 suites=$2 keys=
    [[ ! -r $debian_keys ]] || keys=$debian_keys
    mkdir -p "$folder"
    machine_sources | awk -v folder="$folder" -v suites="$suites" -v keys="$keys" -f "$tools/lib/sources.awk"
}

# A package that apt shall take for installed already, so that it is not fetched.
pretend_installed() {
    printf 'Package: %s\nStatus: install ok installed\nArchitecture: %s\nVersion: 9:9\n' "$1" "$2"
    printf 'Maintainer: none\nDescription: none\n\n'
}

# apt's configuration for a state of our own in FOLDER. The hooks of the machine's configuration are for its own state.
write_apt_configuration() {
    local folder=$1 architecture=$2 mirror=$3
    mkdir -p "$folder/state/lists/partial" "$folder/cache/archives/partial"
    cat >"$folder/apt.conf" <<END
#clear APT::Update::Pre-Invoke;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
#clear DPkg::Pre-Invoke;
#clear DPkg::Post-Invoke;
#clear DPkg::Pre-Install-Pkgs;
#clear APT::Architectures;
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Sandbox::User "root";
APT::Update::Error-Mode "any";
APT::Install-Recommends "false";
Acquire::Languages "none";
Acquire::Retries "2";
Acquire::http::Timeout "20";
Acquire::https::Timeout "20";
Debug::NoLocking "true";
Dir::State "$folder/state";
Dir::State::status "$folder/status";
Dir::Cache "$folder/cache";
Dir::Etc::sourcelist "$mirror";
Dir::Etc::sourceparts "/dev/null";
Dir::Etc::preferences "/dev/null";
Dir::Etc::preferencesparts "/dev/null";
END
}

private_apt() {
    local folder=$1 title=$2
    shift 2
    LC_ALL=C apt-get -q -c "$folder/apt.conf" -o APT::Status-Fd=3 "$@" \
        3>&1 >"$folder/output" 2>"$folder/errors" | show_progress "$title"
}

# Fetches the named packages of an architecture with all that they need into FOLDER/cache/archives, from the first
# of the machine's mirrors that has the suites, or ends. FOLDER/status says what counts as installed.
fetch_packages() {
    local folder=$1 architecture=$2 suites=$3 mirror complaint=
    shift 3
    list_mirrors "$folder/mirrors" "$suites"
    for mirror in "$folder"/mirrors/*.sources; do
        [[ -e $mirror ]] || break
        write_apt_configuration "$folder" "$architecture" "$mirror"
        if private_apt "$folder" "package index" update &&
            private_apt "$folder" "packages" install --download-only -y "$@"; then
            return 0
        fi
        [[ -n $complaint ]] || complaint=$(first_complaint "$folder/errors")
    done
    say "no mirror of the machine's apt sources delivers Debian's suites $suites:" \
        "${complaint:-there is none in /etc/apt}; add a Debian mirror there, or name a Python 2.7 in MORVESK_PYTHON"
    exit 2
}
