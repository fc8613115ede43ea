# The ways in. Each target sets up what it needs: packages that are missing, the build tree.
.PHONY: demo test bench check check-all check-forms install clean

PREFIX ?= /usr/local
JOBS := $(shell nproc)

# Builds the tool and shows the main job on real input.
demo:
	scripts/install-packages
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target orlf
	examples/demo.sh build/release/tools/orlf/orlf

# Builds everything and runs all tests.
test:
	scripts/install-packages
	cmake --preset dev
	cmake --build --preset dev --parallel $(JOBS)
	ctest --preset dev --parallel $(JOBS)

# Runs all benchmarks, each beside its peers, and prints their tables.
bench:
	scripts/install-packages bench
	cmake --preset release -D ORLF_BUILD_BENCHMARKS=ON
	cmake --build --preset release --parallel $(JOBS)
	scripts/bench

# Format, includes, pages, headers that stand alone, clang-tidy over what changed and a tenth of the rest.
check: check-forms
	scripts/check-tidy

# The same with clang-tidy over everything; writes its record anew.
check-all: check-forms
	scripts/check-tidy --all

check-forms:
	scripts/install-packages checks
	scripts/check-format
	scripts/check_includes.py
	scripts/check_names.py
	scripts/check_docs.py
	cmake --preset dev
	scripts/check-headers

# Installs the library, its headers and the tool under PREFIX.
install:
	scripts/install-packages
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target ORLFoundation ORLFoundation_static orlf
	cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build
