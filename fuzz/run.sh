#!/usr/bin/env bash
# Runs every fuzz target for a fixed number of executions over its seed corpus and its regression inputs, and fails
# on the first crash, leak, sanitizer report or failed check. New inputs the fuzzer finds go to a temporary folder,
# so the corpus in the repository is left as it is; a failing input is kept under build/fuzz/artifacts/.
#
#   fuzz/run.sh [RUNS] [LIBFUZZER_OPTION...]     RUNS defaults to 20000; build first: cmake --workflow --preset fuzz
#
# LODEX_FUZZ_BUILD names another build folder (default build/fuzz); LODEX_FUZZ_SEED another seed (default 1).
set -euo pipefail
cd "$(dirname "$0")/.."

runs="${1:-20000}"
shift || true
build="${LODEX_FUZZ_BUILD:-build/fuzz}"
seed="${LODEX_FUZZ_SEED:-1}"
list="$build/fuzz/fuzz-targets.txt"
if [ ! -f "$list" ]; then
  echo "fuzz/run.sh: $list not found; build the targets first: cmake --workflow --preset fuzz" >&2
  exit 2
fi

artifacts="$build/artifacts"
mkdir -p "$artifacts"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

while read -r target; do
  [ -n "$target" ] || continue
  binary="$build/fuzz/lodex_fuzz_$target"
  mkdir -p "$work/$target"
  echo "== $target: $runs runs"
  if ! "$binary" -runs="$runs" -seed="$seed" -timeout=25 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$artifacts/$target-" "$@" \
    "$work/$target" "fuzz/corpus/$target" "fuzz/regressions/$target" >"$work/$target.log" 2>&1; then
    cat "$work/$target.log" >&2
    echo "fuzz/run.sh: $target failed; the input is under $artifacts/ (see docs/fuzzing.md to keep it)" >&2
    exit 1
  fi
  grep -E '^#[0-9]+[[:space:]]+DONE|^stat::number_of_executed_units|^stat::peak_rss_mb' "$work/$target.log" || true
done <"$list"
