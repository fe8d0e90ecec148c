# packages.sh - what building, testing and the virtual machine need, and how to get it
#
# Sourced by run, test and the machine tests. The names hold on Debian 12 and on
# Ubuntu 24.04.

packages_build="g++ cmake ninja-build pkg-config qt6-base-dev libasound2-dev libusb-1.0-0-dev
	fonts-dejavu-core fontconfig-config"
packages_test="libgtest-dev clang-format-14 libumockdev-dev umockdev libsamplerate0-dev libbenchmark-dev sox"

# need PACKAGE...: install those that are missing; asks for the password where it must.
need() {
	local missing=()
	for package in "$@"; do
		dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
			missing+=("$package")
	done
	[ ${#missing[@]} -eq 0 ] && return 0
	if ! command -v apt-get >/dev/null; then
		echo "Please install what corresponds to these Debian packages: ${missing[*]}" >&2
		return 1
	fi
	local as_root=()
	[ "$(id -u)" -eq 0 ] || as_root=(sudo)
	echo "Installing: ${missing[*]}"
	"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
	"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
		--no-install-recommends "${missing[@]}" >/dev/null
}

# build FOLDER [CMAKE OPTION...]: configure and build, on every core.
build() {
	local folder=$1
	shift
	local launcher=()
	command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
	cmake -S . -B "$folder" -G Ninja "${launcher[@]}" "$@" >"$folder.log" 2>&1 || {
		cat "$folder.log" >&2
		return 1
	}
	ninja -C "$folder" --quiet
}
