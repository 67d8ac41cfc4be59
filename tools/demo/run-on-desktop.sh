#!/usr/bin/env bash
# The demo on a desktop, whose window manager has a say in the program's windows again. Called by ./run.
source "$(dirname "$0")/../common.sh"

wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d Y /f >/dev/null 2>&1
# Wine does nothing about Ctrl+C in the terminal; here it ends the demo.
trap 'exit 130' INT TERM
wine start /wait /unix "$build/release/ZendoraInstaller.exe" &
wait $!
