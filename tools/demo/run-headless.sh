#!/usr/bin/env bash
# The demo without a desktop: pictures of the pages in every language, and an installation of everything. Ends with
# status 0 only if everything that the manifest promised is there with the right content. Called by ./run.
source "$(dirname "$0")/../common.sh"

program=$build/release/ZendoraInstaller.exe
output=$build/run
settings='HKCU\Software\Zendora Installer'

set_number() { wine reg add "$1" /v "$2" /t REG_DWORD /d "$3" /f >/dev/null 2>&1; }
drive() { wine "$build/release/drive_installer.exe" "$@"; }
# There is no window manager here to draw the title bar, so Wine does.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null 2>&1

start_installer() {
  wine "$program" "$@" &
  installer=$!
}

# Photographs the window, title bar included.
picture() {
  local window
  window=$(xdotool search --onlyvisible --name '^Zendora Installer$' | tail -n 1)
  import -window "$window" "$output/$1.png"
}

give_up() {
  say "$1; the log so far:"
  drive log || true
  drive boxes || true
  kill "$installer" 2>/dev/null || true
  exit 1
}

show_languages() {
  local language
  for language in 7:german 10:spanish 21:polish 22:portuguese 25:russian 31:turkish 9:english; do
    set_number "$settings" Language "${language%%:*}"
    start_installer
    drive wait components || give_up "the list of components did not appear"
    picture "components-${language#*:}"
    drive close
    wait "$installer" || give_up "the installer ended with status $?"
  done
}

# Photographs the whole screen with a dialog on it.
dialog_picture() {
  local command=$1 name=$2
  drive choose "$command"
  drive dialog || give_up "the dialog \"$name\" did not open"
  import -window root "$output/$name.png"
  drive dismiss
}

# The components page and what the menu opens, on screens of other scales.
show_scales() {
  local percent
  for percent in 150 200 100; do
    set_number 'HKCU\Control Panel\Desktop' LogPixels $((percent * 96 / 100))
    start_installer
    drive wait components || give_up "the list of components did not appear"
    picture "components-$percent"
    dialog_picture 104 "about-$percent"
    dialog_picture 32778 "speed-limit-$percent"
    dialog_picture 32781 "delete-data-$percent"
    drive close
    wait "$installer" || give_up "the installer ended with status $?"
  done
}

old_game='Old games/GTA San Andreas'
old_game_key='HKLM\Software\Rockstar Games\GTA San Andreas\Installation'

# An earlier installation, as the game itself would have left it.
pretend_old_game() {
  mkdir -p "$WINEPREFIX/drive_c/$old_game"
  printf 'an older program\n' >"$WINEPREFIX/drive_c/$old_game/gta_sa.exe"
  wine reg add "$old_game_key" /v ExePath /d "C:\\${old_game//\//\\}\gta_sa.exe" /reg:32 /f >/dev/null 2>&1
}

print_registry() {
  wine reg query "$old_game_key" /reg:32 || true
  wine reg query 'HKCU\Software\Zendora demo' /s || true
}

install_everything() {
  # Slow enough to be seen.
  set_number "$settings" MaxDownloadSpeed 1000
  start_installer "install:$(cat "$build/demo/packages.txt")" source:main
  drive yes 'Do you want to reinstall these components using existing folders?' || give_up "no question about the old game"
  drive show 'Speed: ' || give_up "no transfer was seen"
  picture installation
  drive finish || give_up "the installation did not end"
  picture finished
  drive log >"$output/log.txt"
  print_registry | tr -d '\r' >"$output/registry.txt"
  drive close
  wait "$installer" || give_up "the installer ended with status $?"
}

# The closing page stays for as long as the worker waits for the server.
show_closing_page() {
  kill -STOP "$ZENDORA_DEMO_SERVER"
  start_installer install:zendora-guide.txt
  drive wait install || give_up "the installation did not start"
  drive ask-close
  drive wait closing || give_up "the closing page did not appear"
  picture closing
  kill -CONT "$ZENDORA_DEMO_SERVER"
  wait "$installer" || give_up "the installer ended with status $?"
}

# Asks for everything that the manifest names. One source has lost a file, and only that may be found.
check_site() {
  "$build/publish/zendora-publish" check-site https://zendora.example "$build/demo/site/manifest.xml" \
    --cacert "$ZENDORA_CERTIFICATE" >"$output/check-site.txt" || true
  sed 's/^/  /' "$output/check-site.txt"
  grep -q 'moved/gtasa answers 404' "$output/check-site.txt" && grep -q ': 1 error, 0 warnings$' "$output/check-site.txt"
}

say "checking the site"
check_site || die "the site is not what the manifest says"
say "taking pictures of the components page"
show_languages
say "taking pictures at other scales"
show_scales
say "installing everything"
pretend_old_game
install_everything
show_closing_page

printf '\nThe log of the window:\n'
sed 's/^/  /' "$output/log.txt"
printf '\nWhat the server was asked for:\n'
sed 's/^/  /' "$output/access.log"
printf '\nInstalled:\n'
status=0
"$root/tools/demo/demo-site" check "$WINEPREFIX/drive_c" "$output/registry.txt" || status=1
printf '\nPictures: %s/*.png\n' "$output"
exit $status
