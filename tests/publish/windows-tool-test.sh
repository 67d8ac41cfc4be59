#!/usr/bin/env bash
# Lets the Windows build of zendora-publish do the same as the native one, and compares what both print. Needs the
# program.
source "$(dirname "$0")/../../tools/common.sh"

native=$build/publish/zendora-publish windows=$build/release/zendora-publish.exe
export LC_ALL=C.UTF-8
if [ -z "${WINEPREFIX:-}" ]; then
  exec "$root/tools/harness/private-network.sh" "$root/tools/harness/with-wine.sh" "$0"
fi

folder=$(make_work_folder)
trap 'rm -rf "$folder"' EXIT
ZENDORA_OUTPUT=$folder "$root/tools/demo/demo-site" make
mv "$folder"/demo/site/* "$folder"
cp "$build/release/ZendoraInstaller.exe" "$folder/program.exe"
cd "$folder"
mv packages/turkce.zip packages/türkçe.zip
sed 's/turkce.zip/türkçe.zip/; s/<size value="/&9/; s/<group>Game/<group/' manifest.xml >broken.xml
sed 's/turkce.zip/türkçe.zip/; s/<size value="/&9/; s/<name value="Z/<name value="..\\Z/' manifest.xml >spoilt.xml

failed=0 cases=0

# Both print the same to standard output and end with the same status.
same() {
  local wanted=0 status=0
  "$native" "$@" >native.txt 2>/dev/null || wanted=$?
  wine "$windows" "$@" >windows.txt 2>/dev/null || status=$?
  cases=$((cases + 1))
  if [ "$status" -eq "$wanted" ] && tr -d '\r' <windows.txt | cmp -s - native.txt; then return; fi
  failed=$((failed + 1))
  printf 'FAILED  %s: status %s, natively %s\n' "$*" "$status" "$wanted"
  tr -d '\r' <windows.txt | diff - native.txt | head -n 20 || true
}

same check manifest.xml
same check broken.xml
same check spoilt.xml --files packages
same check spoilt.xml --files packages/ --strict --json --skip md5-missing
same check missing.xml
same fill spoilt.xml --files packages
same fill spoilt.xml --files packages -o filled.xml
same check filled.xml --files packages
same describe packages/türkçe.zip --title 'Türkçe & мир' --url main=https://zendora.example/a/ --verify text/turkish.gxt
same updater program.exe --url https://zendora.example/play/new.exe --help-url https://zendora.example/play/
same updater packages/mtasa.exe --url https://zendora.example/play/new.exe
same describe
printf '%s of %s cases failed\n' "$failed" "$cases"
[ "$failed" -eq 0 ]
"$root/tests/publish/check-site-test.sh" wine "$windows"
