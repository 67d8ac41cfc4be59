#!/usr/bin/env bash
# Makes the Wine prefix in build/wine: 64-bit, Windows 10, with nothing of the user's own folders linked into it.
source "$(dirname "$0")/../common.sh"

# A prefix that another version of this script made is made anew.
cmp -s "$0" "$wine_prefix/.made-by" && exit 0

say "making the Wine prefix"
rm -rf "$wine_prefix"
mkdir -p "$build"
log=$build/setup-wine.log
export WINEPREFIX=$wine_prefix WINEARCH=win64 WINEDEBUG=-all DISPLAY=
# Neither the browser engine nor the .NET runtime is needed: without this Wine offers to download them.
export WINEDLLOVERRIDES="mscoree=;mshtml="
set_value() { wine reg add "$@" /f >>"$log" 2>&1 || die "wine reg add $1 failed; see $log"; }

wineboot -i >"$log" 2>&1 || die "wineboot failed; see $log"
wine winecfg -v win10 >>"$log" 2>&1 || die "winecfg failed; see $log"
# The virtual display has no window manager. Asked for its help, Wine waits two seconds for it with each window that
# closes. (./run asks for one again on a desktop.)
set_value 'HKCU\Software\Wine\X11 Driver' /v Managed /d N
# A program that crashes ends, with its stack on standard error, instead of waiting for somebody to read a dialog.
set_value 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0
wineserver -k || true
wineserver -w
# Debian keeps Wine's fonts where its font loader doesn't look: without them dialogs and title bars are drawn, and texts
# measured, in whatever else the machine has. (The buttons of title bars are drawn with one of them, too.)
cp /usr/share/wine/fonts/*.ttf "$wine_prefix/drive_c/windows/Fonts"
# Wine links these to the home folder of whoever runs it; tests must never reach it.
find "$wine_prefix/drive_c/users" -type l | while read -r link; do
  rm "$link"
  mkdir -p "$link"
done
cp "$0" "$wine_prefix/.made-by"
