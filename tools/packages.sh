# Sourced by ./run, ./test and .ci/run: installs the Debian packages that are missing, saying which.
# Usage: need_packages NAME...

need_packages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}" >&2
    local root=()
    if [ "$(id -u)" -ne 0 ]; then root=(sudo); fi
    "${root[@]}" apt-get update -qq >&2
    DEBIAN_FRONTEND=noninteractive "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

BUILD_PACKAGES=(g++ cmake ninja-build ccache pkg-config libsdl2-dev libepoxy-dev libgl1-mesa-dri libegl1 libegl-mesa0
    libegl-dev libgl1 libgl-dev libstb-dev libglm-dev glslang-dev spirv-tools libspirv-cross-c-shared-dev libfmt-dev
    libcli11-dev libtomlplusplus-dev nlohmann-json3-dev liblzma-dev)
TEST_PACKAGES=(libgtest-dev libgmock-dev libbenchmark-dev xvfb xdotool openbox x11-utils xz-utils)
FUZZ_PACKAGES=(clang libclang-rt-14-dev)
