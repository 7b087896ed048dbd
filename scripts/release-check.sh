#!/usr/bin/env bash
# The build a packager or a user makes: plain `cmake -DCMAKE_BUILD_TYPE=Release`, no preset, so
# warnings show and do not fail. Then its tests, an installation into a temporary prefix looked
# at as a desktop sees it, the installed programs run once, and the Debian package.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/release
app_id=bg.finora.Finora

echo "== plain Release build"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" | tee "$build/build.log" | grep -E 'warning|error' || true
echo "warnings: $(grep -c 'warning:' "$build/build.log" || true)"
ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure | tail -n 3

echo "== install into a temporary prefix"
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
share=$prefix/share
for f in bin/finora bin/finora-cli share/finora/tips.txt share/man/man1/finora.1.gz share/man/man1/finora-cli.1.gz \
         share/mime/packages/$app_id.xml share/icons/hicolor/scalable/apps/$app_id.svg \
         share/icons/hicolor/48x48/apps/$app_id.png share/doc/finora/copyright share/doc/finora/changelog.gz; do
  [[ -f $prefix/$f ]] || { echo "release-check: $f is not installed"; exit 1; }
done
desktop-file-validate "$share/applications/$app_id.desktop"
appstreamcli validate --no-net "$share/metainfo/$app_id.metainfo.xml"
if command -v man >/dev/null; then
  for page in "$share"/man/man1/*.1.gz; do
    warnings=$(LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l "$page" 2>&1 >/dev/null)
    [[ -z $warnings ]] || { echo "$warnings"; exit 1; }
  done
fi
# The MIME database as the desktop builds it from the installed file, then asked by content.
XDG_DATA_DIRS=$share update-mime-database "$share/mime"
FINORA_INSTALLED_SHARE=$share "$build/tests/finora_desktop_tests" --gtest_brief=1 | tail -n 1

echo "== the installed programs"
cli=$prefix/bin/finora-cli
version=$("$cli" --version)
[[ $("$prefix/bin/finora" --version) == "finora ${version#finora-cli }" ]] || { echo "the versions differ"; exit 1; }
echo "$version"
work=$prefix/work
mkdir -p "$work"
"$cli" generate "$work/l.fnr" --operations 200 --seed 3 >/dev/null
env -u DISPLAY "$cli" report "$work/l.fnr" --pdf "$work/r.pdf" --from 1-1-2000
env -u DISPLAY "$cli" chart "$work/l.fnr" 2026 --png "$work/c.png"
# The desktop program starts and keeps running on the ledger until it is stopped.
status=0
# Its options go to a folder of its own, not to the user's.
XDG_CONFIG_HOME=$prefix/config QT_QPA_PLATFORM=offscreen timeout 5 "$prefix/bin/finora" --no-tip "$work/l.fnr" || status=$?
[[ $status == 124 ]] || { echo "finora ended by itself with status $status"; exit 1; }

echo "== Debian package"
if ! command -v dpkg-shlibdeps >/dev/null; then
  echo "release-check: dpkg-shlibdeps is missing; no package"
  exit 0
fi
(cd "$build" && cpack -G DEB >/dev/null)
deb=$(ls "$build"/finora_*.deb)
dpkg-deb --field "$deb" Package Version Architecture Depends Recommends Installed-Size
dpkg-deb --contents "$deb" | grep -E "usr/bin/finora(-cli)?$|$app_id.desktop$|mime/packages/$app_id.xml$" | awk '{print $NF}'
# Debian's own checker: no error, and the warnings shown. It reads the package, so no root.
lintian --fail-on error --no-tag-display-limit "$deb"
