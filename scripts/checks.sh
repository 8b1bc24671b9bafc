# shellcheck shell=bash
# The checks of .ci/run other than the tests, one function each. To be sourced after common.sh. They
# run in the root folder of the tree and return non-zero if they find a problem.
# shellcheck disable=SC2154  # root and logs come from common.sh

fuzz_seconds=${ZORVEL_FUZZ_SECONDS:-8}

# files PATTERN...: our source files that match one of the patterns.
files() {
  local pattern tests=()
  for pattern in "$@"; do tests+=(-o -name "$pattern"); done
  find src tests bench fuzz scripts tools -type f \( "${tests[@]:1}" \) | sort
}

check_format() {
  files '*.cpp' '*.h' | xargs clang-format-14 --dry-run -Werror || return 1
  shellcheck -x -P SCRIPTDIR run test .ci/run scripts/*.sh \
    scripts/{make_help_pictures,package,check_package,tutorial} packaging/icons/render || return 1
  check_white_space && check_sizes
}

# A file that is too large for the repository got there by mistake.
check_sizes() {
  local large
  large=$(git -c safe.directory="$root" ls-files -z | xargs -0 stat -c '%s %n' | awk '$1 > 1000000')
  [[ -z $large ]] || { say "Larger than 1 MB: $large"; return 1; }
}

# Lines must not end with white space or a CR, except in test data.
check_white_space() {
  local status=0
  git -c safe.directory="$root" grep -InE $'[ \t\r]+$' -- \
    ':!tests/data' ':!fuzz/corpus' ':!examples' >&2 || status=$?
  ((status != 0)) || say "The lines above end with white space."
  ((status == 1))
}

# Installs the programs into another folder and runs them there. Uses the build of the tests, because
# another build takes minutes.
check_install() {
  build asan-ubsan || return 1
  local prefix=$root/build/stage
  rm -rf -- "$prefix"
  with_log install cmake --install build/asan-ubsan --prefix "$prefix" || return 1
  local example=$prefix/share/doc/zorvel/examples/oribatid-mites.csv
  "$prefix/bin/zorvel-cli" metrics "$example" >"$logs/metrics.txt" || return 1
  [[ -s $logs/metrics.txt ]] || { say "The metrics table of $example is empty."; return 1; }
  QT_QPA_PLATFORM=offscreen "$prefix/bin/zorvel" --version
}

# clang-tidy parses the sources like clang, so the generated headers must exist. It spends most of its
# time on the headers of Qt, GoogleTest and the standard library. The files of a unity build share this
# time; for clang-tidy they are headers of the generated file that includes them. The path-sensitive
# checks use the shallow mode, because the deep mode takes five times as long.
check_clang_tidy() {
  configure lint
  local generated word extra=()
  mapfile -t generated < <(ninja -C build/lint -t targets all |
    sed -n 's/^\([A-Za-z0-9_-]*_autogen\): phony$/\1/p')
  ((${#generated[@]} == 0)) || build lint --target "${generated[@]}" || return 1
  for word in -Xclang -analyzer-config -Xclang mode=shallow -Xclang -analyzer-opt-analyze-headers; do
    extra+=("-extra-arg=$word")
  done
  cp -- tests/.clang-tidy build/lint/tests/ # clang-tidy looks for it beside the generated files
  with_log clang-tidy run-clang-tidy-14 -quiet -p build/lint -j "$(nproc)" "${extra[@]}" \
    -header-filter="^$root/(src|tests|bench|fuzz|build/[^/]+/include)/" \
    "^$root/(src|tests|bench|scripts)/" "^$root/build/lint/.*/Unity/" && return 0
  grep -hE '(error|warning):' "$logs/clang-tidy.log" | sort -u >&2
  return 1
}

# Builds only the tests with the label "thread". The thread sanitizer of g++ 12 needs an address space
# layout that newer kernels provide only without randomisation.
check_threads() {
  local steady=()
  ! setarch -R true 2>/dev/null || steady=(setarch -R)
  build tsan --target thread_tests && "${steady[@]}" ctest --preset tsan
}

# Runs each target on its corpus, then for a short time on inputs that the fuzzer generates. As many
# targets as there are processors run at a time.
check_fuzz() {
  local targets=(fuzz/fuzz_*.cpp)
  targets=("${targets[@]#fuzz/}")
  build fuzz --target "${targets[@]%.cpp}" || return 1
  export -f fuzz_one
  export fuzz_seconds logs
  mkdir -p -- "$logs"
  find build/fuzz/bin -name 'fuzz_*' -type f -executable | sort |
    xargs -P "$(nproc)" -I{} bash -c 'fuzz_one {}'
}

fuzz_one() {
  local name corpus found log
  name=$(basename -- "$1")
  corpus=fuzz/corpus/${name#fuzz_}
  found=build/fuzz/found/$name
  log=$logs/$name.log
  mkdir -p -- "$found"
  # New inputs are written to the first folder; the corpus in the tree is not changed.
  "$1" -max_total_time="$fuzz_seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$found/" "$found" "$corpus" >"$log" 2>&1 && {
    printf '%s: %s runs\n' "$name" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" >&2
    return 0
  }
  tail -n 40 -- "$log" >&2
  return 255
}
