# The commands a fresh machine needs: `make demo` and `make test`. Both install missing Debian
# packages first, then configure, build and run through CMake.

JOBS ?= 2
PREFIX ?= /usr/local
DEMO_DIR ?= demo-out

.PHONY: all deps build-release demo test test-plain test-asan bench install clean

all: build-release

deps:
	./scripts/install-deps.sh

build-release: deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
	cmake --build build -j$(JOBS)

demo: build-release
	build/tools/vistrane/vistrane demo $(DEMO_DIR)

test: test-plain test-asan

test-plain: deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build build -j$(JOBS)
	ctest --test-dir build --output-on-failure -j$(JOBS)

test-asan: deps
	cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DVISTRANE_SANITIZE=ON
	cmake --build build-asan -j$(JOBS)
	ctest --test-dir build-asan --output-on-failure -j$(JOBS)

bench: build-release
	build/bench/vistrane_bench

install: build-release
	cmake --install build --prefix $(PREFIX)

clean:
	rm -rf build build-asan $(DEMO_DIR)
