# shellcheck shell=bash
# Read by the scripts that tools/pages/commands prints: how a step runs. A scratch HOME is theirs to give.
set -euo pipefail
export PAGES_FOLDER=$PWD

# step PLACE COMMAND: runs the command and shows what it printed when it fails.
step() {
  local log=$HOME/step.log
  echo "$1: $2"
  if ! bash -o pipefail -c "$2" >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    echo "$1: failed" >&2
    exit 1
  fi
}
