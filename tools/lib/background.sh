# Sourced: background programs that never outlive the script that starts them.

# bash ignores a SIGINT that the running command survives.
trap 'exit 130' INT

# background CONDITION COMMAND [ARG...]
#
# Starts COMMAND and waits until CONDITION, a shell command, succeeds; it can read COMMAND's output from the file $log.
# The kernel kills COMMAND when this process ends in any way, even if it has replaced itself by "exec". So scripts that
# end in "exec" need no traps and pass on signals and the exit status.
background() {
    local condition=$1 log tries
    shift
    log=$(mktemp -p "${XDG_RUNTIME_DIR:-/tmp}")
    # The script may have ended before setpriv took effect.
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
    printf '%s: %s did not start; its output:\n' "${0##*/}" "$1" >&2
    cat "$log" >&2
    rm "$log"
    exit 1
}
