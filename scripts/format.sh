#!/usr/bin/env bash
# Lays out the project's own C++ files by .clang-format (clang-format 14).
#
#   scripts/format.sh           formats the files in place
#   scripts/format.sh --check   changes nothing; lists the files that differ
#                               and exits non-zero if there are any
#
# The files are those git tracks, so build trees stay out; the fuzz corpora
# and regression inputs are data, not code, and stay out too.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
# shellcheck source=lib/common.sh
source scripts/lib/common.sh
NORVANE_LOG_TAG=format

check=false
case "${1:-}" in
    "") ;;
    --check) check=true ;;
    *) norvane_die "usage: scripts/format.sh [--check]" ;;
esac

# The layout differs between clang-format versions: use the one the
# configuration was tuned with.
clang_format="$(command -v clang-format-14 || true)"
if [[ -z "$clang_format" ]]; then
    scripts/setup/install-packages.sh format
    clang_format="$(command -v clang-format-14)" || norvane_die "clang-format-14 not found"
fi

mapfile -t files < <(git ls-files -- '*.cpp' '*.h' ':!:fuzz/corpus/**' ':!:fuzz/regressions/**')

if ! $check; then
    printf '%s\0' "${files[@]}" | xargs -0 "$clang_format" -i --style=file
    exit 0
fi

differing=0
for file in "${files[@]}"; do
    if ! "$clang_format" --style=file "$file" | cmp -s - "$file"; then
        echo "$file"
        differing=$((differing + 1))
    fi
done
if [[ $differing -gt 0 ]]; then
    norvane_log "$differing file(s) differ from .clang-format: run scripts/format.sh"
    exit 1
fi
