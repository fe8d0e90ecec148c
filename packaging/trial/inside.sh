#!/usr/bin/env bash
# inside.sh PACKAGE - install the package in this bare system, use it as a plain user, remove it
#
# Run by root.sh in a root that is thrown away. Everything that is checked says so in a line.
set -euo pipefail
package=$1
scratch=$(mktemp -d)
chmod 755 "$scratch"
export DEBIAN_FRONTEND=noninteractive
fail() { echo "FAILED: $*" >&2; exit 1; }

# What a command says is shown when it fails.
quietly() {
	"$@" >"$scratch/said" 2>&1 </dev/null || { cat "$scratch/said" >&2; fail "$*"; }
}

fetched() {
	apt-get "$@" >"$scratch/said" 2>&1 </dev/null && return
	quietly apt-get update # the lists have grown old
	quietly apt-get "$@"
}

# Everything in the system, with sizes where they do not follow from the list of packages.
everything() {
	find / -xdev \( -path /home -o -path /tmp -o -path /var/log -o -path /var/cache/apt \) -prune \
		-o -printf '%p %y %m %U %G %l\n'
	find /etc /usr /opt /var/spool -xdev -type f -printf '%p has %s bytes\n'
}

# A program that ends up as the process that was started, so that it can be told to end.
user=(setpriv --reuid=musician --regid=musician --init-groups env -i HOME=/home/musician
	USER=musician LC_ALL=C.UTF-8 PATH=/usr/local/bin:/usr/bin:/bin
	XDG_RUNTIME_DIR="$scratch/runtime" QT_QPA_PLATFORM=offscreen sh -c 'cd && exec "$@"' sh)

# Waits for a file to hold something that matches.
await() {
	for _ in $(seq 200); do
		grep -qs -e "$2" "$1" && return
		sleep 0.1
	done
	cat "$scratch/said" >&2
	fail "$3"
}

# ---- The system before ----------------------------------------------------------------------------

# Nothing that is installed here may start a service.
printf '#!/bin/sh\nexit 101\n' >/usr/sbin/policy-rc.d
chmod 755 /usr/sbin/policy-rc.d
echo "Fetching what the package depends on"
fetched satisfy -y --no-install-recommends "$(dpkg-deb -f "$package" Depends)"
# Who judges rules and services, and what the drive of the journey is mounted with.
fetched install -y --no-install-recommends udev systemd fuse3
useradd --create-home musician
install -d -m 700 -o musician "$scratch/runtime"
# A kernel's rules cannot be had here; what the package asks of udev is written down.
mkdir -p /run/udev
printf '#!/bin/sh\necho "$*" >>%s/udevadm.said\n' "$scratch" >/usr/local/bin/udevadm
chmod 755 /usr/local/bin/udevadm
everything | sort >"$scratch/before"

# ---- Installing -----------------------------------------------------------------------------------

echo "Installing"
quietly apt-get install -y --no-install-recommends -o DPkg::Path="/usr/local/bin:$PATH" "$package"
grep -q '^1 newly installed\|, 1 newly installed' "$scratch/said" || { cat "$scratch/said"; fail "apt wants more"; }
everything | sort >"$scratch/installed"
asked=$(grep -s '^trigger .*--attr-match=idVendor=09e8' "$scratch/udevadm.said") ||
	fail "samplers that are plugged in keep their old rights"
# shellcheck disable=SC2086
quietly udevadm $asked --dry-run
version=$(dpkg-query -W -f '${Version}' velmor)
programs=$(dpkg -L velmor | sed -n 's|^/usr/bin/||p')
echo "  velmor $version: " $programs

# Every option that a program tells of is in its manual, and its version is the package's.
for program in $programs; do
	[ "$("${user[@]}" "$program" --version)" = "$program $version" ] || fail "$program --version"
	page=/usr/share/man/man1/$program.1.gz
	for option in $("${user[@]}" "$program" --help | grep -o -e '--[a-z][a-z-]*' | sort -u); do
		zcat "$page" | sed 's/\\//g' | grep -q -e "$option" || fail "$page lacks $option"
	done
	grep -q "<binary>$program<" /usr/share/metainfo/velmor.metainfo.xml || fail "metainfo lacks $program"
done
echo "  their manuals name all of their options"

