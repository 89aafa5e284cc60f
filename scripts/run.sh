#!/usr/bin/env bash
# Builds and runs the program. Until the application window lands this is the keyset tool,
# describing the sample configuration shipped in resources/.
set -euo pipefail
cd "$(dirname "$0")/.."
# Standard output carries only the description, so that it can be piped (run.sh | head) even
# while the tool is still being built.
scripts/install-deps.sh >&2
cmake --preset release >/dev/null
cmake --build --preset release --target corvane-keyset >&2
exec build/release/tools/keyset/corvane-keyset describe resources/samples/Studio.plist "$@"
