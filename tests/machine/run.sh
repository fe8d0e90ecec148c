#!/usr/bin/env bash
# run.sh BUILD_DIR - try the program on the kernel's own ALSA and USB, in a virtual machine
#
# Boots Debian's kernel once under software emulation, on this machine's own root file
# system (read only, with a layer in memory above it), so that what was just built runs
# as it is. Inside, guest.sh runs every part of guest.d in order. The result is the
# result of the parts; a guest that hangs or panics gives 125.
#
#   LIMIT=900 run.sh build-test          seconds for the whole machine
#   PARTS='10-*' run.sh build-test       some parts only
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
source=$(dirname "$(dirname "$here")")
[ $# -eq 1 ] || { sed -n '2,10s/^# \{0,1\}//p' "$0" >&2; exit 2; }
build=$(readlink -f "$1")
[ -d "$build/tests/machine" ] || { echo "run.sh: nothing is built in $1" >&2; exit 2; }

[ "$(dpkg --print-architecture 2>/dev/null)" = amd64 ] ||
	{ echo "run.sh: the virtual machine needs Debian on amd64" >&2; exit 2; }
. "$source/packaging/packages.sh"
need qemu-system-x86 seabios cpio kmod busybox-static alsa-utils xz-utils zstd

work=$build/machine
mkdir -p "$work/share"
"$here/kernel.sh" "$work/kernel"
"$here/initramfs.sh" "$work/kernel" "$work/initramfs.gz"

# What process 1 of the guest runs; the paths may hold anything.
{
	printf 'export VELMOR_SOURCE=%q VELMOR_BUILD=%q\n' "$source" "$build"
	printf 'export VELMOR_KERNEL=%q PARTS=%q\n' "$work/kernel" "${PARTS:-*}"
	printf '%q\n' "$here/guest.sh"
} >"$work/share/start"
exec "$here/boot.sh" "$work"
