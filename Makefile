# The customary words, for those who type them first; ./run and make build the same folder
# in the same way. The package has a folder of its own.

SHELL := /bin/bash -o pipefail

all:
	@. packaging/packages.sh && say_missing $$packages_build && build build -DVELMOR_TESTS=OFF

install: all
	cmake --install build

deb:
	@packaging/make-deb.sh

check:
	./test

# Bring the files of translations/ up to date with the sources.
words:
	packaging/words.sh

clean:
	rm -rf build build-test build-deb

.PHONY: all install deb check words clean
