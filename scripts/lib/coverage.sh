#!/usr/bin/env bash
# coverage.sh BUILD FORM: makes pages and the table in docs/quality.md of the profiles that the tests of this form left in
# BUILD/profiles.
set -euo pipefail
build=$1 form=$2
llvm-profdata-19 merge -sparse "$build"/profiles/*.profraw -o "$build/tests.profdata"
mapfile -t programs < <(find "$build/tests" "$build/src" -maxdepth 3 -type f -executable ! -name '*.so' ! -name '*.a')
objects=()
for program in "${programs[@]:1}"; do objects+=(-object "$program"); done
options=(-instr-profile="$build/tests.profdata" "${programs[0]}" "${objects[@]}" -ignore-filename-regex='(/tests/|/build/|^/usr/)')
llvm-cov-19 show -format=html -output-dir="$build/html" "${options[@]}" 2>/dev/null || true
llvm-cov-19 export -summary-only "${options[@]}" 2>/dev/null | python3 -B scripts/lib/coverage.py "$form"
