#!/usr/bin/env bash
# Runs one Windows program in the project's Wine prefix and passes its exit code on.
source "$(dirname "$0")/wine-env.sh"
exec "$WINE64" "$@"
