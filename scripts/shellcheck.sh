#!/usr/bin/env bash
# Every shell script of the project, found by its name or its first line, has to please shellcheck.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

mapfile -d '' -t scripts < <(
  find . \( -path ./build -o -path ./.git \) -prune -o -type f \( -name '*.sh' -o -perm -u+x \) -print0 |
    xargs -0 grep -lZE -m1 '^#!.*\b(ba)?sh\b|^# shellcheck shell='
)
shellcheck --external-sources --source-path=SCRIPTDIR --source-path=. --format=gcc "${scripts[@]}"
