# The commands a fresh machine needs: `make demo` and `make test`. Both install missing Debian
# packages first, then configure, build and run through CMake.
#
# Each build type has a folder of its own under build/, so moving between the demo, the tests and
# the sanitizer run never reconfigures or rebuilds what another one built.

JOBS ?= 2
PREFIX ?= /usr/local
RELEASE_DIR ?= build/release
TEST_DIR ?= build/test
ASAN_DIR ?= build/asan
AARCH64_DIR ?= build/aarch64
FUZZ_DIR ?= build/fuzz
FUZZ_SECONDS ?= 60
DEMO_DIR ?= demo-out

.PHONY: all deps release demo test test-plain test-asan test-aarch64 fuzz bench install clean

all: release

deps:
	./scripts/install-deps.sh

# The demo and an install need only the library and the tool, not the tests or the benchmarks.
release: deps
	cmake -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release -DVISTRANE_BUILD_TESTS=OFF
	cmake --build $(RELEASE_DIR) -j$(JOBS) --target vistrane vistrane_cli

demo: release
	$(RELEASE_DIR)/tools/vistrane/vistrane demo $(DEMO_DIR)

# Plain first, then AddressSanitizer with UndefinedBehaviorSanitizer; either failing fails.
test: test-plain test-asan

test-plain: deps
	cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(TEST_DIR) -j$(JOBS)
	ctest --test-dir $(TEST_DIR) --output-on-failure -j$(JOBS)

test-asan: deps
	cmake -S . -B $(ASAN_DIR) -DCMAKE_BUILD_TYPE=Debug -DVISTRANE_SANITIZE=ON \
	    -DVISTRANE_BUILD_BENCH=OFF
	cmake --build $(ASAN_DIR) -j$(JOBS)
	ctest --test-dir $(ASAN_DIR) --output-on-failure -j$(JOBS)

# The whole suite built for 64-bit Arm and run under qemu-user: the engine has no code that
# needs the build machine's processor.
test-aarch64: deps
	./scripts/install-aarch64-deps.sh
	cmake -S . -B $(AARCH64_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64-linux-gnu.cmake -DVISTRANE_BUILD_BENCH=OFF
	cmake --build $(AARCH64_DIR) -j$(JOBS)
	ctest --test-dir $(AARCH64_DIR) --output-on-failure -j$(JOBS)

# Every reader of untrusted bytes under libFuzzer with ASan and UBSan, FUZZ_SECONDS each.
fuzz: deps
	./scripts/install-deps.sh clang libclang-rt-14-dev
	cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	    -DVISTRANE_FUZZ=ON -DVISTRANE_BUILD_BENCH=OFF -DBUILD_SHARED_LIBS=OFF
	cmake --build $(FUZZ_DIR) -j$(JOBS) --target vistrane_fuzzers
	./scripts/run-fuzzers.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

bench: release
	cmake --build $(RELEASE_DIR) -j$(JOBS) --target vistrane_bench
	$(RELEASE_DIR)/bench/vistrane_bench

install: release
	cmake --install $(RELEASE_DIR) --prefix $(PREFIX)

clean:
	rm -rf build $(DEMO_DIR)
