# Bash completion for belun-simulator, belun-private-network and belun-verify. Options, faults and control
# lines come from the commands themselves: from --help and --list-faults.
# shellcheck shell=bash

# Prints the options of a command, one per line, as --help shows them: "--card DIR", "--sample[=a|b]".
_belun_options()
{
    if [[ ${1##*/} == belun-simulator ]]; then
        "$1" --help=words
    else
        # Lines such as "  --netem TEXT    create ..." and "  --help, --version".
        LC_ALL=C "$1" --help |
            awk -F '   *' '/^ +--/ { n = split($2, names, /, /)
                                     for (i = 1; i <= n; ++i) print names[i] }'
    fi 2>/dev/null
}

# Prints the completions of an option's value. The second argument is the value as --help shows it:
# "DIR", "boundary|dive", ...
_belun_values()
{
    local command=$1 value=$2 current=$3
    case $value in
        DIR) compgen -d -- "$current" ;;
        FILE | PATH*) compgen -f -- "$current" ;;
        NAME*) [[ ${command##*/} != belun-simulator ]] ||
            compgen -W "$("$command" --list-faults=words 2>/dev/null)" -- "$current" ;;
        *'|'*) compgen -W "${value//|/ }" -- "$current" ;;
    esac
}

_belun()
{
    local command=$1 line=${COMP_LINE:0:COMP_POINT} words forms form option i
    local current previous value='' prefix='' others=0 sending=''
    read -ra words <<<"$line"
    [[ $line != *[[:space:]] ]] || words+=('')
    current=${words[-1]} previous=${words[-2]}
    mapfile -t forms < <(_belun_options "$command")

    # Counts the words before the current one that are neither options nor their values: a command, a
    # recording, lines to send.
    for ((i = 1; i < ${#words[@]} - 1; ++i)); do
        option=${words[i]}
        if [[ $option != -* ]]; then
            ((++others))
            continue
        fi
        [[ $option != --send ]] || sending=1
        for form in "${forms[@]}"; do
            [[ $form != "$option "* ]] || ((++i))
        done
    done

    for form in "${forms[@]}"; do
        option=${form%%[ \[]*}
        if [[ $form == "$previous "* ]]; then
            value=${form#* }
        elif [[ $current == "$option="* ]]; then
            value=${form#"$option"} value=${value# } value=${value#[=} value=${value%]}
            prefix=$option=
        fi
    done

    if [[ $value && $others == 0 ]]; then
        mapfile -t COMPREPLY < <(_belun_values "$command" "$value" "${current#"$prefix"}")
        compopt -o filenames 2>/dev/null
    elif [[ $sending ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$command" --help=lines 2>/dev/null)" -- "$current")
    elif [[ ${command##*/} == *private-network && $current != -* ]]; then
        if [[ $others == 0 ]]; then
            mapfile -t COMPREPLY < <(compgen -c -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi
    elif [[ $others == 0 || ${command##*/} == belun-verify ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${forms[*]%%[ \[]*}" -- "$current")
    fi

    # Bash splits words at equals signs: completions must not repeat the part up to the last equals sign.
    if [[ $current == *=* && $COMP_WORDBREAKS == *=* ]]; then
        prefix=${current#"$prefix"} prefix=${prefix%"${prefix##*=}"}
        COMPREPLY=("${COMPREPLY[@]#"$prefix"}")
    fi
}

complete -F _belun belun-simulator belun-private-network belun-verify
