#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running Finora need, and only
# those that are missing, so a second run does nothing. Uses sudo when not root.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev qt6-translations-l10n
  libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev
  libxml2-dev
  fonts-dejavu-core fonts-liberation2
  xvfb xauth xdotool poppler-utils
  desktop-file-utils appstream shared-mime-info xdg-utils dpkg-dev man-db
  clang-format clang-tidy locales lintian
)
# Optional: libFuzzer needs clang and its runtime; the build skips the fuzz targets without them.
if [[ "${FINORA_WITH_FUZZ:-1}" == 1 ]]; then
  packages+=(clang libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

sudo=""
if [[ $(id -u) -ne 0 ]]; then sudo="sudo"; fi
if ((${#missing[@]} == 0)); then
  echo "install-deps: every package is already installed"
else
  echo "install-deps: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# A locale with a decimal comma, so the tests can show that no number text follows the process's
# locale.
if ! locale -a 2>/dev/null | grep -qix 'bg_BG.utf8'; then
  echo "install-deps: generating the bg_BG.UTF-8 locale"
  $sudo localedef -i bg_BG -f UTF-8 bg_BG.UTF-8
fi
