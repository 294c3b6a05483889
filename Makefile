# Tovarin: the commands of README.md.
BUILD := build/mingw
WINE_RUN := scripts/wine-run.sh $(BUILD)

.PHONY: all deps configure build test demo dist bench format clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake --preset mingw >/dev/null

build: configure
	@cmake --build --preset mingw

test: build
	@scripts/wine-prefix.sh $(BUILD)
	@ctest --preset mingw -j2

demo: build
	@$(WINE_RUN) $(BUILD)/bin/TovarinDemo.exe

dist: build
	@cmake --build --preset mingw --target dist
	@ls -l dist

bench: build
	@$(WINE_RUN) $(BUILD)/bin/TovarinBench.exe

clean:
	rm -rf build dist

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')
