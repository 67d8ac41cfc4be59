#!/usr/bin/env bash
# Measures the program beside the barest way to the same result, in one run, and prints ratios: how many times as long
# (or as much) the program takes. Not part of the tests; on an otherwise idle machine it takes about five minutes.
source "$(dirname "$0")/../common.sh"
source "$(dirname "$0")/../harness/nginx.sh"

if [ "${1:-}" != measure ]; then
  "$root/tools/setup.sh"
  "$root/tools/build.sh" release >/dev/null
  exec "$root/tools/harness/private-network.sh" "$root/tools/harness/with-display.sh" "$0" measure
fi

rounds=5
program=$build/release/ZendoraInstaller.exe
folder=$(mktemp -d -p "$build" bench.XXXXXX)
trap 'stop_nginx; rm -rf "$folder"' EXIT
site=$folder/site
mkdir -p "$site/packages"
bench() { wine "$build/release/bench.exe" "$@" | tr -d '\r'; }
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# The middle value of each column.
medians() {
  python3 -c 'import statistics, sys
print(*(statistics.median_low(map(float, column)) for column in zip(*map(str.split, sys.stdin))))'
}

repeat() { for ((i = 0; i < rounds; ++i)); do "$@"; done | medians; }

# Prints a line of the result: what, its figure, the figure it is compared with, and their ratio.
compare() { awk -v what="$1" -v a="$2" -v b="$3" -v unit="$4" 'BEGIN { printf "%-46s %9.2f %9.2f %-4s %6.2f\n", what, a, b, unit, a / b }'; }

seconds() { local start=$EPOCHREALTIME; "$@" >/dev/null; awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { print b - a }'; }

write_manifest() {
  local count=$1 size=$2 i
  echo '<downloader><sources default="main"><source key="main" title="Main"/></sources><packages>'
  for ((i = 0; i < count; ++i)); do
    echo "<package><title>Package $i</title><group>Group $((i / 50))</group><name value=\"Bench\"/><filename value=\"p$i\"/><size value=\"$size\"/><upsize value=\"$size\"/><sources><source key=\"main\" url=\"https://zendora.example/packages/$size\"/></sources></package>"
  done
  echo '</packages></downloader>'
}

serve() {
  write_nginx_config "$folder" <<SERVERS
  server {
    listen 80;
    listen 443 ssl;
    include $folder/tls.conf;
    root $site;
    location = /play/files/repository.php { default_type text/xml; alias $site/manifest.xml; }
    location = /play/files/telemetry.php { error_page 405 =204 @accepted; return 204; }
    location @accepted { return 204; }
  }
SERVERS
  start_nginx "$folder" 443
}

measure_download() { bench download http://zendora.example/packages/large "$(windows_path "$folder/downloaded")"; }

extract_once() {
  rm -rf "$folder/extracted"
  # shellcheck disable=SC2046 # two figures, then a third
  echo $(bench extract "$(windows_path "$folder/$1")" "$(windows_path "$folder/extracted")") \
    "$(seconds unzip -qo "$folder/$1" -d "$folder/extracted/unzip")"
}

measure_extraction() {
  local figures
  read -r -a figures <<<"$(repeat extract_once "$1")"
  compare "extraction of $2, to a bare loop" "${figures[0]}" "${figures[1]}" s
  compare "extraction of $2, to unzip" "${figures[0]}" "${figures[2]}" s
}

# The cache of the manifest is written by a first start.
fill() {
  rm -rf "$WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Zendora"
  write_manifest "$1" 1000 >"$site/manifest.xml"
  bench fill "$(windows_path "$program")" >/dev/null
  repeat bench fill "$(windows_path "$program")"
}

memory() {
  rm -rf "$WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Zendora"
  truncate -s "$1" "$site/packages/$1"
  write_manifest 1 "$1" >"$site/manifest.xml"
  bench memory "$(windows_path "$program")" p0
}

head -c 209715200 /dev/urandom >"$site/packages/large"
mkdir -p "$folder/large" "$folder/many"
for i in 1 2 3 4; do head -c 50000000 "$site/packages/large" | base64 >"$folder/large/$i"; done
for ((i = 0; i < 1000; ++i)); do head -c 20000 "$site/packages/large" | base64 >"$folder/many/$i"; done
(cd "$folder/large" && zip -q1 ../large.zip ./*)
(cd "$folder/many" && zip -q1 ../many.zip ./*)
serve

printf '%-46s %9s %9s %-4s %6s\n' what program other '' ratio
read -r -a figures <<<"$(repeat measure_download)"
compare "download of 200 MiB, to a bare WinINet loop" "${figures[0]}" "${figures[1]}" s
compare "MD5 of 200 MiB, to md5sum" "$(repeat bench hash "$(windows_path "$site/packages/large")")" \
  "$(repeat seconds md5sum "$site/packages/large")" s
measure_extraction large.zip "4 large files"
measure_extraction many.zip "1,000 small files"
compare "start to a filled list, 5,000 packages to 20" "$(fill 5000)" "$(fill 20)" s
compare "peak memory, package of 1 GiB to 10 MiB" "$(memory 1073741824)" "$(memory 10485760)" MiB
