# bash completes the arguments of zurt and of the programs beside it: options as --help has them, their values, commands, files.

# Sets help, which is the caller's, to what a program, or its command $2, says with --help; it is asked once in a shell.
declare -gA _zurt_pages
_zurt_help() {
    if [[ -z ${_zurt_pages[$1 $2]-} ]]; then
        _zurt_pages[$1 $2]=$("$1" ${2:+"$2"} --help 2>/dev/null)
    fi
    help=${_zurt_pages[$1 $2]}
}

# The options at the heads of the lines of a page of help.
_zurt_options() {
    sed -n '/^ *-/p' | sed 's/\([^ ]\)   *.*/\1/' | grep -oE -- '(^|[ ,])--?[[:alpha:]][-_[:alnum:]]*' | tr -d ' ,' | sort -u
}

# The names in COMPREPLY are files: folders, and files of the pattern $2 (all without it), that begin with $1.
_zurt_files() {
    local IFS=$'\n'
    COMPREPLY=($(compgen -d -- "$1"; compgen -f -X "!${2:-*}" -- "$1"))
    COMPREPLY=($(printf '%s\n' "${COMPREPLY[@]}" | sort -u))
    compopt -o filenames 2>/dev/null
}

_zurt() {
    local program=${1/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} help
    if [[ $word == = ]]; then # --solver=cg comes as three words
        word=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    case $before in
        --solver) COMPREPLY=($(compgen -W 'skyline sparse cg' -- "$word")) ;;
        --words | --probe | --wall-cells | --tolerance | --threads | --checkpoint) ;;
        --prescribed | --progress) _zurt_files "$word" ;;
        --restart) _zurt_files "$word" '*.checkpoint' ;;
        -o | --output) _zurt_files "$word" '/' ;;
        *)
            if [[ $word != -* ]]; then
                _zurt_files "$word" '*.dat'
                return
            fi
            _zurt_help "$program"
            COMPREPLY=($(compgen -W "$(_zurt_options <<<"$help")" -- "$word"))
            if [[ ${program##*/} == zurt-mpi ]]; then # zurt's own stand ahead of the deck
                _zurt_help "${program%-mpi}"
                COMPREPLY+=($(compgen -W "$(_zurt_options <<<"$help")" -- "$word"))
            fi
            ;;
    esac
}

# The programs in Python say what values an option takes, {a,b}, and what commands they have.
_zurt_companion() {
    local program=${1/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' help values
    if ((COMP_CWORD > 1)) && [[ ${COMP_WORDS[1]} == [a-z]* && ! -e ${COMP_WORDS[1]} ]]; then
        command=${COMP_WORDS[1]}
    fi
    COMPREPLY=()
    if [[ $word != -* && $before != -* ]]; then
        _zurt_files "$word"
        if ((COMP_CWORD == 1)); then
            _zurt_help "$program"
            COMPREPLY+=($(compgen -W "$(sed -n '/^positional/,/^$/s/^    \([a-z][-a-z]*\)\( .*\)\?$/\1/p' <<<"$help")" -- "$word"))
        fi
        return
    fi
    _zurt_help "$program" "$command"
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$(_zurt_options <<<"$help")" -- "$word"))
        return
    fi
    values=$(sed -n "s/^ *\(-[^ ]* [^ ]*, \)\?$before {\([^}]*\)}.*/\2/p" <<<"$help")
    if [[ -n $values ]]; then
        COMPREPLY=($(compgen -W "${values//,/ }" -- "$word"))
    else
        _zurt_files "$word"
    fi
}

complete -F _zurt zurt zurt-mpi
complete -F _zurt_companion zurt-deck zurt-fibres zurt-report zurt-convert
