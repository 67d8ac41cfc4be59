#!/usr/bin/env bash
# Measures what a player gets: the program as it ships with its window shown, beside the barest way to the same result
# and beside an installer made with NSIS, in alternating rounds. Prints the medians and writes them into
# docs/performance.md. Not part of the tests; on an otherwise idle machine it takes about forty minutes and 25 GB of disk.
#   ROUNDS=N tools/bench/bench.sh    with another number of rounds than five
source "$(dirname "$0")/../common.sh"
source "$(dirname "$0")/../harness/nginx.sh"

if [ "${1:-}" != measure ]; then
  "$root/tools/setup.sh"
  command -v makensis >/dev/null || as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y install nsis >/dev/null ||
    die "the other installer's maker (package nsis) could not be installed"
  "$root/tools/build.sh" release ZendoraInstaller bench bench_empty_window
  exec "$root/tools/harness/private-network.sh" "$root/tools/harness/with-display.sh" "$0" measure
fi

rounds=${ROUNDS:-5}
program=$build/release/ZendoraInstaller.exe
folder=$(make_work_folder)
site=$folder/site games=$folder/games downloads=$folder/downloads
mkdir -p "$site/packages" "$games" "$downloads" "$folder/figures"
trap 'stop_nginx; rm -rf "$folder"' EXIT

# --- Figures

# Keeps what one round measured: record NAME VALUE
record() {
  [ -n "$2" ] || die "a measurement of $1 failed"
  echo "$2" >>"$folder/figures/$1"
}
median() { python3 -c 'import statistics, sys; print(statistics.median(map(float, sys.stdin)))' <"$folder/figures/$1"; }
highest() { sort -g "$folder/figures/$1" | tail -n 1; }

say_row() { printf '| %s | %s | %s | %s | %s |\n' "$@" | tee -a "$folder/table"; }

# One row: compare WHAT OTHER NAME OTHER-NAME UNIT
compare() {
  local a b
  a=$(median "$3") b=$(median "$4")
  say_row "$1" "$2" "$(printf '%.2f %s' "$a" "$5")" "$(printf '%.2f %s' "$b" "$5")" \
    "$(awk -v a="$a" -v b="$b" 'BEGIN { printf "%.2f", a / b }')"
}

seconds() {
  local start=$EPOCHREALTIME
  "$@" >/dev/null
  awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { print b - a }'
}

# --- The site and the program

bench() { wine "$build/release/bench.exe" "$@" | tr -d '\r'; }
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

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
    location /packages/ { access_log $folder/access.log; }
  }
SERVERS
  start_nginx "$folder" 443
}

write_manifest() {
  {
    echo '<downloader><sources default="main"><source key="main" title="Main"/></sources><packages>'
    "$@"
    echo '</packages></downloader>'
  } >"$site/manifest.xml"
}

list_packages() {
  local i
  for ((i = 0; i < $1; ++i)); do
    echo "<package><title>Package $i</title><group>Group $((i / 50))</group><name value=\"Bench\"/><filename value=\"p$i\"/><size value=\"1000\"/></package>"
  done
}

