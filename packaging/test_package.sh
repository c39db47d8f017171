#!/bin/bash
# Builds the Debian package from a build folder and checks it: test_package.sh BUILD [--system]
# Without --system nothing outside a scratch folder is touched. With it the package is also
# installed, asked for, and removed again, which needs root.
set -eu
here=$(cd -- "$(dirname -- "$0")" && pwd)
build=$(realpath -- "${1:?usage: test_package.sh BUILD [--system]}")
system=${2:-}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
chmod 755 "$scratch"
# Nothing of the person who runs the test is read or written.
export HOME=$scratch/home XDG_CONFIG_HOME=$scratch/home/.config XDG_DATA_HOME=$scratch/home/.data
export XDG_CACHE_HOME=$scratch/home/.cache XDG_RUNTIME_DIR=$scratch/runtime LC_ALL=C.UTF-8
mkdir -p "$HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"
cd "$HOME"
# A desktop's own tools would answer for xdg-mime, from the caches of that desktop.
unset XDG_CURRENT_DESKTOP DESKTOP_SESSION DISPLAY WAYLAND_DISPLAY

passed=0 failed=0
check() {  # name command...
    local name=$1
    shift
    if "$@" > "$scratch/log" 2>&1; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $name"
        sed 's/^/    /' "$scratch/log"
    fi
}

# In words of its own, so that check() can call them.
is() { [ "$1" = "$2" ] || { echo "'$1' instead of '$2'"; return 1; }; }
silent() { local said; said=$("$@" 2>&1 > /dev/null) || return 1; is "$said" ""; }
starts() { is "$(head -c ${#2} "$1")" "$2"; }
gone() { [ ! -e "$1" ] && [ ! -L "$1" ] || { echo "$1 is still there"; return 1; }; }
names() { grep -qE -- "(^|[^a-z-])$1([^a-z-]|\$)" <<< "$2" || { echo "$1 is not named"; return 1; }; }
has_line() { grep -x -- "$1" <<< "$2" || { echo "no line '$1' in:"; echo "$2"; return 1; }; }

