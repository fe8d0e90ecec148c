# packages.sh - what building, testing and the virtual machine need, and how to get it
#
# Sourced by run, test, the Makefile, the package and the machine tests. The names hold on
# Debian 12 and on Ubuntu 24.04. Elsewhere CMake says what it does not find.

packages_build="g++ cmake ninja-build pkg-config qt6-base-dev qt6-multimedia-dev qt6-l10n-tools
	libasound2-dev libusb-1.0-0-dev libsndfile1-dev libfuse3-dev fuse3 fonts-dejavu-core
	fontconfig-config"
packages_test="libgtest-dev clang-format-14 libumockdev-dev umockdev libsamplerate0-dev libbenchmark-dev libsmf-dev sox"
packages_deb="dpkg-dev"
packages_package="$packages_deb mmdebstrap debian-archive-keyring lintian appstream
	desktop-file-utils man-db"

# missing PACKAGE...: those that are not installed, on one line.
missing() {
	command -v dpkg-query >/dev/null || return 0
	local package names=()
	for package in "$@"; do
		dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
			names+=("$package")
	done
	echo "${names[*]}"
}

# say_missing PACKAGE...: for who installs by hand. Fails when anything is missing.
say_missing() {
	local names
	names=$(missing "$@")
	[ -z "$names" ] && return 0
	echo "Please install these packages first:" >&2
	echo "    apt-get install $names" >&2
	return 1
}

# need PACKAGE...: install those that are missing; asks for the password where it must. What
# apt says is shown when it fails.
need() {
	local names said as_root=()
	names=$(missing "$@")
	[ -z "$names" ] && return 0
	[ "$(id -u)" -eq 0 ] || as_root=(sudo)
	echo "Installing: $names"
	said=$("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq 2>&1) ||
		echo "$said" >&2
	# shellcheck disable=SC2086
	said=$("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
		--no-install-recommends $names 2>&1) || {
		echo "$said" >&2
		echo "These packages could not be installed: $names" >&2
		return 1
	}
}

# Without a terminal a line for every tenth of the way is enough; all that is no status passes.
tenths() {
	awk 'match($0, /^\[ *[0-9]+\/[0-9]+\]/) {
			split(substr($0, 2, RLENGTH - 2), n, "/")
			tenth = int(10 * n[1] / n[2])
			if (tenth != last || n[1] == n[2]) print
			last = tenth
			next
		}
		{ print }'
}

# build FOLDER [CMAKE OPTION...]: configure and build, on every core. A folder that somebody
# configured keeps its generator and its settings.
build() {
	local folder=$1 options=()
	shift
	[ -e "$folder/CMakeCache.txt" ] || options+=(-G Ninja)
	command -v ccache >/dev/null && options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
	echo "Building in $folder"
	cmake -S . -B "$folder" "${options[@]}" "$@" >"$folder.log" 2>&1 || {
		cat "$folder.log" >&2
		return 1
	}
	if [ -t 1 ]; then
		cmake --build "$folder" --parallel "$(nproc)"
	else
		cmake --build "$folder" --parallel "$(nproc)" | tenths
	fi
}
