#!/bin/sh
# with-network.sh PROGRAM [ARGUMENT...]: runs it in a network namespace of its own; skipped where that is not allowed.
if unshare --map-root-user --net true 2>/dev/null; then
    KORVI_OWN_NETWORK=yes exec unshare --map-root-user --net "$@"
fi
exec "$@"
