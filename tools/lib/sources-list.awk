# One-line package sources ("deb [option=value ...] URI SUITE COMPONENT...") as stanzas.

{
    sub(/#.*/, "")
}

$1 != "deb" {
    next
}

{
    line = $0
    options = ""
    if (match(line, /\[[^]]*\]/)) {
        options = substr(line, RSTART + 1, RLENGTH - 2)
        line = substr(line, 1, RSTART - 1) substr(line, RSTART + RLENGTH)
    }
    sub(/^[ \t]+/, "", line)
    count = split(line, words, /[ \t]+/)
    print "Types: deb"
    print "URIs: " words[2]
    print "Suites: " words[3]
    components = ""
    for (i = 4; i <= count; i++) {
        components = components " " words[i]
    }
    print "Components:" components
    count = split(options, words, /[ \t]+/)
    for (i = 1; i <= count; i++) {
        if (words[i] ~ /^signed-by=/) {
            signers = substr(words[i], 11)
            gsub(/,/, " ", signers)
            print "Signed-By: " signers
        }
        if (words[i] == "trusted=yes") {
            print "Trusted: yes"
        }
    }
    print ""
}
