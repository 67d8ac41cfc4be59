#!/usr/bin/env bash
# Makes a release for another site, signed with a certificate that is thrown away, and looks at what came out.
source "$(dirname "$0")/../../tools/common.sh"

folder=$(make_work_folder)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
openssl req -x509 -newkey rsa:2048 -nodes -days 30 -subj '/CN=Thrown away' -addext extendedKeyUsage=codeSigning \
  -keyout key.pem -out certificate.pem 2>/dev/null
printf 'a password' >password
openssl pkcs12 -export -inkey key.pem -in certificate.pem -out certificate.p12 -passout file:password

# Not where a true release may lie, and with a history of its own.
export ZENDORA_RESULTS=$folder GIT_DIR=$folder/.git
site=https://downloads.elsewhere.test version=9.8.7
commit() { git -c user.name=Somebody -c user.email=somebody@elsewhere.test commit -q --allow-empty -m "$1"; }
git init -q
commit 'Older than the last release'
git tag v9.8.6
commit 'Newer than the last release'
git tag "v$version"
"$root/release" "$version" --site "$site" --links elsewhere.test,forum.elsewhere.test \
  --sign certificate.p12 --password-file password

# What is wrong is told, before anything is built.
expect_refusal() {
  expect_end 2 "$@"
}
expect_end() {
  local wanted=$1 text=$2 status=0
  shift 2
  "$root/release" "$@" >refusal.txt 2>&1 || status=$?
  { [ "$status" -eq "$wanted" ] && grep -qF -- "$text" refusal.txt; } || die "instead of \"$text\": $(cat refusal.txt)"
}
expect_refusal 'the version "4.0"' 4.0 --site "$site"
expect_refusal '--site takes https://HOST' 4.0.9 --site elsewhere.test
expect_refusal 'up to four addresses' 4.0.9 --site "$site" --links a,b,c,d,e
expect_refusal 'up to four addresses' 4.0.9 --site "$site" --links 'a;b'
expect_refusal 'no option "--link"' 4.0.9 --site "$site" --link a
mkdir no-history
GIT_DIR=$folder/no-history expect_end 1 "the history of this checkout can't be read" 4.0.9 --site "$site"
cd dist

name=ZendoraInstaller-$version.exe
fail() { die "the release: $*"; }
sha256sum --quiet -c SHA256SUMS || fail "its SHA-256 is wrong"
md5sum --quiet -c MD5SUMS || fail "its MD5 is wrong"
osslsigncode verify -CAfile ../certificate.pem -in "$name" >/dev/null || fail "its signature is not valid"
! LC_ALL=C grep -qaE 'z.?e.?n.?d.?o.?r.?a.?\..?e.?x.?a.?m.?p.?l.?e' "$name" || fail "it still names the default site"
grep -qF "md5=\"$(md5sum <"$name" | cut -c1-32)\"" updater.xml || fail "the updater has another md5"
grep -qF "<source url=\"$site/play/$name\"/>" updater.xml || fail "the updater has another address"
[ "$(cat CHANGES.md)" = "$(printf '## %s\n\n- Newer than the last release' "$version")" ] ||
  fail "the list of changes is: $(cat CHANGES.md)"

# A crash address is an address in the very program that was published.
code_of() { i686-w64-mingw32-objcopy -O binary --only-section=.text "$1" "$2"; }
symbols=../symbols/ZendoraInstaller-$version.debug
code_of "$name" published.bin
code_of "$symbols" symbols.bin
cmp published.bin symbols.bin || fail "its symbols are those of another program"
entry=$(i686-w64-mingw32-nm "$symbols" | sed -n 's/ T _wWinMain@16$//p')
i686-w64-mingw32-addr2line -e "$symbols" "0x$entry" | grep -q 'src/app/main\.cpp:[0-9]' || fail "its symbols tell no lines"

# What the checks find is not what they were told: the same program isn't one of another version, site or link.
ln "$name" ZendoraInstaller.exe
expect_fault() {
  printf 'ZENDORA_VERSION:STRING=%s\nZENDORA_SITE_BASE:STRING=%s\nZENDORA_ABOUT_LINKS:STRING=%s\n' "$1" "$2" "$3" >CMakeCache.txt
  "$root/tools/checks/check-executable" "$PWD/ZendoraInstaller.exe" >faults.txt || true
  grep -qF -- "$4" faults.txt || fail "nothing is said about \"$4\", but: $(cat faults.txt)"
}
expect_fault "$version" "$site" 'elsewhere.test;forum.elsewhere.test' ' 0 faults'
expect_fault 9.8.6 "$site" elsewhere.test "its file version is 9.8.0.7, which doesn't stand for 9.8.6"
expect_fault "$version" https://zendora.example elsewhere.test 'the address https://zendora.example/ is not in it'
expect_fault "$version" "$site" social.example 'the address social.example is not in it'
