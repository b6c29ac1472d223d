# The two commands are `make run` and `make test`; the rest are their steps.
BUILD      ?= build
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
PACKAGES   := cmake g++ make qt6-base-dev libqt6sql6-sqlite libqt6sql6-odbc unixodbc unixodbc-dev tdsodbc \
              libsqlite3-dev fonts-noto-cjk xvfb xauth
CONFIG_DIR  = $${XDG_CONFIG_HOME:-$$HOME/.config}
DEMO_DB     = $${XDG_DATA_HOME:-$$HOME/.local/share}/qivo/demo.db

.PHONY: deps build run test bench screenshots check-sanitize clean

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
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@if ! grep -qs '^Svr=.' "$(CONFIG_DIR)/Merivane/Merivane.ini"; then \
	  mkdir -p "$$(dirname "$(DEMO_DB)")" && $(BUILD)/qivo-demo-db --out "$(DEMO_DB)"; \
	fi
	@if [ -z "$$DISPLAY$$WAYLAND_DISPLAY" ] && [ -z "$$QT_QPA_PLATFORM" ]; then \
	  echo "No display: run this on a desktop, or under xvfb-run (xvfb-run make run)."; exit 1; \
	fi
	$(BUILD)/qivo-review

test: build
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

bench: build
	@cmake --build $(BUILD) --target qivo-bench -j $(JOBS)
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen $(BUILD)/qivo-bench

screenshots: build
	@cmake --build $(BUILD) --target qivo-screenshots -j $(JOBS)
	@QT_QPA_PLATFORM=offscreen $(BUILD)/qivo-screenshots docs/screenshots

check-sanitize: deps
	@cmake -S . -B $(BUILD)-sanitize -DCMAKE_BUILD_TYPE=Debug -DQIVO_SANITIZE=ON >/dev/null
	@cmake --build $(BUILD)-sanitize -j $(JOBS)
	@cfg=$$(mktemp -d) && trap 'rm -rf "$$cfg"' EXIT && \
	  XDG_CONFIG_HOME="$$cfg" QT_QPA_PLATFORM=offscreen ctest --test-dir $(BUILD)-sanitize --output-on-failure

clean:
	rm -rf $(BUILD) $(BUILD)-sanitize
