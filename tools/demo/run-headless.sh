#!/usr/bin/env bash
# The demo without a desktop: pictures of the pages in every language, and an installation of everything. Ends with
# status 0 only if everything that the manifest promised is there with the right content. Called by ./run.
source "$(dirname "$0")/camera.sh"

show_languages() {
  local language
  for language in "${!languages[@]}"; do
    set_desktop "$language" 100
    start_installer
    drive wait components || give_up "the list of components did not appear"
    picture "$language-100-components"
    end_installer
  done
}

show_scales() {
  local percent
  for percent in 150 200 100; do
    set_desktop english "$percent"
    picture_components "english-$percent"
  done
}

print_registry() {
  wine reg query "$old_game_key" /reg:32 || true
  wine reg query 'HKCU\Software\Zendora demo' /s || true
}

install_everything() {
  # Slow enough to be seen.
  set_number "$settings" MaxDownloadSpeed 1000
  start_installer "install:$(cat "$output/demo/packages.txt")" source:main
  drive yes 'Do you want to reinstall these components using existing folders?' || give_up "no question about the old game"
  drive show 'Speed: ' || give_up "no transfer was seen"
  picture installation
  drive finish || give_up "the installation did not end"
  picture finished
  drive log >"$output/log.txt"
  print_registry | tr -d '\r' >"$output/registry.txt"
  end_installer
}

show_closing_page() {
  kill -STOP "$ZENDORA_DEMO_SERVER"
  start_installer install:zendora-guide.txt
  drive wait install || give_up "the installation did not start"
  picture_closing_page closing
}

# Asks for everything that the manifest names. One source has lost a file, and only that may be found.
check_site() {
  "$build/publish/zendora-publish" check-site https://zendora.example "$output/demo/site/manifest.xml" \
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
