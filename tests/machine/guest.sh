#!/usr/bin/env bash
# guest.sh - inside the virtual machine: every part of guest.d in order
#
# A part is a script that ends with 0 when all is well. It finds the program in
# $VELMOR_BUILD, loads the modules it needs, and leaves the machine usable for the next.
here=$(dirname "$(readlink -f "$0")")
release=$(uname -r)
mkdir -p /lib/modules
ln -sfn "$VELMOR_KERNEL/lib/modules/$release" "/lib/modules/$release"
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1
up() { cut -d. -f1 /proc/uptime; }

failed=0
for part in "$here"/guest.d/$PARTS.sh; do
	name=$(basename "$part" .sh)
	begin=$(up)
	if timeout -k 5 "${PART_LIMIT:-300}" bash "$part" </dev/null; then
		echo "PASS $name ($(($(up) - begin)) s)"
	else
		echo "FAIL $name (status $?)"
		failed=$((failed + 1))
		dmesg --level=emerg,alert,crit,err | tail -15
	fi
done
[ "$failed" -eq 0 ]
