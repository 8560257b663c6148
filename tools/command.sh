# Functions common to the commands of this tree: messages, options, installing packages. A command sources
# this file, which changes the working directory to the root of the tree, and defines a function "usage"
# that prints its help.
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

# Prints a message about wrong arguments and the usage, and exits with status 2.
refuse()
{
    say "$@"
    usage >&2
    exit 2
}

# readOptions "$@": accepts the arguments that the usage describes and refuses all others.
#   "  --quick  ..."         an option: given[--quick] is 1 if it was given, otherwise empty
#   "  --jobs N  ..."        an option with a value: given[--jobs] is the value, or empty
#   "[OPTION...] TOPIC..."   further arguments, described by a word in capitals: stored in operands
#   "[OPTION...] COMMAND"    a command, which ends the options: stored with its arguments in operands
#   "[-- CTEST-OPTION...]"   arguments after "--": stored in passedOn
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

# Prints the number of tests of a preset to run in parallel: --jobs, or three per processor, because tests
# mostly wait; with a sanitizer, which makes them compute more, two.
testJobs()
{
    local each=3
    [[ $1 != asan && $1 != tsan ]] || each=2
    echo "${given[--jobs]:-$((each * $(nproc)))}"
}