# A file of the site as the only package: describe_package FILE [UNPACKED-SIZE of an archive]
describe_package() {
  local size type=
  size=$(stat -c %s "$1")
  [ $# -eq 1 ] || type='<filetype value="application/x-zip-compressed"/>'
  echo "<package><title>Bench</title><name value=\"Bench\"/><filename value=\"p\"/>$type<default value=\"true\"/><md5 value=\"$(md5sum "$1" | cut -d ' ' -f 1)\"/><size value=\"$size\"/><upsize value=\"${2:-$size}\"/><sources><source key=\"main\" url=\"http://zendora.example/packages/$(basename "$1")\"/></sources></package>"
}

set_up_program() {
  local key='HKCU\SOFTWARE\Zendora Installer'
  wine reg add "$key" /v LastInstallPath /d "$(windows_path "$games")" /f >/dev/null
  wine reg add "$key" /v LastTmpPath /d "$(windows_path "$downloads")" /f >/dev/null
  wine reg add "$key" /v Language /t REG_DWORD /d 9 /f >/dev/null
}

# What one measurement wrote must not be a burden on the next.
tidy() {
  rm -rf "${games:?}"/* "${downloads:?}"/*
  sync
}

# Installs the only package and keeps the figures under a name.
install_once() {
  local download hash placing answers slowest
  tidy
  read -r download hash placing answers slowest < <(bench install "$(windows_path "$program")")
  record "$1-download" "$download"
  record "$1-hash" "$hash"
  record "$1-placing" "$placing"
  record "$1-answers" "$answers"
  record "$1-slowest" "$slowest"
}

# say_answers NAME [OTHER OTHER-NAME]
say_answers() {
  local ours theirs=
  ours=$(answers_of "$1")
  [ $# -eq 1 ] || theirs=$(answers_of "$3")
  say_row "the window's answer meanwhile (95 %; slowest)" "${2:-}" "$ours" "$theirs" ""
}
answers_of() { printf '%.0f ms; %.0f ms' "$(highest "$1-answers")" "$(highest "$1-slowest")"; }

# --- What is measured

measure_start() {
  local i
  write_manifest list_packages 20
  bench start "$(windows_path "$program")" 20 >/dev/null # writes the cache of the manifest
  for ((i = 0; i < rounds; ++i)); do
    record start "$(bench start "$(windows_path "$program")" 20)"
    record start-empty "$(bench start "$(windows_path "$build/release/bench_empty_window.exe")" 20)"
  done
  write_manifest list_packages 5000
  rm -f "$downloads"/*
  bench start "$(windows_path "$program")" 5000 >/dev/null
  for ((i = 0; i < rounds; ++i)); do record list "$(bench start "$(windows_path "$program")" 5000)"; done
  compare "start to a shown window with its list, 20 packages" "a window with as many controls" start start-empty s
  compare "the same with 5,000 packages" "20 packages" list start s
}

measure_download() {
  local i url=http://zendora.example/packages/large
  write_manifest describe_package "$site/packages/large"
  for ((i = 0; i < rounds; ++i)); do
    install_once large
    tidy
    record bare-download "$(bench download "$url" "$(windows_path "$downloads/bare")")"
    record md5sum "$(seconds md5sum "$site/packages/large")"
  done
  compare "download of 1 GiB over loopback" "a bare WinINet loop, same chunk" large-download bare-download s
  compare "MD5 of 1 GiB" "\`md5sum\`" large-hash md5sum s
  say_answers large
}

# measure_archive NAME UNPACKED-SIZE WHAT: the archive NAME.zip of the site, beside the installer NAME.exe if there is one.
measure_archive() {
  local name=$1 what=$3 i archive=$site/packages/$1.zip start end answers slowest
  write_manifest describe_package "$archive" "$2"
  for ((i = 0; i < rounds; ++i)); do
    install_once "$name"
    tidy
    record "$name-bare" "$(bench extract "$(windows_path "$archive")" "$(windows_path "$games")")"
    tidy
    record "$name-unzip" "$(seconds unzip -qo "$archive" -d "$games")"
    [ -e "$folder/$name.exe" ] || continue
    tidy
    read -r start end answers slowest < <(bench setup "$(windows_path "$folder/$name.exe")")
    record nsis-start "$start"
    record nsis-placing "$end"
    record nsis-answers "$answers"
    record nsis-slowest "$slowest"
  done
  compare "$what" "a bare loop over the same zip library" "$name-placing" "$name-bare" s
  compare "" "\`unzip\`" "$name-placing" "$name-unzip" s
  say_answers "$name"
}

compare_with_nsis() {
  compare "10,000 small files" "an NSIS installer, details shown" many-placing nsis-placing s
  compare "start to a shown window" "the same NSIS installer" start nsis-start s
  say_answers many "the same NSIS installer" nsis
  say_row "program file, nothing packed into it" "an NSIS installer of nothing" "$(stat -c %s "$program") bytes" \
    "$(stat -c %s "$folder/empty.exe") bytes" ""
}

# The most private memory, in KiB, while a command runs.
private_memory() {
  local most=0 now process id pattern
  pattern=$(windows_path "$program")
  "$@" &
  process=$!
  while kill -0 "$process" 2>/dev/null; do
    for id in $(pgrep -f "^${pattern//\\/.}" || true); do
      now=$(awk '/^Private_Dirty/ { print $2 }' "/proc/$id/smaps_rollup" 2>/dev/null || echo 0)
      [ "${now:-0}" -le "$most" ] || most=$now
    done
    sleep 0.2
  done
  wait "$process" || die "the installation failed"
  echo "$most"
}

# Cuts the line of a download off for three seconds when so many bytes are there.
cut_off_at() {
  while [ "$(stat -c %s "$downloads/p" 2>/dev/null || echo 0)" -lt "$1" ]; do sleep 0.2; done
  stop_nginx
  sleep 3
  start_nginx "$folder" 443
}

measure_memory() {
  local size
  for size in 10485760 1073741824 6442450944; do
    tidy
    head -c "$size" /dev/zero | openssl enc -aes-128-ctr -pass pass:bench -nosalt 2>/dev/null >"$site/packages/sized"
    write_manifest describe_package "$site/packages/sized"
    : >"$folder/access.log"
    # The download of 6 GiB breaks behind the fourth one and has to go on from there.
    private_memory bench install "$(windows_path "$program")" >"$folder/memory" &
    local measured=$!
    [ "$size" -lt 6442450944 ] || cut_off_at 4831838208
    wait "$measured" || die "the package of $size bytes could not be installed"
    cmp "$site/packages/sized" "$games/Bench/p" || die "the package of $size bytes did not arrive whole"
    [ "$size" -lt 6442450944 ] || grep -q ' 206 ' "$folder/access.log" || die "the download was not resumed"
    record "memory-$size" "$(tail -n 1 "$folder/memory" | awk '{ print $1 / 1024 }')"
  done
  rm "$site/packages/sized"
  compare "most private memory, package of 6 GiB, broken and resumed behind 4 GiB" "of 10 MiB" memory-6442450944 \
    memory-10485760 MiB
  compare "of 1 GiB" "of 10 MiB" memory-1073741824 memory-10485760 MiB
}

# --- What it is measured with

# Text-like bytes that pack a little, as files of 27 KB: make_small_files FOLDER COUNT
make_small_files() {
  python3 - "$site/packages/large" "$1" "$2" <<'PYTHON'
import base64, os, sys
source, folder, count = sys.argv[1], sys.argv[2], int(sys.argv[3])
data = open(source, "rb").read(64 << 20)
for i in range(count):
    part = f"{folder}/{i // 100}"
    os.makedirs(part, exist_ok=True)
    with open(f"{part}/file{i}.dat", "wb") as file:
        file.write(base64.encodebytes(data[i * 3001 : i * 3001 + 20000]))
PYTHON
}

# pack NAME: the folder of that name as an archive of the site. Prints the size of what is in it.
pack() {
  (cd "$folder/$1" && zip -q1r "$site/packages/$1.zip" .)
  find "$folder/$1" -type f -printf '%s\n' | awk '{ s += $1 } END { printf "%d\n", s }'
}

# make_nsis_installer NAME [FOLDER]
make_nsis_installer() {
  {
    echo "Unicode true
      Name Bench
      OutFile \"$folder/$1.exe\"
      SetCompressor zlib
      CRCCheck off
      RequestExecutionLevel user
      InstallDir \"$(windows_path "$games/Bench")\"
      ShowInstDetails show
      AutoCloseWindow true
      Page instfiles
      Section
        SetOutPath \$INSTDIR"
    [ $# -eq 1 ] || echo "File /r \"$2/*\""
    echo SectionEnd
  } | makensis -V1 -
}

write_document() {
  local document=$root/docs/performance.md
  awk -v table="$folder/table" -v date="$(date +%F)" -v rounds="$rounds" -v cores="$(nproc)" \
    -v wine="$(wine --version)" '
    /<!-- figures -->/ {
      print
      printf "%s, release build under %s on %d cores, medians of %d alternating rounds:\n\n", date, wine, cores, rounds
      print "| what | compared with | ours | theirs | ratio |"
      print "|---|---|---|---|---|"
      while ((getline line < table) > 0) print line
      skipping = 1
    }
    /<!-- end of figures -->/ { skipping = 0; print "" }
    !skipping && !/<!-- figures -->/' "$document" >"$folder/document"
  cp "$folder/document" "$document"
}

head -c 1073741824 /dev/urandom >"$site/packages/large"
mkdir "$folder/big" "$folder/thousand" "$folder/many" "$folder/most"
for i in 1 2 3 4; do head -c 100000000 "$site/packages/large" | base64 >"$folder/big/$i"; done
make_small_files "$folder/thousand" 1000
make_small_files "$folder/many" 10000
make_small_files "$folder/most" 20000
big_size=$(pack big) thousand_size=$(pack thousand) many_size=$(pack many) most_size=$(pack most)
make_nsis_installer many "$folder/many"
make_nsis_installer empty
set_up_program
serve

measure_start
measure_download
measure_archive big "$big_size" "one archive of 4 large files, 540 MB"
measure_archive thousand "$thousand_size" "1,000 small files, 27 MB"
measure_archive many "$many_size" "10,000 small files, 270 MB"
measure_archive most "$most_size" "20,000 small files, 540 MB"
compare_with_nsis
measure_memory
write_document
