#!/usr/bin/env bash
# initramfs.sh KERNEL OUTPUT - the first root of the guest: mount this machine's root and go there
#
# A static busybox and the modules for 9p over virtio and for overlayfs. The guest's root
# is the host's, read only, below a file system in memory that takes all writes. The
# shared folder appears as /run/velmor and is the only thing written through.
set -euo pipefail
kernel=$1
output=$2
release=$(cat "$kernel/release")
tree=$(dirname "$output")/initramfs.part
rm -rf "$tree"
mkdir -p "$tree"/{bin,dev,proc,sys,modules,mnt/host,mnt/memory,mnt/root}
cp "$(command -v busybox)" "$tree/bin/busybox"
for tool in sh mount mkdir insmod switch_root; do
	ln -s busybox "$tree/bin/$tool"
done

# Modules in the order in which they are to be loaded, each once.
modprobe -d "$kernel" -S "$release" --show-depends -a virtio_pci 9pnet_virtio 9p overlay |
	sed -n 's/^insmod \(.*\.ko[.a-z]*\) *$/\1/p' | awk '!seen[$0]++' |
	while IFS= read -r module; do
		plain=$(basename "$module" | sed 's/\.ko.*/.ko/')
		case $module in
		*.xz) xz -dc "$module" >"$tree/modules/$plain" ;;
		*.zst) zstd -dcq "$module" >"$tree/modules/$plain" ;;
		*) cp "$module" "$tree/modules/$plain" ;;
		esac
		echo "$plain"
	done >"$tree/modules/order"

cat >"$tree/init" <<'INIT'
#!/bin/sh
mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs devtmpfs /dev
while read -r module; do
	insmod "/modules/$module"
done </modules/order
options=trans=virtio,version=9p2000.L,msize=262144
mount -t 9p -o $options,ro,cache=loose host /mnt/host || exec sh
mount -t tmpfs memory /mnt/memory
mkdir /mnt/memory/upper /mnt/memory/work
mount -t overlay -o lowerdir=/mnt/host,upperdir=/mnt/memory/upper,workdir=/mnt/memory/work \
	overlay /mnt/root || exec sh
for folder in proc sys dev; do
	mount --move /$folder /mnt/root/$folder
done
mount -t tmpfs run /mnt/root/run
mkdir -p /mnt/root/dev/shm /mnt/root/dev/pts /mnt/root/run/velmor
mount -t tmpfs shm /mnt/root/dev/shm
mount -t devpts devpts /mnt/root/dev/pts
mount -t 9p -o $options share /mnt/root/run/velmor || exec sh
exec switch_root /mnt/root /bin/bash -c '
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8
bash /run/velmor/start </dev/null
echo $? >/run/velmor/status
sync
echo o >/proc/sysrq-trigger
while :; do :; done'
INIT
chmod +x "$tree/init"
(cd "$tree" && find . | cpio -o -H newc --quiet | gzip -1) >"$output"
rm -rf "$tree"
