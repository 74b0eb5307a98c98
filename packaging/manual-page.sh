#!/bin/sh
# Prints a manual page: the template, and in place of a line such as @Words@ that part of the program's own --help.
# Usage: packaging/manual-page.sh PROGRAM TEMPLATE
. "$(dirname "$0")/../tools/usage.sh"
[ $# -eq 2 ] || bad_usage "takes a program and a template"
[ -x "$1" ] || bad_usage "no program '$1'"
[ -f "$2" ] || bad_usage "no template '$2'"
"$1" --help | awk -v template="$2" '
    /^[A-Z][a-z ]*:$/ { part = substr($0, 1, length($0) - 1) }
    /^$/ { part = "" }
    part && /^  [^ ]/ {
        usage = substr($0, 3)
        getline
        gsub(/-/, "\\-", usage)
        rows[part] = rows[part] ".TP\n.B " usage "\n" substr($0, 9) "\n"
    }
    END {
        while ((getline line < template) > 0)
            if (line ~ /^@.*@$/)
                printf "%s", rows[substr(line, 2, length(line) - 2)]
            else
                print line
    }'
