#!/usr/bin/env bash
# Runs a program on a session bus of its own with an unlocked keyring that ends with it.
set -euo pipefail
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_DATA_HOME=$home/data XDG_RUNTIME_DIR=$home/run
mkdir -m 700 "$XDG_RUNTIME_DIR"
# The daemon leaves its parent's process group; it ends when its bus does.
dbus-run-session -- bash -c '
    printf "\n" | gnome-keyring-daemon --unlock --components=secrets >/dev/null
    exec "$@"' run "$@"
