# shellcheck shell=bash
# What a command finds inside, whatever shuts it in.

# The programs that are BusyBox's on a receiver, unless --gnu asks for the others in /usr/lib/gnu-tools.
two_kinds=(cp gzip rm sh tar)

# Only the plain locale of that coding is inside.
inside_language() {
    local language=${LC_ALL:-${LC_CTYPE:-${LANG:-C}}}
    case ${language,,} in
        *utf-8* | *utf8*) echo C.UTF-8 ;;
        *) echo C ;;
    esac
}

# A terminal that is unknown inside is most likely made in the image of this one.
inside_terminal() {
    local terminal=${TERM:-dumb}
    if [[ $terminal == */* || -z $(compgen -G "$root/usr/lib/terminfo/?/$terminal") ]]; then
        terminal=xterm-256color
    fi
    printf '%s\n' "$terminal"
}

# The words before the command: a clean environment, and the keyboard's signals as usual (whoever waits outside ignores
# them, so that the command ends in its own way).
wrap_command() {
    local path=/usr/bin:/bin:/usr/sbin:/sbin
    wrapped=(/usr/bin/env -i --default-signal=INT --default-signal=QUIT
        HOME=/ "TERM=$(inside_terminal)" "LANG=$(inside_language)"
        PYTHONPATH=/usr/lib/enigma2/python:/usr/lib/enigma2/receiver PYTHONDONTWRITEBYTECODE=1)
    if [[ -n $own_python ]]; then
        path=${own_python%/*}:$path
        wrapped+=("MORVESK_PYTHON=$own_python")
        [[ -z $own_libraries ]] || wrapped+=("LD_LIBRARY_PATH=$inside_libraries")
    fi
    wrapped+=("PATH=$path")
}
