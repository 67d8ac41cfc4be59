#!/usr/bin/env bash
# Photographs every page, dialog and kind of message box in every language, on screens of 100, 150 and 200 %. A sheet
# shows one of them at one scale in all languages. Called by ./run.
source "$(dirname "$0")/camera.sh"

scales=(100 150 200)
manifest=$output/demo/site/manifest.xml
cp "$manifest" "$output/demo/manifest.kept"

forget_downloads() { rm -rf "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Zendora; }

picture_run() {
  local name=$1
  start_installer "install:$(cat "$output/demo/packages.txt")" source:main
  drive dialog || give_up "no question about the old game"
  picture "$name-question"
  drive dismiss
  drive show '/s (' || give_up "no transfer was seen"
  picture "$name-installation"
  picture_closing_page "$name-closing"
  forget_downloads
}

picture_error() {
  local name=$1
  ip address del 127.0.0.1/8 dev lo
  start_installer
  drive dialog || give_up "no box about the list"
  picture "$name-error"
  ip address add 127.0.0.1/8 dev lo
  drive dismiss
  end_installer
}

# The site announces a new program, which turns out to be another file.
picture_update() {
  local name=$1 md5=00000000000000000000000000000000 help=https://zendora.example/play/
  sed "s|</downloader>|<updater md5='$md5' filesize='40000' helpURL='$help'><source url='${help%play/}slow'/></updater>&|" \
    "$output/demo/manifest.kept" >"$manifest"
  start_installer
  drive dialog || give_up "no update was seen"
  sleep 1  # some bytes come
  picture "$name-update"
  drive question || give_up "the update did not fail"
  picture "$name-update-failed"
  drive dismiss
  wait "$installer" || give_up "the installer ended with status $?"
  cp "$output/demo/manifest.kept" "$manifest"
  forget_downloads
}

make_sheets() {
  local scale kind
  for kind in components about speed-limit delete-data question installation closing error update update-failed; do
    for scale in "${scales[@]}"; do
      montage -font DejaVu-Sans -label '%t' "$output"/*-"$scale-$kind.png" -tile 3x -geometry +4+4 "$output/sheet-$kind-$scale.png"
    done
  done
}

pretend_old_game
set_number "$settings" MaxDownloadSpeed 400
for scale in "${scales[@]}"; do
  for language in "${!languages[@]}"; do
    name=$language-$scale
    say "$name"
    set_desktop "$language" "$scale"
    picture_components "$name"
    picture_run "$name"
    picture_error "$name"
    picture_update "$name"
  done
done
make_sheets
printf '\nPictures: %s/*.png\n' "$output"
