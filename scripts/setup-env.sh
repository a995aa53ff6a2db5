# Sourced by the project's scripts: installs the Debian packages the build needs
# (nothing when all are present), then configures and builds into $GW_BUILD_DIR.

GW_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
GW_BUILD_DIR=${GW_BUILD_DIR:-$GW_ROOT/build}

GW_PACKAGES=(
    cmake ninja-build g++ pkg-config ccache
    qtbase5-dev qtbase5-private-dev libqt5sql5-sqlite libqt5svg5-dev
    libtiff-dev libjpeg62-turbo-dev libexiv2-dev liblcms2-dev libopenjp2-7-dev
    libraw-dev zlib1g-dev libgtest-dev libbenchmark-dev
    exiv2 libjpeg-turbo-progs libtiff-tools imagemagick
)

gw_as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

gw_install_packages() {
    local missing=()
    local p
    for p in "${GW_PACKAGES[@]}" "$@"; do
        if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$p")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing missing packages: ${missing[*]}"
    gw_as_root apt-get update -qq || return 1
    gw_as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" || return 1
}

# gw_build [extra cmake arguments...]
gw_build() {
    local launcher=()
    command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
    cmake -S "$GW_ROOT" -B "$GW_BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE="${GW_BUILD_TYPE:-RelWithDebInfo}" \
          "${launcher[@]}" "$@" || return 1
    cmake --build "$GW_BUILD_DIR" -j "$(nproc)" || return 1
}
