#!/usr/bin/env bash
# Builds Finora and starts it on a generated demo ledger (demo/demo.fnr, made once).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default

mkdir -p demo
if [[ ! -f demo/demo.fnr ]]; then
  build/default/src/cli/finora-cli generate demo/demo.fnr --operations 20000 --seed 2026
fi
exec build/default/src/app/finora demo/demo.fnr
