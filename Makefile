# The commands a fresh machine needs: `make demo` and `make test`. Both install missing Debian
# packages first, then configure, build and run through CMake.

JOBS ?= 2
PREFIX ?= /usr/local
BUILD_DIR ?= build
ASAN_BUILD_DIR ?= build-asan
DEMO_DIR ?= demo-out

.PHONY: all deps release demo test test-plain test-asan bench install clean

all: release

deps:
	./scripts/install-deps.sh

release: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD_DIR) -j$(JOBS)

demo: release
	$(BUILD_DIR)/tools/vistrane/vistrane demo $(DEMO_DIR)

# Plain first, then AddressSanitizer with UndefinedBehaviorSanitizer; either failing fails.
test: test-plain test-asan

test-plain: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD_DIR) -j$(JOBS)
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

test-asan: deps
	cmake -S . -B $(ASAN_BUILD_DIR) -DCMAKE_BUILD_TYPE=Debug -DVISTRANE_SANITIZE=ON
	cmake --build $(ASAN_BUILD_DIR) -j$(JOBS)
	ctest --test-dir $(ASAN_BUILD_DIR) --output-on-failure -j$(JOBS)

bench: release
	$(BUILD_DIR)/bench/vistrane_bench

install: release
	cmake --install $(BUILD_DIR) --prefix $(PREFIX)

clean:
	rm -rf $(BUILD_DIR) $(ASAN_BUILD_DIR) $(DEMO_DIR)
