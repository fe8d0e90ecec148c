#!/usr/bin/env bash
# make-deb.sh - build the Debian package from this source, in build-deb
#
# It is made for the system that builds it: its dependencies are those of the libraries here.
set -euo pipefail
cd "$(dirname "$0")/.."
. packaging/packages.sh
say_missing $packages_build $packages_deb

# Debian's own flags, without debug information, which would be stripped; and without link
# time optimization, which takes minutes and gains nothing where a cable is waited for.
export DEB_BUILD_MAINT_OPTIONS="hardening=+all optimize=-lto" DEB_CXXFLAGS_MAINT_STRIP=-g
flags="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS) -DNDEBUG"
# The times in the package are those of the changelog, so that it can be built again.
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/deb/changelog -S Timestamp)
export SOURCE_DATE_EPOCH

build build-deb -DVELMOR_TESTS=OFF -DCMAKE_BUILD_TYPE=None -DCMAKE_INSTALL_PREFIX=/usr \
	-DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)" \
	-DCMAKE_MODULE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)"
rm -f build-deb/velmor_*.deb
(cd build-deb && cpack --config CPackConfig.cmake) >build-deb/cpack.log 2>&1 || {
	cat build-deb/cpack.log >&2
	exit 1
}
package=$(echo build-deb/velmor_*.deb)
echo "Built $package. To install it:"
echo "    sudo apt install ./$package"
