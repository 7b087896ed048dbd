#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for the given number of seconds (default 60)
# on a seed corpus of ledgers made by finora-cli. Usage: scripts/fuzz.sh [seconds] [target...]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
shift || true
targets=("$@")
if ((${#targets[@]} == 0)); then
  targets=(fuzz_ledger_reader fuzz_streaming_reader fuzz_filter_file fuzz_import fuzz_tips fuzz_lock_file
    fuzz_csv_layout fuzz_statement_csv fuzz_statement_camt053 fuzz_statement_ofx fuzz_statement_qif
    fuzz_statement_mt940 fuzz_companion)
fi

if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ is not installed; skipping the fuzz run"
  exit 0
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

cli=build/fuzz/src/cli/finora-cli
seeds=build/fuzz/seeds
mkdir -p "$seeds"
"$cli" new "$seeds/empty.fnr" --force >/dev/null
"$cli" generate "$seeds/small.fnr" --operations 12 --seed 3 --force >/dev/null
"$cli" generate "$seeds/medium.fnr" --operations 300 --seed 4 --force >/dev/null
"$cli" save-filter "$seeds/filter.ffl" --category 3 --category 7 --subcategories --paid 2 >/dev/null 2>&1 || true
printf 'Finora lock 1\nprogram=finora\nuser=иван\nhost=лаптоп\npid=4242\nstart=987\nsince=23-11-2026 10:15\ntoken=0123456789abcdef\n' \
  >"$seeds/lock.txt"
printf '{\n  "finora_companion": 1,\n  "imported": [\n    {"key": "ref:BG80/FT1/20261103/-1250#1", "operation": 12, "date": "2026-11-03", "amount_cents": 1250, "type": 2}\n  ],\n  "rules": [{"match": "contains", "text": "\\u041b\\u0438\\u0434\\u043b", "category": 7}]\n}\n' \
  >"$seeds/companion.json"
rm -f "$seeds"/*.bak

for target in "${targets[@]}"; do
  corpus=build/fuzz/corpus/$target
  mkdir -p "$corpus" build/fuzz/artifacts
  echo "fuzz: $target for ${seconds}s"
  # Memory is bounded as the readers promise: no input of 64 KiB may make one allocation over
  # 256 MiB or the process grow over 1 GiB.
  "build/fuzz/fuzz/$target" "$corpus" "$seeds" fuzz/seeds/statements -max_total_time="$seconds" \
    -rss_limit_mb=1024 -malloc_limit_mb=256 \
    -artifact_prefix=build/fuzz/artifacts/ \
    -max_len=65536 -timeout=10 -print_final_stats=1 2>&1 | tail -n 12
done
