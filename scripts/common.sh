# What the scripts have in common; they source it. It makes the checkout the working directory.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scratch=""   # a directory that goes when the script ends
reporter=""  # the process that says that a step goes on
at_end=""    # a command that ends what the script started

stop_reporter() {
  [ -n "$reporter" ] || return 0
  kill "$reporter" 2>/dev/null || true
  reporter=""
}

clean_up() {
  stop_reporter
  $at_end
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
  step "Configuring the preset $1" cmake --preset "$1"
  step "Building the preset $1" cmake --build --preset "$1" ${2:+--target "${@:2}"}
}

# An apt state of its own, in a directory, with sources that a sed script derives from the
# machine's; the system stays as it is: make_private_apt DIRECTORY SED_SCRIPT, then
# private_apt COMMAND...
make_private_apt() {
  private_apt_state=$1
  mkdir -p "$1/sources" "$1/lists/partial" "$1/archives/partial"
  local source
  for source in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    if [ -e "$source" ]; then
      sed "$2" "$source" >"$1/sources/$(basename "$source")"
    fi
  done
  # A source of somebody else's may not know what is asked for; Debian's own decides.
  private_apt update || true
}

private_apt() {
  apt-get --quiet --quiet \
    -o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$private_apt_state/sources" \
    -o "Dir::State::lists=$private_apt_state/lists" -o "Dir::State::status=/dev/null" \
    -o "Dir::Cache=$private_apt_state" -o "Dir::Cache::archives=$private_apt_state/archives" \
    -o "APT::Update::Post-Invoke=" -o "APT::Update::Post-Invoke-Success=" \
    -o "APT::Sandbox::User=" "$@"
}
