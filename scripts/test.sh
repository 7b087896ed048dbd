#!/usr/bin/env bash
# Installs what is missing, checks the style (clang-format everywhere, clang-tidy on the core),
# builds, and runs every test: the suite as released (with the time budgets of bench/, the ctest
# case Bench.Budgets), the same suite
# under AddressSanitizer + UndefinedBehaviorSanitizer, the threaded storage tests under
# ThreadSanitizer, each fuzz target for a minute when clang is there, and a plain Release build as
# a packager makes it, installed and packaged (scripts/release-check.sh).
# FINORA_QUICK=1 runs the first of these only.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
scripts/check-style.sh format

run_preset() {
  echo "== $1"
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1"
  ctest --preset "$1" --parallel "$(nproc)" "${@:2}"
}

run_preset default

if [[ "${FINORA_QUICK:-0}" != 1 ]]; then
  scripts/check-style.sh tidy
  run_preset asan
  # The tests that save, and so start the backup writer's thread (not the ones that start Qt's GUI).
  run_preset tsan -R 'Storage|Backup|Cli|List|Import|Lock|Atomic|FullDisk|FailedOpen' -E 'CliRender'
  # Thirteen targets: 45 s each keeps the whole run well inside CI's time.
  scripts/fuzz.sh "${FINORA_FUZZ_SECONDS:-45}"
  scripts/release-check.sh
  # The last word is the whole suite's, as released.
  ctest --preset default --parallel "$(nproc)" | tail -n 3
fi
