# Completion of kord-console's commands and options.
_kord_console()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word != -- ]] || { COMPREPLY=($(compgen -c -- "$current")); return; }
    done
    case $previous in
        --facility) COMPREPLY=($(compgen -f -- "$current")); return ;;
        --root) COMPREPLY=($(compgen -d -- "$current")); return ;;
    esac
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W "run check make --help" -- "$current"))
        return
    fi
    case ${COMP_WORDS[1]} in
        run) options="--facility --root --user --help --" ;;
        make) options="--images --cec --io --adapters --racks --enclosures --drives --volumes --hosts --seed --help" ;;
        *) options="--help" ;;
    esac
    COMPREPLY=($(compgen -W "$options" -- "$current"))
    [[ $current == -* ]] || COMPREPLY+=($(compgen -f -- "$current"))
}
complete -o filenames -F _kord_console kord-console
