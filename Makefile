# The goals that people type, over the presets of CMakePresets.json and the programs in scripts/. Each first installs
# what it needs on Debian and its relatives.

INSTALL_DEPENDENCIES ?= scripts/install-dependencies
CMAKE_FLAGS ?=
FUZZ_SECONDS ?= 60

MAKEFLAGS += --no-print-directory
.DEFAULT_GOAL := help
.NOTPARALLEL:
.PHONY: help run demo install uninstall package test soak bench fuzz tsan valgrind coverage screenshots format check clean

help: ## show this list
	@echo "make GOAL, where GOAL is one of"
	@awk -F ': ## ' '/^[a-z]+: ## / { printf "  %-13s%s\n", $$1, $$2 }' $(MAKEFILE_LIST)
	@echo "CMAKE_FLAGS=... reaches CMake; INSTALL_DEPENDENCIES=: installs nothing."

run: ## build velisk and its relay, and start both: figures from public nodes
	@$(INSTALL_DEPENDENCIES) run
	cmake --preset release $(CMAKE_FLAGS)
	cmake --build --preset release --target velisk velisk-relay
	@scripts/run

demo: ## the same against a simulated relay: no network needed, your settings untouched
	@$(INSTALL_DEPENDENCIES) demo
	cmake --preset demo $(CMAKE_FLAGS)
	cmake --build --preset demo --target velisk-demo velisk-stand-in
	@scripts/demo

install: ## install velisk and its relay for you alone, below ~/.local; no root needed
	@scripts/install --check
	@$(INSTALL_DEPENDENCIES) install
	cmake --preset release $(CMAKE_FLAGS)
	cmake --build --preset release
	@scripts/install

uninstall: ## remove what "make install" installed; your settings stay
	@scripts/uninstall

package: ## make a package for Debian 12 and an archive of the program alone, in build/package
	@$(INSTALL_DEPENDENCIES) package
	cmake --preset release $(CMAKE_FLAGS)
	cmake --build --preset release
	@scripts/package

test: ## everything that must pass: layout, layers, build, tests
	@$(INSTALL_DEPENDENCIES) test
	@scripts/check

soak: ## the tests that have long rounds, with these (an hour or so)
	@$(INSTALL_DEPENDENCIES) test
	@scripts/check build
	@ctest --preset soak

bench: ## the benchmarks
	@$(INSTALL_DEPENDENCIES) bench
	cmake --preset bench $(CMAKE_FLAGS)
	cmake --build --preset bench
	@scripts/bench

fuzz: ## the fuzz targets, each for FUZZ_SECONDS (60)
	@$(INSTALL_DEPENDENCIES) fuzz
	cmake --preset fuzz $(CMAKE_FLAGS)
	cmake --build --preset fuzz
	@scripts/fuzz $(FUZZ_SECONDS)

screenshots: ## pictures of every state in one page, and the README's
	@$(INSTALL_DEPENDENCIES) screenshots
	cmake --preset demo $(CMAKE_FLAGS)
	cmake --build --preset demo --target galleries velisk-demo velisk-stand-in
	@scripts/screenshots

tsan: ## the tests under ThreadSanitizer
	@$(INSTALL_DEPENDENCIES) test
	cmake --preset tsan $(CMAKE_FLAGS)
	cmake --build --preset tsan
	@ctest --preset tsan

valgrind: ## the tests without windows, under valgrind
	@$(INSTALL_DEPENDENCIES) valgrind
	cmake --preset valgrind $(CMAKE_FLAGS)
	cmake --build --preset valgrind
	@ctest --preset valgrind

coverage: ## which lines the tests run, by folder
	@$(INSTALL_DEPENDENCIES) coverage
	cmake --preset coverage $(CMAKE_FLAGS)
	cmake --build --preset coverage
	@find build/coverage -name '*.gcda' -delete
	@ctest --preset coverage
	@scripts/coverage

format: ## lay out all C++ files
	@$(INSTALL_DEPENDENCIES) format
	@scripts/check-format --fix

check: ## the same as test, with what is installed
	@scripts/check

clean: ## remove all that was built
	rm -rf build
