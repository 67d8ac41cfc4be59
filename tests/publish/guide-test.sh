#!/usr/bin/env bash
# Runs every command of docs/publishing.md as it is written there, in an empty folder, as a new publisher would.
source "$(dirname "$0")/../../tools/common.sh"

export ZENDORA=$root
folder=$(make_work_folder)
# shellcheck disable=SC2016 # these are no commands but the guide's marks around them
sed -n '/^```sh$/,/^```$/{/^```/d;p;}' "$root/docs/publishing.md" >"$folder.commands"
trap 'rm -rf "$folder" "$folder.commands"' EXIT
[ "$(grep -c zendora-publish "$folder.commands")" -ge 5 ] || die "the guide's commands could not be found"
cd "$folder"
bash -euxo pipefail "$folder.commands"
