# Sourced by the other scripts: installs what building and running takes, on Debian 12 and 13 and their like.
# Says what it installs and does nothing where all of it is there.

set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top"

say() { printf '== %s\n' "$*"; }

packages=(
    cmake ninja-build g++
    qtbase5-dev qtdeclarative5-dev qtdeclarative5-dev-tools qtquickcontrols2-5-dev qttools5-dev qttools5-dev-tools
    qml-module-qtquick2 qml-module-qtquick-window2 qml-module-qtquick-controls qml-module-qtquick-controls2
    qml-module-qtquick-templates2 qml-module-qtquick-layouts qml-module-qtquick-dialogs
    qml-module-qtquick-privatewidgets qml-module-qt-labs-folderlistmodel qml-module-qt-labs-settings
    qml-module-qttest
    libcurl4-openssl-dev libarchive-dev libssl-dev
    libboost-dev libsimdjson-dev zlib1g-dev libbenchmark-dev
    fonts-dejavu-core
)

# install_packages NAME...: apt packages, those that are missing only. As root, or through sudo.
install_packages() {
    local missing=() name
    for name in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { say "To install: ${missing[*]}. Run this as root, or install sudo."; exit 1; }
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures once, builds what has changed.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    cmake --preset "$preset" >/dev/null &&
        cmake --build --preset "$preset" ${1:+--target "$@"}
}
