# The two commands of the README:
#   make run    installs what is missing, builds, starts the studio
#   make test   installs what is missing, builds, runs every test twice:
#               a normal build, and an ASan+UBSan build with libFuzzer
#               targets (clang)
BUILD      ?= build
SAN_BUILD  ?= build-asan
JOBS       ?= $(shell nproc)
CTEST_ARGS ?= --output-on-failure -j $(JOBS)

.PHONY: run test deps build build-asan test-main test-asan bench clean

run: build
	./$(BUILD)/app/quillaron $(ARGS)

test: test-main test-asan

deps:
	@scripts/install-deps

build: deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j $(JOBS)

build-asan: deps
	CC=clang CXX=clang++ cmake -S . -B $(SAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug \
	  -DQDS_SANITIZE=ON -DQDS_FUZZ=ON
	cmake --build $(SAN_BUILD) -j $(JOBS)

test-main: build
	cd $(BUILD) && ctest $(CTEST_ARGS)

test-asan: build-asan
	cd $(SAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest $(CTEST_ARGS)

# Benchmarks are for the record and for the figures of a change; not part of
# the test command.
bench: build
	for b in $(BUILD)/bench/*_bench; do $$b --benchmark_min_time=0.5; done
	bench/startup_bench.sh $(BUILD)
	bench/first_frame_bench.sh $(BUILD)
	bench/export_bench.sh $(BUILD)

clean:
	rm -rf $(BUILD) $(SAN_BUILD)
