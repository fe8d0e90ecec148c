#!/usr/bin/env bash
# boot.sh WORK - boot WORK/kernel, show its console, and end with the status it left
#
# Software emulation: a virtual machine in which these tests run seldom has another one to
# offer. The console is kept as WORK/console.log.
set -uo pipefail
work=$1
status=$work/share/status
rm -f "$status"

# A comma in a path is written twice for qemu.
shared() {
	printf 'local,path=%s,mount_tag=%s,security_model=none,multidevs=remap%s' \
		"${1//,/,,}" "$2" "${3:-}"
}

timeout -k 5 "${LIMIT:-900}" qemu-system-x86_64 -accel tcg,thread=multi -cpu max -M q35 \
	-smp 2 -m 1536 -nographic -no-reboot -nodefaults -serial stdio \
	-kernel "$work"/kernel/boot/vmlinuz-* -initrd "$work/initramfs.gz" \
	-append "console=ttyS0 quiet panic=-1 mitigations=off" \
	-virtfs "$(shared / host ,readonly=on)" -virtfs "$(shared "$work/share" share)" \
	</dev/null 2>&1 | stdbuf -o0 tr -d '\r' | tee "$work/console.log"

[ -s "$status" ] && exit "$(cat "$status")"
echo "The virtual machine ended without a result (limit ${LIMIT:-900} s)." >&2
exit 125
