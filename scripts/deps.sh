#!/usr/bin/env bash
# Installs the Debian packages the build, the tests, the examples, the ABI
# tools (abidw, abidiff) and the API reference (Doxygen, Graphviz) need, for
# both Qt majors (Qt 5.15 and Qt 6.4).
set -euo pipefail
packages=(cmake g++ make pkg-config binutils abigail-tools doxygen graphviz
          qtbase5-dev qtdeclarative5-dev qtdeclarative5-dev-tools
          qml-module-qttest qml-module-qtquick2 qml-module-qtquick-window2
          qml-module-qtquick-controls2 qml-module-qtquick-layouts qml-module-qtquick-templates2
          qml-module-qtqml-models2
          qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools
          qml6-module-qtqml qml6-module-qtqml-workerscript qml6-module-qtqml-models
          qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-controls
          qml6-module-qtquick-layouts qml6-module-qtquick-templates qml6-module-qttest)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
