#!/usr/bin/env bash
# Builds and runs Corvane. Without a background service listening, the simulated one is started
# beside it (with its virtual surface when there is a display) and stopped when Corvane quits.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh >&2
cmake --preset release >/dev/null
cmake --build --preset release --target corvane corvane-service-sim >&2

ports="${TVK_PORT_DIR:-${XDG_RUNTIME_DIR:+$XDG_RUNTIME_DIR/tvk}}"
ports="${ports:-/tmp/tvk-$(id -u)}"
listening() {
    python3 - "$ports/TVK_Corvane" <<'PY' 2>/dev/null
import socket, sys
s = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
s.settimeout(0.5)
s.connect(sys.argv[1])
PY
}

sim_pid=""
stop_sim() { [ -n "$sim_pid" ] && kill "$sim_pid" 2>/dev/null && wait "$sim_pid" 2>/dev/null; true; }
trap stop_sim EXIT
if ! listening; then
    window=()
    [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && window=(--window)
    build/release/tools/service-sim/corvane-service-sim --background --quiet "${window[@]}" >/dev/null &
    sim_pid=$!
    for _ in $(seq 50); do listening && break; sleep 0.1; done
fi
build/release/src/corvane "$@"
