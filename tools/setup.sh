#!/usr/bin/env bash
# Makes everything that building, testing and running need; skips what is already there.
#   tools/setup.sh [--yes]    --yes: Debian packages may be stepped back to older versions where apt needs that
source "$(dirname "$0")/common.sh"

# A test runs with what is there; other tests are running with it, too.
[ -z "${ZENDORA_BUILT:-}" ] || exit 0
"$root/tools/setup/packages.sh" "$@"
"$root/tools/setup/libraries.sh"
"$root/tools/setup/wine.sh"
