# Completion of orvquery's command line for bash.

_orvquery() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} option
    COMPREPLY=()
    # bash splits --option=value at the sign.
    if [ "$current" = = ]; then
        option=$previous current=
    elif [ "$previous" = = ]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    else
        option=$previous
    fi
    case $option in
        --format)
            COMPREPLY=($(compgen -W "table csv tsv json" -- "$current"))
            return
            ;;
        --param | --param-null) return ;;
        --database | --schema | --load | --list | --diff | --render)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
    esac
    case $current in
        -*)
            COMPREPLY=($(compgen -W "--database --schema --load --classic --strict --print \
                --explain --state --run --format --param --param-null --render --list --diff \
                --help --version" \
                -- "$current"))
            ;;
        *)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
    esac
}

complete -F _orvquery orvquery
