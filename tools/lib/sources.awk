# From stanzas of package sources to one source file for each mirror.
# Variables: folder (where the files go), suites (to ask for), keys (Debian's key ring, or empty).

function clear_stanza() {
    split("", values)
    signers = ""
    field = ""
}

# The machine's keys for a mirror may be those of its own release alone.
function signers_with_debian_keys() {
    if (keys == "" || signers !~ /^[ \t]*\// || index(signers, keys)) {
        return signers
    }
    return signers " " keys
}

function write_mirror(uri, number) {
    file = folder "/" number ".sources"
    print "Types: deb\nURIs: " uri "\nSuites: " suites "\nComponents: main" > file
    if (signers != "") {
        print "Signed-By:" signers_with_debian_keys() > file
    }
    if (tolower(values["trusted"]) ~ /^[ \t]*yes/) {
        print "Trusted: yes" > file
    }
    close(file)
}

# Only what may be a whole distribution: neither security nor updates of one, nor a flat folder of packages.
function is_distribution() {
    return (" " values["types"] " ") ~ /[ \t]deb[ \t]/ &&
        (" " values["components"] " ") ~ /[ \t]main[ \t]/ &&
        tolower(values["enabled"]) !~ /no/ &&
        (values["suites"] " ") ~ /[a-z][ \t]/ &&
        values["suites"] !~ /^[ \t]*[^ \t]*(-security|-updates|-backports|-proposed|\/)/
}

function end_stanza(count, uris, i) {
    if (is_distribution()) {
        count = split(values["uris"], uris, /[ \t]+/)
        for (i = 1; i <= count; i++) {
            if (uris[i] ~ /^[a-z+]+:/ && uris[i] !~ /^cdrom:/ && !(uris[i] in seen)) {
                seen[uris[i]] = 1
                total++
                write_mirror(uris[i], (uris[i] ~ /\/debian\/?$/ ? 1000 : 2000) + total)
            }
        }
    }
    clear_stanza()
}

/^#/ {
    next
}

/^[ \t]*$/ {
    end_stanza()
    next
}

/^[ \t]/ {
    if (field == "signed-by") {
        signers = signers "\n" $0
    } else {
        values[field] = values[field] " " $0
    }
    next
}

{
    field = tolower(substr($0, 1, index($0, ":") - 1))
    value = substr($0, index($0, ":") + 1)
    if (field == "signed-by") {
        signers = value
    } else {
        values[field] = value
    }
}

END {
    end_stanza()
}
