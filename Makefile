# The customary words, for those who type them first; CMake does the work.

all:
	cmake -S . -B build -DVELMOR_TESTS=OFF
	cmake --build build --parallel

install: all
	cmake --install build

check:
	./test

clean:
	rm -rf build build-test

.PHONY: all install check clean
