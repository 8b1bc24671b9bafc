# shellcheck shell=bash
# Shared by run, test and .ci/run: packages, quiet builds, messages on failure. To be sourced.
# shellcheck disable=SC2034  # the lists of packages are used by the scripts that source this file

set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
logs=$root/build/logs

# The compiler, the build tools and the libraries of both programs.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-svg-dev libsqlite3-dev
  libutf8proc-dev libcli11-dev libzip-dev libexpat1-dev)
# A virtual desktop: a display, a window manager, tools for keys and the clipboard, and Python.
desktop_packages=(xvfb openbox xdotool xclip python3)
# Additional packages for the tests: GoogleTest, a JSON parser, a locale with a decimal comma, time
# zones, groff for the man pages, other readers of the project file and of PDF, and a virtual desktop.
test_packages=(libgtest-dev libgmock-dev nlohmann-json3-dev locales tzdata groff-base sqlite3
  poppler-utils "${desktop_packages[@]}")
# Additional packages for the checks: clang with its formatter, linter and fuzzer, the linter for shell
# scripts, and Google Benchmark, because the benchmarks are checked too.
check_packages=(clang-14 libclang-rt-14-dev clang-tidy-14 clang-format-14 shellcheck
  libbenchmark-dev git)

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$*"
  exit 1
}

# with_log NAME COMMAND...: runs the command silently; shows the end of its output if it fails.
with_log() {
  local log=$logs/$1.log
  shift
  mkdir -p "$logs"
  "$@" >"$log" 2>&1 </dev/null && return 0
  tail -n 40 -- "$log" >&2
  say "The complete output is in $log."
  return 1
}

missing_packages() {
  local -A installed=()
  local status name
  while read -r status name; do
    [[ $status == ?i ]] && installed[$name]=1
  done < <(dpkg-query -W -f='${db:Status-Abbrev} ${Package}\n' "$@" 2>/dev/null || true)
  for name in "$@"; do
    [[ -n ${installed[$name]:-} ]] || printf '%s\n' "$name"
  done
}

apt() {
  local as_root=()
  ((EUID == 0)) || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0 \
    -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -o APT::Update::Error-Mode=any "$@"
}

install_packages() { apt install --no-install-recommends "$@"; }

# Package lists can be missing or outdated; they are updated if the installation fails.
install_packages_refreshing() {
  install_packages "$@" || { apt update && install_packages "$@"; }
}

# need_packages NAME...: installs the packages that are missing.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is not Debian: assuming that the contents of the packages $* are installed."
    return 0
  fi
  local missing
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]})) || return 0
  local by_hand="apt-get install --no-install-recommends ${missing[*]}"
  if ((EUID != 0)); then
    command -v sudo >/dev/null || die "Missing packages, and no sudo. As root: $by_hand"
    sudo -v || die "Missing packages. As root: $by_hand"
  fi
  say "Installing ${#missing[@]} missing packages: ${missing[*]}"
  with_log packages install_packages_refreshing "${missing[@]}" ||
    die "The packages could not be installed. By hand: $by_hand"
}

# Shows ninja's progress line in a terminal, otherwise only errors and warnings.
build_preset() {
  if [[ -t 2 ]]; then
    cmake --build --preset "$@" >&2
  else
    cmake --build --preset "$@" -- --quiet 2>&1 | sed '/^ninja: no work to do\.$/d' >&2
  fi
}

# configure PRESET: unless already done since the last change of the presets.
configure() {
  local stamp=$root/build/$1/configured
  [[ -e $stamp && ! $root/CMakePresets.json -nt $stamp ]] && return 0
  with_log "configure-$1" env -C "$root" cmake --preset "$1" --log-level=WARNING ||
    die "Configuring the preset $1 failed."
  touch -- "$stamp"
}

# build PRESET [CMAKE ARGUMENT...]
build() {
  configure "$1"
  (cd -- "$root" && build_preset "$@") || die "Building the preset $1 failed."
}

# Creates a locale with a decimal comma in the build folder, without changing the system.
make_test_locale() {
  local folder=$root/build/locale
  if [[ ! -e $folder/de_DE.UTF-8 ]]; then
    mkdir -p "$folder"
    with_log locale localedef -i de_DE -f UTF-8 "$folder/de_DE.UTF-8" ||
      die "The locale de_DE.UTF-8 could not be created."
  fi
  export LOCPATH=$folder
}

# run_tests PRESET [CTEST ARGUMENT...]
# One test more than there are processors at a time, because some mostly wait.
run_tests() {
  (cd -- "$root" && ctest --preset "$1" -j "$(($(nproc) + 1))" --progress "${@:2}") ||
    die "Tests of the preset $1 failed."
}
