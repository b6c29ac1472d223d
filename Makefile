# The two commands are `make run` and `make test`; the rest are their steps.
BUILD      ?= build
SHELL      := /bin/bash
# Say only what matters: no directory changes of the nested makes, no CMake step lines for work
# that was already done.
MAKEFLAGS  += --no-print-directory
QUIET_STEPS = grep --line-buffered -vE '^(\[ *[0-9]+%\] (Built target|Automatic (MOC|RCC|UIC) for)|-- )'
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
# What the Babelfish bundle (../shared/babelfish) needs to run: the SQL Server suites and
# make run-sqlserver start it.
BABELFISH_PACKAGES := libicu72 libxml2 libssl3 libuuid1 zlib1g libstdc++6
PACKAGES   := cmake g++ make qt6-base-dev libqt6sql6-sqlite unixodbc unixodbc-dev \
              tdsodbc libsqlite3-dev fonts-noto-cjk xvfb xauth dpkg-dev file librsvg2-bin \
              qt6-translations-l10n $(BABELFISH_PACKAGES)
CONFIG_DIR  = $${XDG_CONFIG_HOME:-$$HOME/.config}
DEMO_DB     = $${XDG_DATA_HOME:-$$HOME/.local/share}/qivo/demo.db
# The Windows build: mingw-w64 against a Windows SDK (Qt and SQLite built from Debian's sources),
# tests under Wine, an NSIS installer.
WIN_BUILD    ?= build-windows
WIN_PACKAGES := g++-mingw-w64-x86-64-posix mingw-w64-tools wine64 wine nsis zip cmake ninja-build \
                qt6-base-dev-tools tdsodbc unixodbc librsvg2-bin \
                fonts-noto-cjk qt6-translations-l10n
WIN_SDK_TAR  := ../shared/windows/qivo-windows-sdk.tar.xz
WIN_SDK_HOME := build-windows-sdk
WIN_SDK       = $${QIVO_WINDOWS_SDK:-$(CURDIR)/$(WIN_SDK_HOME)/qivo-windows-sdk}
WIN_PREFIX    = $(CURDIR)/$(WIN_BUILD)/wine-prefix

.PHONY: deps build run run-sqlserver test bench screenshots check-sanitize package check-package clean \
        windows-deps windows-sdk windows-build windows windows-test

# Installs the missing ones of the given Debian packages (as root), or says how to.
define install_missing
	@missing=""; for p in $(1); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q 'ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -z "$$missing" ]; then exit 0; fi; \
	if [ "$$(id -u)" -ne 0 ]; then \
	  echo "Missing packages:$$missing"; \
	  echo "Install them with: sudo apt-get update && sudo apt-get install -y$$missing"; exit 1; \
	fi; \
	echo "Installing:$$missing"; \
	apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing >/dev/null
endef

deps:
	$(call install_missing,$(PACKAGES))

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

# The program signed in as 1001 on a real T-SQL engine (Babelfish, from ../shared/babelfish)
# holding the demo rows make run makes; the engine stops when the program ends. The settings it
# reads are its own, so the demo's settings stay as they are.
BABELFISH_BUNDLE ?= ../shared/babelfish/babelfish-4.2.0-debian12-x86_64.tar.xz
SQLSERVER_STATE   = $(BUILD)/babelfish-demo
run-sqlserver: build
	@if [ -z "$$DISPLAY$$WAYLAND_DISPLAY" ] && [ -z "$$QT_QPA_PLATFORM" ]; then \
	  echo "No display: run this on a desktop, or under xvfb-run (xvfb-run make run-sqlserver)."; exit 1; \
	fi
	@mkdir -p $(SQLSERVER_STATE) && $(BUILD)/qivo-demo-db --no-settings --out $(SQLSERVER_STATE)/demo.db && \
	  bash tests/babelfish/babelfish.sh start $(SQLSERVER_STATE) $(BABELFISH_BUNDLE) $(BUILD)/qivo-tsql \
	    --sqlite $(SQLSERVER_STATE)/demo.db
	@cfg=$$(mktemp -d) && trap 'bash tests/babelfish/babelfish.sh stop $(SQLSERVER_STATE); rm -rf "$$cfg"' EXIT && \
	  mkdir -p "$$cfg/Merivane" && . <(sed 's/^/server_/' $(SQLSERVER_STATE)/server) && \
	  printf '[DBConfig]\nSvr=127.0.0.1,%s\nUID=%s\nPWD=%s\nDBname=estate\n' \
	    "$$server_port" "$$server_login" "$$server_password" > "$$cfg/Merivane/Merivane.ini" && \
	  XDG_CONFIG_HOME="$$cfg" QIVO_ODBC_DRIVER=FreeTDS \
	    $(BUILD)/qivo-review "1001,王丽,KF,客服中心,KF01,客服主管,WY,物业管理,GL,管理岗"

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

