# What the commands of this tree share: messages, options, installing packages. A command sources this
# file, which changes to the root of the tree, and defines a function "usage" that prints its help.
# shellcheck shell=bash

commandName=$(readlink -f "$0")
commandName=${commandName%/run} # tests/fuzz/run is called fuzz
commandName=${commandName##*/}
readonly commandName=${commandName#.}
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

say()
{
    printf '%s: %s\n' "$commandName" "$*" >&2
}

# Exits after a message about a wrong call.
refuse()
{
    say "$@"
    usage >&2
    exit 2
}

# readOptions "$@": reads the options that the usage lists, each on a line that begins like
# "  --quick  " or, with a value, "  --jobs N  ". Other arguments are accepted if the usage has
# "[OPTION...]" followed by a capital word; a COMMAND ends the options; arguments after "--" are
# accepted if it has "[-- ". Sets
#   given[--quick]  to 1 if it was given, given[--jobs] to its value; otherwise to nothing
#   operands        to the other arguments
#   passedOn        to the arguments after "--"
readOptions()
{
    local help line
    local -A value=()
    declare -gA given=()
    operands=() passedOn=()
    help=$(usage)
    while IFS= read -r line; do
        if [[ $line =~ ^'  '(--[a-z-]+)(' '[A-Z]+)?('  '|$) ]]; then
            given[${BASH_REMATCH[1]}]=''
            value[${BASH_REMATCH[1]}]=${BASH_REMATCH[2]}
        fi
    done <<<"$help"
    while [[ $# != 0 ]]; do
        if [[ $1 == --help ]]; then
            usage
            exit 0
        elif [[ $1 == -- && $help == *'[-- '* ]]; then
            # shellcheck disable=SC2034 # for the caller
            passedOn=("${@:2}")
            return 0
        elif [[ $1 != -* && $help == *' COMMAND '* ]]; then
            operands=("$@")
            return 0
        elif [[ $1 != -* ]]; then
            [[ $help =~ '[OPTION...] '\[?[A-Z] ]] || refuse "unexpected argument '$1'"
            operands+=("$1")
        elif [[ ! ${given[$1]+listed} ]]; then
            refuse "unknown option $1"
        elif [[ ! ${value[$1]} ]]; then
            given[$1]=1
        elif [[ ! ${2-} || $2 == --* ]]; then
            refuse "$1 needs a value"
        else
            given[$1]=$2
            shift
        fi
        shift
    done
}

# Installs the packages of the given groups unless the command was called with --no-install.
installPackages()
{
    [[ ${given[--no-install]} ]] || tools/install-packages "$@" || exit
}