# CPack alone would take what was built last, however old.
{ cmake --build "$build" && cpack --config "$build/CPackConfig.cmake" -B "$scratch/out"; } \
    > "$scratch/log" 2>&1 || {
    cat "$scratch/log"
    exit 1
}
package=$(ls "$scratch"/out/*.deb)
root=$scratch/root
dpkg-deb -x "$package" "$root"
share=$root/usr/share
examples=$share/doc/quillon/examples
exporter=$root/usr/bin/quillon-export
listed=$(dpkg-deb -c "$package" | awk '{ print $6 }' | cut -c 2-)

echo "== What is in the package"
for path in bin/quillon bin/quillon-export lib/quillon/libquillon-render.so \
    share/quillon/fonts/TAB.TTF share/fonts/truetype/quillon/TAB.TTF \
    share/doc/quillon/manual.html; do
    check "$path" has_line "/usr/$path" "$listed"
done
check "no test tool" gone "$root/usr/bin/play-scenario"
for name in apps/org.quillon.Quillon mimetypes/application-x-quillon-{guitar,banjo,bass}; do
    for size in 48 128 256; do
        icon=$share/icons/hicolor/${size}x$size/$name.png
        check "$name $size" is "$(file -b "$icon" | grep -o '[0-9]* x [0-9]*')" "$size x $size"
    done
    check "$name.svg" xmllint --noout "$share/icons/hicolor/scalable/$name.svg"
done

echo "== Validators"
check "desktop entry" desktop-file-validate "$share/applications/org.quillon.Quillon.desktop"
check "metainfo" appstreamcli validate --no-net "$share/metainfo/org.quillon.Quillon.metainfo.xml"
lintian=(lintian --fail-on error,warning)
[ "$(id -u)" != 0 ] || lintian+=(--allow-root)
check "lintian" "${lintian[@]}" "$package"
for page in quillon quillon-export; do
    check "man $page" silent env MANWIDTH=80 man --warnings -E UTF-8 -Tutf8 -Z -l \
        "$share/man/man1/$page.1.gz"
done
check "bash completion" is "$(bash -c "
    . /usr/share/bash-completion/bash_completion
    . $share/bash-completion/completions/quillon-export
    COMP_WORDS=(quillon-export --format pd) COMP_CWORD=2 COMP_LINE='quillon-export --format pd' COMP_POINT=26
    _quillon_export
    echo \${COMPREPLY[*]}")" pdf
check "zsh completion" zsh -n "$share/zsh/vendor-completions/_quillon-export"

echo "== One version and one list of options everywhere"
version=$(dpkg-deb -f "$package" Version)
check "changelog" is "$(dpkg-parsechangelog -l "$here/changelog" -S Version)" "$version"
check "metainfo's release" is \
    "$(xmllint --xpath 'string(//release[1]/@version)' "$here/org.quillon.Quillon.metainfo.xml")" \
    "${version%-*}"
bash=$(cat "$share/bash-completion/completions/quillon-export")
zsh=$(cat "$share/zsh/vendor-completions/_quillon-export")
man=$(man -P cat -l "$share/man/man1/quillon-export.1.gz")
for option in $("$exporter" --help | grep -oE -- '--[a-z-]+' | sort -u); do
    check "$option in bash" names "$option" "$bash"
    check "$option in zsh" names "$option" "$zsh"
    check "$option in man" names "$option" "$man"
done

echo "== The programs from where they were unpacked"
# Of the system's fonts without any Tab that may be installed: the package's own has to serve.
cat > "$scratch/fonts.conf" <<CONF
<?xml version="1.0"?>
<fontconfig>
  <include>/etc/fonts/fonts.conf</include>
  <cachedir>$scratch/fontcache</cachedir>
  <selectfont><rejectfont><pattern><patelt name="family"><string>Tab</string></patelt></pattern></rejectfont></selectfont>
</fontconfig>
CONF
made=$scratch/made
mkdir "$made"
export FONTCONFIG_FILE=$scratch/fonts.conf
check "no Tab but the package's" is "$(fc-list Tab)" ""
for format in pdf svg png mid wav ogg mp3; do
    check "$format" "$exporter" "$examples/greensleeves.gui" -o "$made/tune.$format"
done
check "PDF" starts "$made/tune.pdf" %PDF-
"$build/bin/quillon-export" "$examples/greensleeves.gui" -o "$made/built.svg"
check "the same signs in the SVG as before packaging" cmp "$made/tune.svg" "$made/built.svg"
check "SVG" xmllint --noout "$made/tune.svg"
check "MIDI" starts "$made/tune.mid" MThd
check "WAV" starts "$made/tune.wav" RIFF
check "Ogg" starts "$made/tune.ogg" OggS
status=0
QT_QPA_PLATFORM=offscreen timeout 3 "$root/usr/bin/quillon" "$examples/greensleeves.gui" \
    > "$scratch/window" 2>&1 || status=$?
check "the window stays open" is "$status" 124

echo "== Font and file types as the desktop finds them"
cat > "$scratch/fonts.conf" <<CONF
<?xml version="1.0"?>
<fontconfig><dir>$share/fonts</dir><cachedir>$scratch/fontcache</cachedir></fontconfig>
CONF
check "font" is "$(fc-list : family)" Tab
unset FONTCONFIG_FILE
check "file types" silent env XDG_DATA_DIRS="$share" update-mime-database "$share/mime"
types() {  # as xdg-mime tells them of the examples in a folder
    local tune type
    for tune in greensleeves.gui:guitar yankee_doodle.bjo:banjo drowsy_maggie.bss:bass; do
        type=$(xdg-mime query filetype "$1/${tune%:*}")
        is "$type" "application/x-quillon-${tune#*:}" || return 1
    done
}
check "types of the examples" env XDG_DATA_DIRS="$share" bash -c \
    "$(declare -f is types); types '$examples'"
for file in reel.abc:text/vnd.abc score.mxl:application/vnd.recordare.musicxml \
    score.musicxml:application/vnd.recordare.musicxml+xml; do
    echo contents > "$scratch/${file%:*}"
    check "type of ${file%:*}" is "$(XDG_DATA_DIRS=$share xdg-mime query filetype \
        "$scratch/${file%:*}")" "${file#*:}"
done

if [ "$system" = --system ]; then
    echo "== On the system"
    if dpkg-query -W -f='${db:Status-Status}' quillon 2> /dev/null | grep -qx installed; then
        echo "quillon is installed already; it would be removed by this test"
        exit 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    check "install" apt-get install -y -q --no-install-recommends "$package"
    check "font" has_line ".*/quillon/TAB.TTF: Tab:.*" "$(fc-list)"
    check "types of the examples" types "$examples"
    check "opens with" is "$(xdg-mime query default application/x-quillon-guitar)" \
        org.quillon.Quillon.desktop
    check "export" quillon-export "$examples/greensleeves.gui" -o "$made/installed.svg"
    check "the same signs in the SVG" cmp "$made/installed.svg" "$made/built.svg"
    check "remove" apt-get purge -y -q quillon
    check "font is gone" is "$(fc-list Tab)" ""
    for path in $(grep -v '/$' <<< "$listed") /usr/lib/quillon /usr/share/quillon \
        /usr/share/doc/quillon /usr/share/fonts/truetype/quillon \
        /usr/share/mime/application/x-quillon-{guitar,banjo,bass}.xml; do
        check "$path" gone "$path"
    done
fi

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
