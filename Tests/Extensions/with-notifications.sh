#!/usr/bin/env bash
# Runs a program on a session bus and a display of its own, with a notification server that ends with them.
set -euo pipefail
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_RUNTIME_DIR=$home/run KORVI_WITH_NOTIFICATIONS=1
mkdir -m 700 "$XDG_RUNTIME_DIR"
# The bus starts nothing of the machine by itself: a keyring that asks for a password would take the keyboard.
bus=$(dirname "$0")/../EndToEnd/session-bus.conf
xvfb-run -a -s "-screen 0 1280x860x24" dbus-run-session --config-file="$bus" -- bash -c '
    dunst -conf /dev/null >/dev/null 2>&1 &
    server=$!
    until dbus-send --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
        string:org.freedesktop.Notifications | grep -q "boolean true"; do kill -0 $server; sleep 0.1; done
    status=0
    "$@" || status=$?
    kill $server
    exit $status' run "$@"
