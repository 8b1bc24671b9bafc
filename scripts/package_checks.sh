# shellcheck shell=bash
# Makes the Debian package from a build, and checks it. To be sourced after common.sh.
# shellcheck disable=SC2034,SC2154  # lists for the scripts that source this; root is from common.sh

# Packages for CPack: dpkg-shlibdeps finds library dependencies, and file detects file types.
package_packages=(dpkg-dev file gzip)
# Additional packages for the checks.
package_check_packages=(lintian appstream desktop-file-utils shared-mime-info man-db)

# make_package PRESET: packages a finished build; sets the variable package to the path of the file.
make_package() {
  local folder=$root/build/package epoch
  # All times in the package are the time of the release, so that the package is reproducible.
  epoch=$(date -d "$(sed -n 's/^ -- .*>  //p;T;q' "$root/packaging/debian/changelog")" +%s) ||
    die "The date of packaging/debian/changelog cannot be read."
  rm -rf -- "$folder"
  mkdir -p -- "$folder"
  with_log package env SOURCE_DATE_EPOCH="$epoch" cpack -G DEB -B "$folder" \
    --config "$root/build/$1/CPackConfig.cmake" || die "The package could not be made."
  rm -rf -- "$folder/_CPack_Packages"
  package=$(find "$folder" -name '*.deb')
  [[ -f $package ]] || die "CPack made no package."
}

# check_tested_package: makes and checks a package of the build of the tests, because another build
# takes minutes. The package is not for use, because its programs contain the sanitizers.
check_tested_package() {
  build asan-ubsan
  make_package asan-ubsan
  check_package_files "$package"
  check_package_completion "$root/packaging/bash-completion/zorvel-cli"
  rm -f -- "$package"
}

# check_package_files FILE: checks the package with lintian, and its parts with the desktop tools.
check_package_files() {
  local content=$root/build/package/content
  with_log lintian lintian --fail-on error,warning --allow-root "$1" ||
    die "lintian found problems in $1."
  [[ $(dpkg-deb -f "$1" Depends) == *libqt6widgets6* ]] || die "$1 does not depend on its libraries."
  rm -rf -- "$content"
  dpkg-deb -x "$1" "$content"
  check_package_paths "$content"
  check_package_metadata "$content/usr/share"
  check_package_manuals "$content/usr/share/man"
  rm -rf -- "$content"
}

# check_package_paths FOLDER: checks that the important files exist, and all pictures of the help.
check_package_paths() {
  local path missing=()
  for path in bin/zorvel bin/zorvel-cli \
    share/applications/zorvel.desktop share/mime/packages/zorvel.xml \
    share/metainfo/example.zorvel.Zorvel.metainfo.xml \
    share/icons/hicolor/scalable/{apps/zorvel,mimetypes/application-x-zorvel}.svg \
    share/icons/hicolor/{16x16,24x24,32x32,48x48,64x64,128x128,256x256}/apps/zorvel.png \
    share/icons/hicolor/{16x16,48x48,256x256}/mimetypes/application-x-zorvel.png \
    share/man/man1/{zorvel,zorvel-cli}.1.gz share/bash-completion/completions/zorvel-cli \
    share/doc/zorvel/{copyright,changelog.gz,CHANGELOG.md} share/doc-base/zorvel \
    share/doc/zorvel/examples/oribatid-mites.csv \
    share/doc/zorvel/help/{index.html,tutorial.html,metrics.html,style.css}; do
    [[ -s $1/usr/$path ]] || missing+=("/usr/$path")
  done
  while read -r path; do
    [[ -s $1/usr/share/doc/zorvel/help/$path ]] || missing+=("picture $path")
  done < <(grep -hoP '<img[^>]* src="\K[^"]+' -r "$1/usr/share/doc/zorvel/help" | sort -u)
  ((${#missing[@]} == 0)) || die "Missing from the package: ${missing[*]}"
}

# check_package_metadata SHARE
check_package_metadata() {
  local types=$root/build/package/mime
  with_log desktop-entry desktop-file-validate "$1/applications/zorvel.desktop" ||
    die "The desktop entry is invalid."
  with_log metainfo appstreamcli validate --no-net "$1"/metainfo/*.metainfo.xml ||
    die "The metainfo is invalid."
  mkdir -p -- "$types"
  cp -r -- "$1/mime/packages" "$types/"
  with_log project-type update-mime-database "$types" || die "The file type of projects is invalid."
  grep -q ':\*\.zorvel$' "$types/globs2" || die "The file type of projects has no suffix."
  rm -rf -- "$types"
}

# check_package_manuals MAN: checks that man formats every page without a warning.
check_package_manuals() {
  local page
  for page in "$1"/man1/*.gz; do
    with_log manual env LC_ALL=C.UTF-8 MANROFFSEQ= MANWIDTH=80 \
      man --warnings -E UTF-8 -l -Tutf8 -Z "$page" || die "$page cannot be formatted."
    ! grep -a 'warning: ' "$logs/manual.log" >&2 || die "$page has the warnings above."
  done
}

# check_package_completion FILE: checks the completions of some command lines.
check_package_completion() {
  local typed offered
  while IFS='|' read -r typed offered; do
    [[ " $(complete_words "$1" "$typed") " == *" $offered "* ]] ||
      die "bash does not complete \"$typed\" to \"$offered\"."
  done <<'END'
zorvel-cli su|summary
zorvel-cli --vers|--version
zorvel-cli summary --cen|--census
zorvel-cli import --in|--into
zorvel-cli metrics --kind m|matrix
END
}

# complete_words FILE LINE: prints the completions of the last word of LINE in a new bash.
complete_words() {
  # shellcheck disable=SC2016  # the inner shell reads its own arguments
  bash -eu -c '
    . "$1"
    read -ra COMP_WORDS <<<"$2"
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zorvel_cli
    printf "%s" "${COMPREPLY[*]}"' - "$1" "$2"
}
