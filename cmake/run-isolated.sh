#!/bin/sh
# Runs one test suite with a home, caches and a temporary folder of its own,
# made fresh for the run and removed after it: settings, web profiles and
# databases that a suite writes can neither reach another suite nor the next
# run, nor the user's own home.
set -u
scratch=$(mktemp -d "${TMPDIR:-/tmp}/subject-suite.XXXXXX") || exit 1
trap 'rm -rf "$scratch"' EXIT
trap 'exit 143' TERM INT
mkdir -p "$scratch/home" "$scratch/tmp" "$scratch/runtime"
chmod 700 "$scratch/runtime"
export HOME="$scratch/home"
export XDG_CONFIG_HOME="$scratch/home/.config"
export XDG_CACHE_HOME="$scratch/home/.cache"
export XDG_DATA_HOME="$scratch/home/.local/share"
export XDG_RUNTIME_DIR="$scratch/runtime"
export TMPDIR="$scratch/tmp"
"$@"
