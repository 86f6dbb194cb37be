# Sourced by ./run, ./test and .ci/run: installs the Debian packages that are missing, saying which.
# Usage: need_packages NAME...

need_packages() {
    local installed name
    local -a missing=() as_root=()
    installed=" $(dpkg-query -W -f='${db:Status-Status} ${Package} ' "$@" 2>/dev/null || true)"
    for name in "$@"; do
        [[ $installed == *" installed $name "* ]] || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing: ${missing[*]}" >&2
            echo "There is no sudo here; run this as root: apt-get install --no-install-recommends ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}" >&2
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "The packages could not be installed; all of the output is in $log." >&2
        return 1
    fi
    rm -f "$log"
}

BUILD_PACKAGES=(g++ cmake ninja-build ccache pkg-config libsdl2-dev libepoxy-dev libgl1-mesa-dri libegl1 libegl-mesa0
    libegl-dev libgl1 libgl-dev libopengl-dev libstb-dev libglm-dev glslang-dev spirv-tools libspirv-cross-c-shared-dev
    libfmt-dev libcli11-dev libtbb-dev libtomlplusplus-dev nlohmann-json3-dev liblzma-dev libpng-dev libimgui-dev
    libfontconfig-dev libx11-dev fonts-dejavu-core fonts-unifont)
TEST_PACKAGES=(libgtest-dev libgmock-dev libbenchmark-dev xvfb xdotool openbox x11-utils imagemagick xz-utils)
FUZZ_PACKAGES=(clang libclang-rt-14-dev)
