#!/usr/bin/env bash
# kernel.sh FOLDER - unpack Debian's kernel into FOLDER: boot/ and the modules the tests need
#
# Nothing is installed. The name of the package changes with every update of its binary
# interface, so apt is asked for it. An unpacked kernel is used again; without a network
# an older one does as well.
set -euo pipefail
folder=$1
parts=$(dirname "$folder")/kernel.part

name_of_kernel() {
	apt-cache depends linux-image-amd64 2>/dev/null |
		awk '/Depends: linux-image-[0-9]/ { print $2; exit }'
}

name=$(name_of_kernel)
if [ -z "$name" ]; then
	# Lists of packages are often removed from small images.
	$([ "$(id -u)" -eq 0 ] || echo sudo) apt-get update -qq || true
	name=$(name_of_kernel)
fi
have=$(cat "$folder/package" 2>/dev/null || true)
[ -n "$have" ] && { [ -z "$name" ] || [ "$have" = "$name" ]; } && exit 0
[ -n "$name" ] || { echo "kernel.sh: apt knows no linux-image-amd64" >&2; exit 1; }

rm -rf "$parts"
mkdir -p "$parts/root"
(cd "$parts" && apt-get download -q "$name" >download.log 2>&1) || {
	cat "$parts/download.log" >&2
	[ -n "$have" ] && { echo "kernel.sh: using $have" >&2; exit 0; }
	exit 1
}
release=${name#linux-image-}
modules=lib/modules/$release
dpkg-deb --fsys-tarfile "$parts"/linux-image-*.deb |
	tar x -C "$parts/root" --wildcards "./boot/vmlinuz-*" "./$modules/modules.*" \
		"./$modules/kernel/sound/*" "./$modules/kernel/drivers/usb/*" \
		"./$modules/kernel/drivers/virtio/*" "./$modules/kernel/net/9p/*" \
		"./$modules/kernel/fs/9p/*" "./$modules/kernel/fs/netfs/*" \
		"./$modules/kernel/fs/fscache/*" "./$modules/kernel/fs/overlayfs/*" \
		"./$modules/kernel/fs/fuse/*" "./$modules/kernel/fs/configfs/*" \
		"./$modules/kernel/lib/*"
depmod -b "$parts/root" "$release" 2>/dev/null
echo "$release" >"$parts/root/release"
echo "$name" >"$parts/root/package"
rm -rf "$folder"
mv "$parts/root" "$folder"
rm -rf "$parts"
