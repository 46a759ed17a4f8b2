# Thin: the build is CMake's (see CMakePresets.json), the work is in scripts/. Each command first
# installs the Debian packages that it needs (scripts/setup.sh), as root or by sudo.
.DEFAULT_GOAL := help
.PHONY: help build demo test test-page test-recorder test-clickhouse bench check test32 format package try-package clean

help: ## Show this list
	@awk -F ':.*## ' '/^[a-z0-9-]+:.*## / { printf "  make %-15s %s\n", $$1, $$2 }' Makefile

build: ## Build the programs into build/release
	@scripts/setup.sh build
	@scripts/build.sh

demo: build ## Analyse the sample traces and show what comes out
	@scripts/demo.sh build/release

test: ## Build and run all tests
	@scripts/setup.sh build test
	@scripts/build.sh --all
	@ctest --preset release

bench: ## Build and run the benchmarks
	@scripts/setup.sh build bench
	@scripts/bench.sh

check: ## The slow checks: format, includes, the page, recordings, runs on servers, clang, sanitizers, tidy, fuzzing
	@scripts/setup.sh build test format check browser recorder clickhouse
	@scripts/check.sh

test-recorder: ## Record programs with heaptrack and hold their traces against its own figures
	@scripts/test_recorder.sh

test-clickhouse: ## Load runs into two ClickHouse servers and hold their answers against a file's
	@scripts/test_clickhouse.sh

test-page: ## Open pages of kivdb html in a browser and test them
	@scripts/test_browser.sh

test32: ## Run the tests as 32-bit x86; adds g++-multilib to the system, its libraries to build/
	@scripts/setup.sh build test test32
	@scripts/test32.sh

format: ## Format all sources
	@scripts/setup.sh format
	@scripts/format.sh

package: build ## Make the Debian package, build/release/package/kiv_VERSION_ARCHITECTURE.deb
	@scripts/setup.sh package
	@scripts/package.sh

try-package: package ## Install the Debian package here and try the documents' examples with it
	@scripts/try_package.sh --install

clean: ## Remove everything that was built
	rm -rf build
