#!/usr/bin/env bash
# The style gate: every C++ file as the project's .clang-format lays it out and no source file
# over 600 lines ("format"); the core clean under .clang-tidy's checks and no function of the
# desktop layer over 80 lines (src/gui/.clang-tidy) ("tidy", which needs build/default
# configured for its compile_commands.json). No argument runs both.
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
  long=$(git ls-files 'src/*.cpp' 'src/*.h' | xargs wc -l | awk '$2 != "total" && $1 > 600')
  if [[ -n "$long" ]]; then
    echo "$long" >&2
    echo "check-style: split the source files above (600 lines at most)" >&2
    exit 1
  fi
fi
if [[ "$what" != all && "$what" != tidy ]]; then exit 0; fi

mapfile -t checked < <(git ls-files 'src/core/*.cpp' 'src/gui/*.cpp')
echo "== clang-tidy: ${#checked[@]} core and desktop files"
run-clang-tidy -quiet -p build/default -j "$(nproc)" "${checked[@]/#/$PWD/}" > build/clang-tidy.log 2>&1 || {
  grep -E "warning:|error:" build/clang-tidy.log | sort -u >&2
  echo "check-style: clang-tidy found the faults above (full log: build/clang-tidy.log)" >&2
  exit 1
}
