# What the scripts that people call share: `. "$(dirname "$0")/tools/usage.sh"` before anything else. Called with --help, a script
# then prints the comment at its top and ends with status 0.

script=$0
case "${1:-}" in
-h | --help)
    sed -n '2,${/^#/!q;s/^# \{0,1\}//p}' "$script"
    exit
    ;;
esac

# The words were not understood: says so in one line and ends with status 2, before anything is installed or built.
bad_usage() { # REASON...
    echo "${script##*/}: $*; see $script --help" >&2
    exit 2
}

no_words() { # "$@"
    [ $# -eq 0 ] || bad_usage "takes no word, not '$1'"
}
