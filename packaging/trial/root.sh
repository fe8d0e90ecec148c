#!/usr/bin/env bash
# root.sh PACKAGE CACHE - make a bare Debian 12 in memory, and run inside.sh in it; as root
#
# Mounts live in a name space of their own and end with it, whatever happens. The network is
# used for Debian's mirror only, as apt of this machine is set up.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
[ $# -eq 2 ] && [ "$(id -u)" -eq 0 ] || { sed -n '2s/^# //p' "$0" >&2; exit 2; }
package=$1 cache=$2 base=$2/bookworm.tar

# The first mirror of Debian 12 that apt knows here.
mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' 'Codename: bookworm' \
	'Label: Debian' | head -n 1)
proxies=()
while read -r line; do
	proxies+=("--aptopt=${line%;}")
done < <(apt-config dump | grep -E '^Acquire::https?::Proxy')

mkdir -p "$cache/archives"
exec 9>"$cache/lock"
flock -n 9 || { echo "Waiting for another trial to end"; flock 9; }
# Its package lists fit the mirror for some days.
if [ -z "$(find "$base" -type f -mtime -7 2>/dev/null)" ]; then
	echo "Making a bare Debian 12"
	mmdebstrap --quiet --variant=apt --skip=cleanup/apt/lists "${proxies[@]}" \
		bookworm "$cache/new.tar" "deb ${mirror:-http://deb.debian.org/debian} bookworm main"
	mv "$cache/new.tar" "$base"
fi

export base package here cache
root=$(mktemp -d --tmpdir velmor-root-XXXXXX)
trap 'rmdir "$root"' EXIT
# In memory: nothing of it outlives the name space, and dpkg waits for no disk.
root=$root unshare --mount --pid --fork --kill-child bash -euc '
	mount -t tmpfs -o mode=755,size=4g velmor-root "$root"
	tar -xf "$base" -C "$root"
	cp "$package" "$root/srv/velmor.deb"
	cp "$here/inside.sh" "$root/srv"
	cp -L /etc/resolv.conf "$root/etc/resolv.conf"
	mount --bind "$cache/archives" "$root/var/cache/apt/archives"
	mount -t proc proc "$root/proc"
	mount --rbind /dev "$root/dev"
	mount --rbind -o ro /sys "$root/sys"
	exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
		chroot "$root" /bin/bash /srv/inside.sh /srv/velmor.deb'
