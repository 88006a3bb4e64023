# Completion of kord's commands and options.
_kord()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word != -- ]] || { COMPREPLY=($(compgen -c -- "$current")); return; }
    done
    case $previous in
        --quiet-after) return ;;
        -o | --output | --html) COMPREPLY=($(compgen -f -- "$current")); return ;;
    esac
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W "show diff follow record --help --version" -- "$current"))
        return
    fi
    case ${COMP_WORDS[1]} in
        show) options="--json --html --help" ;;
        diff) options="--json --help" ;;
        follow) options="--quiet-after --help" ;;
        record) options="--output --redact --verify --help --" ;;
        *) options="--help" ;;
    esac
    COMPREPLY=($(compgen -W "$options" -- "$current"))
    [[ $current == -* ]] || COMPREPLY+=($(compgen -f -- "$current"))
}
complete -o filenames -F _kord kord