windows-deps:
	$(call install_missing,$(WIN_PACKAGES))

# The SDK: $$QIVO_WINDOWS_SDK when set; else the shared prebuilt one, unpacked once its checksum
# holds (again when the archive changes); else built here from Debian's source packages (slow).
windows-sdk: windows-deps
	@if [ -n "$$QIVO_WINDOWS_SDK" ]; then \
	  [ -f "$$QIVO_WINDOWS_SDK/mingw64.cmake" ] || { echo "QIVO_WINDOWS_SDK=$$QIVO_WINDOWS_SDK holds no mingw64.cmake"; exit 1; }; \
	elif [ -f $(WIN_SDK_TAR) ]; then \
	  sum=$$(cat $(WIN_SDK_TAR).sha256); \
	  if [ "$$sum" != "$$(cat $(WIN_SDK_HOME)/archive.sha256 2>/dev/null)" ]; then \
	    (cd $(dir $(WIN_SDK_TAR)) && sha256sum --quiet -c $(notdir $(WIN_SDK_TAR)).sha256) || exit 1; \
	    rm -rf $(WIN_SDK_HOME) && mkdir -p $(WIN_SDK_HOME) && tar -C $(WIN_SDK_HOME) -xJf $(WIN_SDK_TAR) && \
	    echo "$$sum" > $(WIN_SDK_HOME)/archive.sha256; \
	  fi; \
	elif [ ! -f $(WIN_SDK_HOME)/qivo-windows-sdk/mingw64.cmake ]; then \
	  packaging/windows/build-sdk.sh $(WIN_SDK_HOME)/qivo-windows-sdk; \
	fi

windows-build: windows-sdk
	@cmake -S . -B $(WIN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release \
	  -DCMAKE_TOOLCHAIN_FILE="$(WIN_SDK)/mingw64.cmake" -DCMAKE_PREFIX_PATH="$(WIN_SDK)/qt;$(WIN_SDK)/sqlite" \
	  -DQIVO_WINDOWS_SDK="$(WIN_SDK)" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake >/dev/null
	@cmake --build $(WIN_BUILD) -j $(JOBS) | $(QUIET_STEPS); exit $${PIPESTATUS[0]}

# build-windows/qivo-review-<version>-win64-setup.exe and -win64.zip.
windows: windows-build
	@cmake --build $(WIN_BUILD) --target windows-package | $(QUIET_STEPS); exit $${PIPESTATUS[0]}

# Every suite under Wine in the build's own prefix. Wine's own services are started first, by a
# server that stays up for the run: started by a suite, they would hold its output open and ctest
# would wait for them.
windows-test: windows-build
	@export WINEPREFIX="$(WIN_PREFIX)" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" && \
	  mkdir -p "$$WINEPREFIX" && { wineserver -k >/dev/null 2>&1; wineserver -p >/dev/null 2>&1; } && \
	  trap 'wineserver -k >/dev/null 2>&1' EXIT && env -u DISPLAY wineboot -i >/dev/null 2>&1 && \
	  cd $(WIN_BUILD) && ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD) $(BUILD)-sanitize $(WIN_BUILD)
