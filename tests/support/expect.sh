# Sourced by the tests of programs: checks a program's output and exit status.

# expect STATUS TEXT COMMAND [ARG...]: fails the test unless COMMAND exits with STATUS and its standard output or
# error contains TEXT. Sets $output to both.
expect() {
    local status=$1 text=$2 actual=0
    shift 2
    output=$("$@" 2>&1) || actual=$?
    if [[ $actual != "$status" || $output != *"$text"* ]]; then
        printf '%s\nexit status %s, not %s, or no "%s" in the output:\n%s\n' "$*" "$actual" "$status" "$text" "$output"
        exit 1
    fi
}

set -euo pipefail
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME
HOME=$(mktemp -d)
trap 'rm -r "$HOME"' EXIT
