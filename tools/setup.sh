#!/usr/bin/env bash
# Makes everything that building, testing and running need; skips what is already there.
source "$(dirname "$0")/common.sh"

"$root/tools/setup/packages.sh"
"$root/tools/setup/libraries.sh"
"$root/tools/setup/wine.sh"
