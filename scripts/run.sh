#!/usr/bin/env bash
# Builds and runs the program. Until the application window lands this is the keyset tool,
# describing the sample configuration shipped in resources/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target corvane-keyset
exec build/release/tools/keyset/corvane-keyset describe resources/samples/Studio.plist "$@"
