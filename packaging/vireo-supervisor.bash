# Completes the command line of vireo-supervisor. What there is to complete, the program's own --help says.

# The usage lines of one part of the help, without the words that stand in scripts alone.
_vireo_supervisor_usages()
{
    "${COMP_WORDS[0]}" --help 2>/dev/null | awk -v part="$1:" '
        $0 == part { inside = 1; next }
        /^$/ { inside = 0 }
        inside && /^  [^ ]/ { usage = $0; getline; if (!/\(scripts\)/) print usage }'
}

# What may be said for the arguments of a usage: "[long-]stop|play" are four choices, capitals stand for free text.
_vireo_supervisor_choices()
{
    local argument choice prefix
    for argument; do
        prefix=
        case $argument in
        ... | *[[:upper:]]*) continue ;;
        \[*\]) argument=${argument:1:-1} ;;
        \[*) prefix=${argument%%]*} && prefix=${prefix#[} && argument=${argument#*]} ;;
        esac
        for choice in ${argument//|/ }; do
            echo "$choice" ${prefix:+"$prefix$choice"}
        done
    done
}

_vireo_supervisor()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=() usage i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        -h | --help | --version | --panel-place) ;;
        -*) [ ${#words[@]} -gt 1 ] && words+=("${COMP_WORDS[i]}") || i=$((i + 1)) ;;
        *) words+=("${COMP_WORDS[i]}") ;;
        esac
    done
    COMPREPLY=()
    case "${#words[@]} ${words[0]} $previous" in
    [01]\ *\ --music) compopt -o dirnames 2>/dev/null ;;
    [01]\ *\ --host | [01]\ *\ --port | [01]\ *\ --timeout | [01]\ *\ --at) ;;
    0\ *) usage="send script" ;;
    1\ send\ *) usage=$(_vireo_supervisor_usages Words | awk '{ print $1 }') ;;
    1\ script\ * | 2\ send\ file) compopt -o default 2>/dev/null ;;
    *\ send\ *) usage=$(_vireo_supervisor_choices $(_vireo_supervisor_usages Words |
        awk -v word="${words[1]}" '$1 == word { $1 = ""; print }')) ;;
    esac
    [[ $current == -* && ${#words[@]} -lt 2 ]] &&
        usage=$(_vireo_supervisor_usages Options | grep -o -- '--\?[a-z-]\+')
    [ -z "$usage" ] || COMPREPLY=($(compgen -W "$usage" -- "$current"))
}
complete -F _vireo_supervisor vireo-supervisor
