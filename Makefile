# Thin: the build is CMake's (see CMakePresets.json), the work is in scripts/.
.DEFAULT_GOAL := help
.PHONY: help setup build test demo bench check format clean

help: ## Show this list
	@awk -F ':.*## ' '/^[a-z]+:.*## / { printf "  make %-8s %s\n", $$1, $$2 }' Makefile

setup: ## Install what building and testing needs (Debian packages; as root)
	@scripts/setup.sh

build: setup ## Build the release preset into build/release
	@cmake --preset release >/dev/null
	@cmake --build --preset release

test: build ## Build and run all tests
	@ctest --preset release

demo: build ## Analyse the sample traces and show what comes out
	@scripts/demo.sh build/release

bench: setup ## Build and run the benchmarks
	@scripts/bench.sh

check: build ## The slow checks: clang, sanitizers, clang-tidy, format, fuzzing
	@scripts/check.sh

format: ## Format all sources
	@scripts/format.sh

clean: ## Remove everything that was built
	rm -rf build
