# shellcheck shell=bash
# What run, test and .ci/run share: packages, quiet builds, words on failure. Sourced, never run.
# shellcheck disable=SC2034  # the lists of packages are for those who source this file

set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
logs=$root/build/logs

# The compiler, the build tools and the libraries of both programs.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-svg-dev libsqlite3-dev
  libutf8proc-dev libcli11-dev)
# A desktop without a screen: a display, a window manager, keys, the clipboard, and what drives them.
desktop_packages=(xvfb openbox xdotool xclip python3)
# What the tests need besides: GoogleTest, a reader of JSON, a locale with a decimal comma, the time
# zones, the formatter of man pages, other programs that read the project file and PDF, a desktop.
test_packages=(libgtest-dev libgmock-dev nlohmann-json3-dev locales tzdata groff-base sqlite3
  poppler-utils "${desktop_packages[@]}")
# What the checks need besides: clang's compiler, formatter, linter and fuzzer, the linter of shell
# scripts, and the library of the benchmarks, which are checked too.
check_packages=(clang-14 libclang-rt-14-dev clang-tidy-14 clang-format-14 shellcheck
  libbenchmark-dev git)

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$*"
  exit 1
}

# with_log NAME COMMAND...: runs the command silently; shows the end of what it wrote if it fails.
with_log() {
  local log=$logs/$1.log
  shift
  mkdir -p "$logs"
  "$@" >"$log" 2>&1 </dev/null && return 0
  tail -n 40 -- "$log" >&2
  say "The whole output is in $log."
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

# Package lists may be absent or older than the archive: they are fetched when they do not serve.
install_packages_refreshing() {
  install_packages "$@" || { apt update && install_packages "$@"; }
}

# need_packages NAME...: installs those of the packages that are missing.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is not Debian: taking for granted what the packages $* hold."
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

# In a terminal ninja's one line of progress, elsewhere errors and warnings only.
build_preset() {
  if [[ -t 2 ]]; then
    cmake --build --preset "$@" >&2
  else
    cmake --build --preset "$@" -- --quiet 2>&1 | sed '/^ninja: no work to do\.$/d' >&2
  fi
}

# configure PRESET: only where it has not been done since the presets last changed.
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

# A locale with a decimal comma for the tests, made beside the build: the system stays as it is.
make_test_locale() {
  local folder=$root/build/locale
  if [[ ! -e $folder/de_DE.UTF-8 ]]; then
    mkdir -p "$folder"
    with_log locale localedef -i de_DE -f UTF-8 "$folder/de_DE.UTF-8" ||
      die "The locale de_DE.UTF-8 could not be made."
  fi
  export LOCPATH=$folder
}

# run_tests PRESET [CTEST ARGUMENT...]
run_tests() {
  (cd -- "$root" && ctest --preset "$1" -j "$(nproc)" --progress "${@:2}") ||
    die "Tests of the preset $1 failed."
}
