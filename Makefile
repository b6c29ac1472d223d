# The two commands are `make run` and `make test`; the rest are their steps.
BUILD      ?= build
SHELL      := /bin/bash
# Say only what matters: no directory changes of the nested makes, no CMake step lines for work
# that was already done.
MAKEFLAGS  += --no-print-directory
QUIET_STEPS = grep --line-buffered -vE '^(\[ *[0-9]+%\] (Built target|Automatic (MOC|RCC|UIC) for)|-- )'
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
PACKAGES   := cmake g++ make qt6-base-dev libqt6sql6-sqlite libqt6sql6-odbc unixodbc unixodbc-dev \
              tdsodbc libsqlite3-dev fonts-noto-cjk xvfb xauth dpkg-dev file librsvg2-bin
CONFIG_DIR  = $${XDG_CONFIG_HOME:-$$HOME/.config}
DEMO_DB     = $${XDG_DATA_HOME:-$$HOME/.local/share}/qivo/demo.db

.PHONY: deps build run test bench screenshots check-sanitize package check-package clean

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -z "$$missing" ]; then exit 0; fi; \
	if [ "$$(id -u)" -ne 0 ]; then \
	  echo "Missing packages:$$missing"; \
	  echo "Install them with: sudo apt-get update && sudo apt-get install -y$$missing"; exit 1; \
	fi; \
	echo "Installing:$$missing"; \
	apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing >/dev/null

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BUILD) -j $(JOBS) | $(QUIET_STEPS); exit $${PIPESTATUS[0]}

run: build
	@if ! grep -qsiE '^[[:space:]]*svr[[:space:]]*=.' "$(CONFIG_DIR)/Merivane/Merivane.ini"; then \
	  mkdir -p "$$(dirname "$(DEMO_DB)")" && $(BUILD)/qivo-demo-db --out "$(DEMO_DB)"; \
	fi
	@if [ -z "$$DISPLAY$$WAYLAND_DISPLAY" ] && [ -z "$$QT_QPA_PLATFORM" ]; then \
	  echo "No display: run this on a desktop, or under xvfb-run (xvfb-run make run)."; exit 1; \
	fi
	@$(BUILD)/qivo-review

test: build
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  cd $(BUILD) && XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	@cmake --build $(BUILD) --target qivo-bench -j $(JOBS) | $(QUIET_STEPS); exit $${PIPESTATUS[0]}
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES='default.warning=false' \
	  $(BUILD)/qivo-bench

screenshots: build
	@cmake --build $(BUILD) --target qivo-screenshots -j $(JOBS) | $(QUIET_STEPS); exit $${PIPESTATUS[0]}
	@QT_QPA_PLATFORM=offscreen $(BUILD)/qivo-screenshots docs/screenshots

check-sanitize: deps
	@cmake -S . -B $(BUILD)-sanitize -DCMAKE_BUILD_TYPE=Debug -DQIVO_SANITIZE=ON >/dev/null
	@cmake --build $(BUILD)-sanitize -j $(JOBS) | $(QUIET_STEPS); exit $${PIPESTATUS[0]}
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  cd $(BUILD)-sanitize && XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen ctest --output-on-failure

package: build
	@cd $(BUILD) && log=$$(cpack -G DEB 2>&1) || { echo "$$log"; exit 1; }
	@deb=$$(ls $(BUILD)/qivo-review_*.deb) && echo "$$deb" && dpkg-deb -f "$$deb" Version Depends

# Installs the package into this system (root), checks a fresh demo database with the installed
# program, and removes the package again.
check-package: package
	@if [ "$$(id -u)" -ne 0 ]; then echo "check-package installs into the system: run it as root"; exit 1; fi
	@deb=$$(ls $(BUILD)/qivo-review_*.deb) && cfg=$$(mktemp -d) && \
	  trap 'dpkg -r qivo-review >/dev/null; rm -rf "$$cfg"' EXIT && \
	  { log=$$(DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$$(realpath $$deb)" 2>&1) || \
	    { echo "$$log"; exit 1; }; } && \
	  dpkg -L qivo-review | grep -E '^/usr/(bin|share/applications|share/icons/.*/apps)/.' && \
	  XDG_CONFIG_HOME="$$cfg" /usr/bin/qivo-demo-db --no-settings --out "$$cfg/demo.db" && \
	  mkdir -p "$$cfg/Merivane" && \
	  printf '[DBConfig]\nSvr=sqlite:%s\nUID=\nPWD=\nDBname=qivo_demo\n' "$$cfg/demo.db" \
	    > "$$cfg/Merivane/Merivane.ini" && \
	  env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM XDG_CONFIG_HOME="$$cfg" \
	    /usr/bin/qivo-review --check

clean:
	rm -rf $(BUILD) $(BUILD)-sanitize
