# To be sourced by tests of programs: what a program says, and its exit status.

# expect STATUS TEXT COMMAND [ARG...]: ends the test unless COMMAND ends so and says TEXT, among other things, on
# standard output or error.
expect() {
    local status=$1 text=$2 said found=0
    shift 2
    said=$("$@" 2>&1) || found=$?
    if [[ $found != "$status" || $said != *"$text"* ]]; then
        printf '%s\nended with %s instead of %s, or without saying "%s":\n%s\n' "$*" "$found" "$status" "$text" "$said"
        exit 1
    fi
}

set -euo pipefail
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME
HOME=$(mktemp -d)
trap 'rm -r "$HOME"' EXIT
