# Starts, operates and photographs the installer. Source it, don't run it. Inside the private network, with the demo site
# and a virtual display, only; pictures go to the folder $output.
# shellcheck shell=bash
source "$(dirname "${BASH_SOURCE[0]}")/../common.sh"

program=$build/release/ZendoraInstaller.exe
settings='HKCU\Software\Zendora Installer'
declare -A languages=([german]=7 [english]=9 [spanish]=10 [polish]=21 [portuguese]=22 [russian]=25 [turkish]=31)

set_number() { wine reg add "$1" /v "$2" /t REG_DWORD /d "$3" /f >/dev/null 2>&1; }
drive() { wine "$build/release/drive_installer.exe" "$@"; }
# There is no window manager here to draw the title bar, so Wine does.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null 2>&1

# shellcheck disable=SC2120 # the arguments come from those who source this
start_installer() {
  wine "$program" "$@" &
  installer=$!
}

give_up() {
  say "$1; the log so far:"
  { drive log; drive boxes; } | tr -d '\r' || true
  kill "$installer" 2>/dev/null || true
  exit 1
}

end_installer() {
  drive close
  wait "$installer" || give_up "the installer ended with status $?"
}

# What the next installer finds: its language, and the scale of the screen in percent.
set_desktop() {
  set_number "$settings" Language "${languages[$1]}"
  set_number 'HKCU\Control Panel\Desktop' LogPixels $(($2 * 96 / 100))
}

# Photographs all windows, title bars included. What Wine has drawn reaches the screen a moment later.
picture() {
  sleep 0.3
  import -window root -trim +repage "$output/$1.png"
}

# The same with what a menu command opens.
dialog_picture() {
  drive choose "$1"
  drive dialog || give_up "the dialog \"$2\" did not open"
  picture "$2"
  drive dismiss
}

# The components page and the dialogs.
picture_components() {
  local name=$1
  start_installer
  drive wait components || give_up "the list of components did not appear"
  picture "$name-components"
  dialog_picture 104 "$name-about"
  dialog_picture 32778 "$name-speed-limit"
  dialog_picture 32781 "$name-delete-data"
  end_installer
}

old_game='Old games/GTA San Andreas'
old_game_key='HKLM\Software\Rockstar Games\GTA San Andreas\Installation'

# An earlier installation, as the game itself would have left it.
pretend_old_game() {
  mkdir -p "$WINEPREFIX/drive_c/$old_game"
  printf 'an older program\n' >"$WINEPREFIX/drive_c/$old_game/gta_sa.exe"
  wine reg add "$old_game_key" /v ExePath /d "C:\\${old_game//\//\\}\gta_sa.exe" /reg:32 /f >/dev/null 2>&1
}

# The closing page stays for as long as the worker waits for the server.
picture_closing_page() {
  kill -STOP "$ZENDORA_DEMO_SERVER"
  drive leave || give_up "the closing page did not appear"
  picture "$1"
  kill -CONT "$ZENDORA_DEMO_SERVER"
  wait "$installer" || give_up "the installer ended with status $?"
}
