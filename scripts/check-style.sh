#!/usr/bin/env bash
# The style gate: every C++ file as the project's .clang-format lays it out ("format"), and the
# core clean under .clang-tidy's checks ("tidy", which needs build/default configured for its
# compile_commands.json). No argument runs both.
set -euo pipefail
cd "$(dirname "$0")/.."

what="${1:-all}"
if [[ "$what" == all || "$what" == format ]]; then
  mapfile -t files < <(git ls-files '*.cpp' '*.h')
  echo "== clang-format: ${#files[@]} files"
  if ! clang-format --dry-run -Werror "${files[@]}"; then
    echo "check-style: run clang-format -i on the files above" >&2
    exit 1
  fi
fi
if [[ "$what" != all && "$what" != tidy ]]; then exit 0; fi

mapfile -t core < <(git ls-files 'src/core/*.cpp')
echo "== clang-tidy: ${#core[@]} core files"
run-clang-tidy -quiet -p build/default -j "$(nproc)" "${core[@]/#/$PWD/}" > build/clang-tidy.log 2>&1 || {
  grep -E "warning:|error:" build/clang-tidy.log | sort -u >&2
  echo "check-style: clang-tidy found the faults above (full log: build/clang-tidy.log)" >&2
  exit 1
}
