# Tovarin: the commands of README.md and CONTRIBUTING.md.
BUILD := build/mingw
WINE_RUN := scripts/wine-run.sh $(BUILD)

.PHONY: all deps configure build test test-clang demo dist bench format clean

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

# The same build and suite with the second compiler (clang and lld), in build/clang.
test-clang:
	@scripts/install-deps.sh clang
	@cmake --preset clang >/dev/null
	@cmake --build --preset clang
	@scripts/wine-prefix.sh build/clang
	@ctest --preset clang -j2

demo: build
	@$(WINE_RUN) $(BUILD)/bin/TovarinDemo.exe

# The build makes the zip in $(BUILD)/dist; only this target writes dist/.
dist: build
	@mkdir -p dist
	@cp $(BUILD)/dist/Tovarin-*.zip dist/
	@ls -l dist

bench: build
	@$(WINE_RUN) $(BUILD)/bin/TovarinBench.exe

clean:
	rm -rf build dist

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')
