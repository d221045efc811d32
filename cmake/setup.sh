# Sourced by ./run, ./test and .ci/run: makes sure that what the build needs is there.

# need COMMAND-OR-FILE PACKAGE ...: pairs of what must exist and the Debian package that brings it.
# As root missing packages are installed; otherwise the command that would do it is told and the script ends.
need() {
    local missing=()
    while [ $# -ge 2 ]; do
        case $1 in
            /*) [ -e "$1" ] || missing+=("$2") ;;
            *) command -v "$1" >/dev/null 2>&1 || missing+=("$2") ;;
        esac
        shift 2
    done
    [ ${#missing[@]} -eq 0 ] && return
    if [ "$(id -u)" -ne 0 ]; then
        echo "missing: ${missing[*]}; install with:  sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
    local log
    log=$(mktemp)
    if ! { apt-get update && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } \
        >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        echo "could not install: ${missing[*]}" >&2
        exit 1
    fi
    rm -f "$log"
}

# quiet COMMAND...: its output is shown only when it fails, and then the script ends.
quiet() {
    local log status
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null
    status=$?
    if [ $status -ne 0 ]; then
        cat "$log" >&2
        rm -f "$log"
        exit $status
    fi
    rm -f "$log"
}

# configure PRESET [cmake arguments]: once; later runs leave it to the build to configure again when needed.
configure() {
    local preset=$1
    shift
    if [ ! -f "build/$preset/build.ninja" ] || [ $# -gt 0 ]; then
        quiet cmake --preset "$preset" "$@"
    fi
}
