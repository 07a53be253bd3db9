# Entry points. `make` builds build/zepk; `make demo` runs the main job;
# `make test` builds with sanitizers and runs every test; `make bench` runs
# the benchmarks against their peers.
BUILD      ?= build
TESTBUILD  ?= build-test
JOBS       ?= $(shell nproc)

.PHONY: all deps build demo test bench clean

all: build

deps:
	@scripts/install-deps

build: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release -DZEPK_TESTS=OFF > /dev/null
	@cmake --build $(BUILD) -j $(JOBS)

demo: build
	./$(BUILD)/zepk examples/demo.lsp

test: deps
	@cmake -S . -B $(TESTBUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DZEPK_SANITIZE=ON -DZEPK_BENCH=OFF > /dev/null
	@cmake --build $(TESTBUILD) -j $(JOBS)
	cd $(TESTBUILD) && ctest --output-on-failure -j $(JOBS)

bench: build
	bench/run $(BUILD)

clean:
	rm -rf $(BUILD) $(TESTBUILD)