# What plays samples is a module that no program is linked to, and finds its libraries here.
module=$(dpkg -L velmor | grep '/velmor/velmor-audio\.so$') || fail "nothing plays samples"
ldd "$module" | grep -q 'libQt6Multimedia\.so' || fail "$module plays nothing"
! ldd "$module" | grep 'not found' || fail "$module lacks libraries"

# What the desktop starts and shows is there.
entry=/usr/share/applications/velmor.desktop
for program in $(sed -n 's/^Exec=\([^ ]*\).*/\1/p' $entry); do
	"${user[@]}" sh -c "command -v $program" >/dev/null || fail "$entry starts $program"
done
icon=$(sed -n 's/^Icon=//p' $entry)
for size in 16x16 32x32 48x48 64x64 128x128 scalable; do
	ls /usr/share/icons/hicolor/$size/apps/"$icon".* >/dev/null || fail "no icon of $size"
done
quietly "${user[@]}" systemd-analyze --user --man=no verify /usr/lib/systemd/user/velmorfs.service
[ ! -s "$scratch/said" ] || { cat "$scratch/said"; fail "the service of velmorfs"; }
cd /usr/share/doc/velmor
for page in README.md docs/*.md; do
	for link in $(grep -o '](\([^)#:]*\)' $page | sed 's/^](//'); do
		[ -e "$(dirname "$page")/$link" ] || fail "$page links to $link"
	done
done
cd /
echo "  the desktop's entry, the service and the documents find what they name"

# ---- Using ----------------------------------------------------------------------------------------

echo "Making the journey as a plain user"
"${user[@]}" velmor-demo --journey --out journey >"$scratch/journey" 2>&1 ||
	{ cat "$scratch/journey" >&2; fail "the journey"; }
tail -n 1 "$scratch/journey" | sed 's/^/  /'
grep 'left out:' "$scratch/journey" || true

# The program itself, on a system without a port: it opens, and ends when it is told to.
"${user[@]}" velmor --from-menu >"$scratch/said" 2>&1 &
await /home/musician/.local/share/VELMOR/velmor.log . "velmor does not start"
kill $!
wait $! || { cat "$scratch/said" >&2; fail "velmor does not end well: $?"; }
echo "  velmor opens and ends"

"${user[@]}" velmor-virtual --tcp 0 >"$scratch/said" 2>&1 &
await "$scratch/said" '^listening on' "velmor-virtual does not listen"
kill $!
wait $! || fail "velmor-virtual does not end well: $?"
echo "  velmor-virtual listens and ends"

# The companion: what it lists, a picture, and what it answers to a word that it does not know.
companion() {
	local status=0
	"${user[@]}" velmorctl --demo "$@" >"$scratch/companion" 2>"$scratch/said" || status=$?
	[ $status -eq "${expected:-0}" ] || { cat "$scratch/said" >&2; fail "velmorctl --demo $*: $status"; }
}
if [ -x /usr/bin/velmorctl ]; then
	companion samplers
	grep -q '^Demo S3000' "$scratch/companion" || fail "velmorctl lists no Demo S3000"
	companion ls
	[ -s "$scratch/companion" ] || fail "velmorctl lists no samples"
	companion --json program ls
	grep -q '^{' "$scratch/companion" || fail "velmorctl lists no programs"
	companion --sampler 'Demo Z8' panel --png screen.png
	[ -s /home/musician/screen.png ] || fail "velmorctl draws no picture"
	expected=2 companion nonsense
	"${user[@]}" velmorctl --completion |
		cmp - /usr/share/bash-completion/completions/velmorctl || fail "its completion is another"
	echo "  velmorctl lists, draws and refuses"
fi

# ---- Removing -------------------------------------------------------------------------------------

echo "Removing"
quietly apt-get remove -y velmor
everything | sort >"$scratch/after"
if ! diff "$scratch/before" "$scratch/after" >"$scratch/left"; then
	cat "$scratch/left"
	fail "removing it leaves these behind"
fi
! dpkg-query -W velmor >/dev/null 2>&1 || fail "dpkg still knows it"
cmp -s "$scratch/before" "$scratch/installed" && fail "nothing was installed at all"
echo "  nothing is left of $(comm -13 "$scratch/before" "$scratch/installed" | grep -vc ' bytes$') files and folders"
