# To be sourced: programs in the background that never outlive the script that needs them.

# bash ignores a SIGINT that does not also end the command it is running.
trap 'exit 130' INT

# background CONDITION COMMAND [ARG...]
#
# Starts COMMAND and waits until CONDITION, a shell command, succeeds; it can read COMMAND's output in the file $log.
# The kernel kills COMMAND as soon as this process ends, in whatever way. That process may be another program by then:
# a script that ends in "exec" needs no traps, and its signals and exit status are that program's.
background() {
    local condition=$1 log tries
    shift
    log=$(mktemp -p "${XDG_RUNTIME_DIR:-/tmp}")
    # The script may have ended before the kernel was asked.
    # shellcheck disable=SC2016  # the inner shell expands these
    setpriv --pdeathsig KILL -- sh -c '[ "$PPID" = "$0" ] && exec "$@"' $$ "$@" </dev/null >"$log" 2>&1 &
    for ((tries = 0; tries < 1200; tries++)); do
        if eval "$condition" >/dev/null 2>&1; then
            rm "$log"
            return
        fi
        kill -0 $! 2>/dev/null || break
        sleep 0.05
    done
    printf '%s: %s does not get ready; its output:\n' "${0##*/}" "$1" >&2
    cat "$log" >&2
    rm "$log"
    exit 1
}
