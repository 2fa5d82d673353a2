#!/usr/bin/env bash
# Puts all C++ sources into the project's format; with --check only says which are not.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

mode=(-i)
[[ ${1:-} != --check ]] || mode=(--dry-run --Werror)
find . \( -path ./build -o -path ./.git \) -prune -o \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) \
  -print0 | xargs -0 --no-run-if-empty -P "$(nproc)" -n 16 clang-format "${mode[@]}"
