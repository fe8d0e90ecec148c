# Real USB: two gadgets on the kernel's loop of host and device, each a virtual sampler
# that a program of its own serves through FunctionFS, at full speed.
set -e
modprobe dummy_hcd num=2 is_high_speed=0
modprobe libcomposite
modprobe usb_f_fs
mountpoint -q /sys/kernel/config || mount -t configfs config /sys/kernel/config

# gadget NAME PRODUCT
gadget() {
	local tree=/sys/kernel/config/usb_gadget/$1
	mkdir "$tree"
	echo 0x09e8 >"$tree/idVendor"
	echo "$2" >"$tree/idProduct"
	mkdir "$tree/strings/0x409" "$tree/configs/c.1" "$tree/functions/ffs.$1"
	echo "AKAI $1" >"$tree/strings/0x409/product"
	echo full-speed >"$tree/max_speed"
	ln -s "$tree/functions/ffs.$1" "$tree/configs/c.1"
	mkdir -p "/run/gadget/$1"
	mount -t functionfs "$1" "/run/gadget/$1"
	# The log is a file: a pipe would stay open for as long as the device is served.
	"$VELMOR_BUILD/tests/machine/machine_usb_device" "$1" "/run/gadget/$1" \
		>"/run/gadget/$1.log" 2>&1 &
}

# plug NAME PLACE, once the device is served
plug() {
	for _ in $(seq 600); do
		grep -q ready "/run/gadget/$1.log" && break
		sleep 0.1
	done
	echo "dummy_udc.$2" >"/sys/kernel/config/usb_gadget/$1/UDC"
}

gadget s5000 0x005e
gadget z8 0x005f
plug s5000 0
plug z8 1
for _ in $(seq 100); do
	[ "$(cat /sys/bus/usb/devices/*/idVendor | grep -c 09e8)" -eq 2 ] && break
	sleep 0.1
done
"$VELMOR_BUILD/tests/machine/machine_usb" --gtest_brief=1 --gtest_color=no
