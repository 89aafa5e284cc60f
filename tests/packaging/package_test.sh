#!/usr/bin/env bash
# The installation as a desktop sees it: the entry, the AppStream description and the keyset file
# type validate, an installation into a staging folder holds every file, and the Debian package
# lists them with its dependencies. Installs nothing on the machine.
set -euo pipefail
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

desktop-file-validate "$source_dir/resources/desktop/corvane.desktop"
appstreamcli validate --no-net "$build_dir/resources/com.tavrik.Corvane.metainfo.xml"

# The keyset type: the MIME database accepts the file and knows the pattern and the icon.
mkdir -p "$work/mime/packages"
cp "$source_dir/resources/desktop/corvane-keyset.xml" "$work/mime/packages/"
update-mime-database "$work/mime" 2>/dev/null
grep -q 'application/x-corvane-keyset:\*\.cvks' "$work/mime/globs" || fail "no *.CvKs glob"
grep -q 'application/x-corvane-keyset:application-x-corvane-keyset' "$work/mime/icons" ||
    fail "no keyset icon"

DESTDIR="$work/stage" cmake --install "$build_dir" --prefix /usr >/dev/null
expected=(
    usr/bin/corvane
    usr/bin/corvane-service-sim
    usr/bin/corvane-keyset
    usr/share/applications/corvane.desktop
    usr/share/mime/packages/corvane-keyset.xml
    usr/share/metainfo/com.tavrik.Corvane.metainfo.xml
    usr/share/icons/hicolor/scalable/apps/corvane.svg
    usr/share/icons/hicolor/48x48/apps/corvane.png
    usr/share/icons/hicolor/256x256/apps/corvane.png
    usr/share/icons/hicolor/scalable/mimetypes/application-x-corvane-keyset.svg
    usr/share/icons/hicolor/48x48/mimetypes/application-x-corvane-keyset.png
    usr/share/corvane/Contents/Helpers/CorvaneEthernetMIDIDriver.plugin/Info.plist
    "usr/share/corvane/Contents/Helpers/Corvane uninstaller.app/corvane-uninstall"
    usr/share/corvane/Contents/Resources/Helpers/Tavrik/TVK_Built_In_Commands.xml
    usr/share/corvane/Contents/Resources/Helpers/Tavrik/com.tavrik.CorvaneRS.background.app/corvane-service
    usr/share/corvane/Contents/Library/LoginItems/Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher.app/corvane-launcher
)
for file in "${expected[@]}"; do
    [ -e "$work/stage/$file" ] || fail "the installation lacks $file"
done
# The installed bundle points at the installed programs, not at the build.
grep -q '"/usr/bin/corvane-service-sim"' \
    "$work/stage/usr/share/corvane/Contents/Resources/Helpers/Tavrik/com.tavrik.CorvaneRS.background.app/corvane-service" ||
    fail "the service bundle does not start /usr/bin/corvane-service-sim"
[ -x "$work/stage/usr/share/corvane/Contents/Library/LoginItems/Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher.app/corvane-launcher" ] ||
    fail "the launcher is not executable"

(cd "$work" && cpack -G DEB --config "$build_dir/CPackConfig.cmake" -B "$work/deb" >/dev/null)
deb=$(ls "$work"/deb/*.deb)
listing=$(dpkg-deb -c "$deb")
for file in "${expected[@]}"; do
    grep -qF "./$file" <<<"$listing" || fail "the package lacks $file"
done
depends=$(dpkg-deb -f "$deb" Depends)
for dependency in libqt6widgets6 libxcb1 libxcb-res0 procps; do
    grep -q "$dependency" <<<"$depends" || fail "the package does not depend on $dependency: $depends"
done
echo "package $(basename "$deb"): $(wc -l <<<"$listing") entries; Depends: $depends"
