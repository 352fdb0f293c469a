# What the scripts share. Sourced, not run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '\033[1m%s\033[0m\n' "$*"; }
die() { printf 'korvi: %s\n' "$*" >&2; exit 1; }

# build PRESET [TARGET...]: configures when needed, then builds.
build() {
    local preset=$1; shift
    cd "$root"
    if [ ! -f "build/$preset/build.ninja" ]; then
        say "Configuring ($preset)"
        cmake --preset "$preset" >"/tmp/korvi-configure.$$" 2>&1 \
            || { cat "/tmp/korvi-configure.$$" >&2; rm -f "/tmp/korvi-configure.$$"; die "configuring failed"; }
        rm -f "/tmp/korvi-configure.$$"
    fi
    say "Building ($preset)"
    cmake --build "build/$preset" ${1:+--target "$@"} -- --quiet
}

# Installs what is missing; a machine that has everything is asked one quick question.
ensure_setup() { "$root/scripts/setup" --check >/dev/null 2>&1 || "$root/scripts/setup"; }

# start_service PROGRAM FOLDER [OPTION...]: on a free port; sets service_pid and service_url. Its console goes to
# FOLDER/service.log.
start_service() {
    local program=$1 folder=$2; shift 2
    "$program" --port 0 "$@" >"$folder/service.log" 2>&1 &
    service_pid=$!
    local i
    for i in $(seq 200); do
        service_url=$(grep -om1 'http://[^ ,]*/api/v1' "$folder/service.log" || true)
        [ -z "$service_url" ] || return 0
        kill -0 "$service_pid" 2>/dev/null || { cat "$folder/service.log" >&2; die "the service did not start"; }
        sleep 0.05
    done
    die "the service did not name its address within 10 s"
}

stop_service() {
    [ -z "${service_pid:-}" ] || { kill "$service_pid" 2>/dev/null || true; wait "$service_pid" 2>/dev/null || true; }
    service_pid=
}

# The web engine that draws formulas, diagrams and previews of documents refuses to start its own sandbox as root, and
# then only sources are shown. Root is somebody in a container, most likely; nobody else loses the sandbox.
allow_web_engine_for_root() {
    [ "$(id -u)" = 0 ] || return 0
    say "You are root: the web engine runs without its sandbox (QTWEBENGINE_DISABLE_SANDBOX=1)."
    export QTWEBENGINE_DISABLE_SANDBOX=1
}

# write_info FILE URL: what the client reads about the installation.
write_info() {
    local version
    version=$(sed -n 's/^project(Korvi VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
    printf '{"CFBundleShortVersionString": "%s", "KorviAPIBaseURL": "%s"}\n' "$version" "$2" >"$1"
}
