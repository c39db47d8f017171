#!/bin/sh
# Installs the Debian packages that are missing from the groups named: build, test.
# Prints nothing and takes no time if all are installed.
set -eu

build="build-essential ca-certificates cmake ninja-build ccache pkg-config
       qt6-base-dev qt6-svg-dev libpugixml-dev libminizip-dev zlib1g-dev
       libfluidsynth-dev libsndfile1-dev librtmidi-dev
       libjack-jackd2-dev timgm6mb-soundfont python3 python3-fonttools python3-munkres python3-defcon
       fonts-liberation fonts-dejavu-core file"
test="libgtest-dev libgmock-dev libbenchmark-dev qt6-base-private-dev clang-16 clang-tidy-22 libclang-rt-16-dev
      clang-format-16 xvfb xauth xdotool xclip openbox x11-utils python3-xlib imagemagick poppler-utils
      qpdf sox vorbis-tools mpg123 midicsv abcmidi cups-daemon cups-client librsvg2-bin ghostscript procps strace
      appstream bash-completion desktop-file-utils dpkg-dev fontconfig libfile-mimeinfo-perl
      libxml2-utils lintian man-db shared-mime-info time xdg-utils zsh"

wanted=""
for group in "$@"; do
    case $group in
    build) wanted="$wanted $build" ;;
    test) wanted="$wanted $test" ;;
    *) echo "install_packages.sh: unknown group $group" >&2; exit 2 ;;
    esac
done

installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p')
missing=""
for package in $wanted; do
    printf '%s\n' "$installed" | grep -qx "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

command -v apt-get >/dev/null || {
    echo "This is no Debian. Install what these Debian packages hold, then build by hand:$missing" >&2
    exit 1
}
as_root=""
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || {
        echo "There is no sudo here. Install these packages as root, then try again:$missing" >&2
        exit 1
    }
    as_root=sudo
fi
echo "Installing$missing, and what they need. This may take some minutes."
$as_root apt-get update -qq
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
