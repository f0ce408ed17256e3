# The two commands of the project: `make demo` and `make test`. Both install what is missing first:
# the demo only the compiler and libraries of vantora, the tests also the test tools, the Windows
# cross compiler, Wine and LibreOffice.
JOBS ?= $(shell nproc)

.PHONY: demo test bench deps demo-deps native windows release fuzzers fuzz format

deps:
	@./scripts/install-deps test

demo-deps:
	@./scripts/install-deps demo

native: deps
	@cmake -S . -B build -DVANTORA_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug >/dev/null
	@cmake --build build -j$(JOBS)

windows: deps
	@cmake -S . -B build-win -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
		-DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build build-win -j$(JOBS)

test: native windows fuzzers
	@./scripts/run-tests build build-win build-fuzz

# The libFuzzer programs, built with clang and instrumented in a folder of their own.
fuzzers: deps
	@CC=clang CXX=clang++ cmake -S . -B build-fuzz -DVANTORA_FUZZ=ON -DVANTORA_TESTS=OFF \
		-DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build build-fuzz -j$(JOBS) --target fuzzers

# Each fuzzer in turn for FUZZ_SECONDS.
FUZZ_SECONDS ?= 600
fuzz: fuzzers
	@./scripts/run-fuzzers build-fuzz $(FUZZ_SECONDS)

# The optimised vantora a planner runs: no sanitizers, no tests.
release: demo-deps
	@cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DVANTORA_TESTS=OFF >/dev/null
	@cmake --build build-release --target vantora -j$(JOBS)

demo: release
	@./scripts/demo build-release

# Speed and memory of every command and the workbook files at 1,000 and 10,000 tasks, on an
# optimised build without sanitizers. Prints the README's speed table and the targets.
bench: demo-deps
	@cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DVANTORA_TESTS=OFF >/dev/null
	@cmake --build build-bench --target command_bench -j$(JOBS)
	@build-bench/command_bench examples/sample.json

format:
	@git ls-files '*.h' '*.cpp' | xargs clang-format -i
