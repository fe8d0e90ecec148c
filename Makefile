# The customary words, for those who type them first; ./run and make build the same folder
# in the same way.

SHELL := /bin/bash -o pipefail

all:
	@. packaging/packages.sh && say_missing $$packages_build && build build -DVELMOR_TESTS=OFF

install: all
	cmake --install build

check:
	./test

# Bring the files of translations/ up to date with the sources.
words:
	packaging/words.sh

clean:
	rm -rf build build-test

.PHONY: all install check words clean
