# qvPreScan: the DV tape pre-scan module, its resource library and the
# reference host, cross-built for Windows x86-64 and run under Wine.
#
#   make demo    the reference host scans the synthetic tape and a DV tape headless
#                (TAPE=FILE.dv: your own raw DV file instead)
#   make test    every test: the portable core natively, the rest under Wine
#   make build   build/bin/: qvPreScan.dll, qvCaptureRC.dll, qvrefhost.exe
#   make run     the reference host with a real display (TAPE=FILE.dv plays that file)
#   make shots   screenshots into docs/
#   make fuzz    the scene list and DV readers under libFuzzer (FUZZ_SECONDS, default 300)
#   make sdk     the kit for host developers: build/sdk/qvPreScan-sdk-VERSION(.zip)

BUILD   := build
WIN     := $(BUILD)/win
NATIVE  := $(BUILD)/native
BIN     := $(abspath $(BUILD)/bin)
JOBS    ?= $(shell nproc)

FUZZ_SECONDS ?= 300

.PHONY: all deps build build-win build-native test test-native test-win demo run shots fuzz bench sdk clean

all: build

deps:
	@scripts/deps.sh

$(WIN)/build.ninja: CMakeLists.txt cmake/mingw-w64.cmake
	cmake -S . -B $(WIN) -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
	      -DCMAKE_BUILD_TYPE=Release -DQV_OUTPUT_DIR=$(BIN)

$(NATIVE)/build.ninja: CMakeLists.txt
	cmake -S . -B $(NATIVE) -G Ninja -DCMAKE_BUILD_TYPE=Debug

build-win: deps $(WIN)/build.ninja
	cmake --build $(WIN) -j $(JOBS)

build-native: deps $(NATIVE)/build.ninja
	cmake --build $(NATIVE) -j $(JOBS)
	@mkdir -p $(BIN) && cp $(NATIVE)/qvpsf $(BIN)/qvpsf

build: build-win build-native

test-native: build-native
	ctest --test-dir $(NATIVE) --output-on-failure

test-win: build-win
	scripts/with-display.sh ctest --test-dir $(WIN) --output-on-failure -j 1

test: test-native test-win

demo: build
	TAPE="$(TAPE)" scripts/with-display.sh scripts/demo.sh

run: build-win
	TAPE="$(TAPE)" scripts/run-interactive.sh

shots: build-win
	scripts/with-display.sh scripts/shots.sh

# The benchmarks in full (several minutes); make test runs each once, small.
bench: build-win build-native
	scripts/bench.sh

# The host developer's kit: header, DLLs, import libraries, guide, sample.
sdk: build-win
	scripts/sdk.sh

fuzz:
	FUZZ_SECONDS=$(FUZZ_SECONDS) scripts/fuzz.sh

clean:
	rm -rf $(BUILD)
