# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

# Debian packages the project needs, and a way to install the missing ones.
# Sourced by scripts/run, scripts/test and scripts/package.

BUILD_PACKAGES=(
    cmake g++ make pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev libqt6svg6
    qt6-multimedia-dev libqt6multimediawidgets6
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav
    libssl-dev nlohmann-json3-dev
    libxkbcommon-dev libxkbcommon-x11-dev
    libxcb1-dev libxcb-keysyms1-dev libxcb-xfixes0-dev libxcb-ewmh-dev libxcb-icccm4-dev
    libxcb-composite0-dev libxcb-image0-dev libxcb-shm0-dev libxcb-xinput-dev libxcb-randr0-dev
    libcanberra-dev sound-theme-freedesktop
    libavdevice-dev libavcodec-dev libavformat-dev libswscale-dev libavutil-dev
)

# The virtual desktop and the tools the tests drive and inspect it with.
DESKTOP_PACKAGES=(
    xvfb openbox trayer dunst dbus dbus-x11 xauth
    x11-utils x11-xserver-utils x11-apps xdotool xclip
    python3 python3-cryptography imagemagick ffmpeg
)

# What scripts/package packs and checks with (the package.Layout test too).
PACKAGE_PACKAGES=(dpkg-dev file binutils zip unzip lintian appstream desktop-file-utils)

# libFuzzer and the clang that builds the fuzz targets (scripts/fuzz).
FUZZ_PACKAGES=(clang libclang-rt-14-dev)

TEST_PACKAGES=("${FUZZ_PACKAGES[@]}" libgtest-dev at-spi2-core python3-pyatspi clang-format clang-tidy desktop-file-utils
    "${PACKAGE_PACKAGES[@]}")

# Installs whichever of the given packages are not installed yet.
ensure_packages() {
    local missing=()
    local package
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$package")
        fi
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        sudo=(sudo)
    fi
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# Configures (once) and builds one build tree.
build_tree() {
    local tree=$1
    shift
    cmake -S "$PROJECT_ROOT" -B "$PROJECT_ROOT/$tree" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
    cmake --build "$PROJECT_ROOT/$tree" --parallel "$(nproc)"
}
