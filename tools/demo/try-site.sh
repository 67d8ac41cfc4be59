#!/usr/bin/env bash
# Runs a command with a folder served as a product's site, in a network of its own: manifest.xml is what the installer
# gets for its list, everything else lies below https://zendora.example as in the folder. The site's certificate is in
# the file that ZENDORA_CERTIFICATE names. What the site was asked is in build/rehearsal/access.log.
#   tools/demo/try-site.sh FOLDER COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"

ZENDORA_SITE_FOLDER=$(realpath "$1")
export ZENDORA_SITE_FOLDER ZENDORA_OUTPUT=${ZENDORA_OUTPUT:-$build/rehearsal}
shift
exec "$root/tools/harness/private-network.sh" "$root/tools/demo/demo-server.sh" "$@"
