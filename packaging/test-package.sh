#!/usr/bin/env bash
# test-package.sh - build the Debian package, judge it, and try it in a bare Debian 12
#
# Debian's own judges look at the package, then trial/root.sh unpacks a bare root, and
# trial/inside.sh installs, uses and removes the package there. The root as it was made and
# what apt fetched for it are kept in ~/.cache/velmor-package for the next time.
set -euo pipefail
cd "$(dirname "$0")/.."
. packaging/packages.sh

system=$(. /etc/os-release 2>/dev/null && echo "${ID:-}-${VERSION_ID:-}-$(dpkg --print-architecture)")
[ "$system" = debian-12-amd64 ] || {
	echo "The package is tried in a bare Debian 12, so it has to be built on Debian 12 (amd64)." >&2
	exit 2
}
need $packages_build $packages_package
packaging/make-deb.sh
package=$(realpath build-deb/velmor_*.deb)

echo "Judging it"
lintian --allow-root --fail-on error,warning "$package"
appstreamcli validate --no-net packaging/velmor.metainfo.xml
desktop-file-validate packaging/velmor.desktop
for page in packaging/*.1; do
	said=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
	[ -z "$said" ] || { echo "$page: $said" >&2; exit 1; }
done

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
"${as_root[@]}" packaging/trial/root.sh "$package" "${XDG_CACHE_HOME:-$HOME/.cache}/velmor-package"
echo "The package is fit to be used."
