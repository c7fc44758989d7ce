#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the examples need.
set -euo pipefail
packages=(cmake g++ make pkg-config
          qtbase5-dev qtdeclarative5-dev qtdeclarative5-dev-tools
          qml-module-qttest qml-module-qtquick2 qml-module-qtquick-window2
          qml-module-qtquick-controls2 qml-module-qtquick-layouts qml-module-qtquick-templates2
          qml-module-qtqml-models2)
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
