# What the scripts have in common; they source it. It makes the checkout the working directory.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scratch=""   # a directory that goes when the script ends
reporter=""  # the process that says that a step goes on

stop_reporter() {
  [ -n "$reporter" ] || return 0
  kill "$reporter" 2>/dev/null || true
  reporter=""
}

clean_up() {
  stop_reporter
  [ -z "$scratch" ] || rm -rf "$scratch"
}
trap clean_up EXIT

# Runs a command, says before what it does, and says every ten seconds that it goes on:
# step WHAT COMMAND...
step() {
  echo "== $1"
  # The sleeper may outlive the script; it must not hold on to the script's output.
  while sleep 10 >/dev/null 2>&1; do echo "== $1: goes on"; done &
  reporter=$!
  disown
  "${@:2}"
  stop_reporter
}

# Configures the build tree of a preset and builds what is asked for, or all:
# build_tree PRESET [TARGET...]
build_tree() {
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
  fi
  step "Configuring build/$1" cmake --preset "$1"
  step "Building build/$1" cmake --build --preset "$1" ${2:+--target "${@:2}"}
}
