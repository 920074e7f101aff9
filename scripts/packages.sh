# The Debian 12 packages that the project needs, and the tree that it is built in; sourced by the scripts beside it.

# Of the libraries, and of the tool besides.
packages_libraries=(
    libopencv-core-dev libopencv-imgproc-dev libopencv-video-dev
    libavcodec-dev libavfilter-dev libavformat-dev libavutil-dev libswscale-dev
    libspdlog-dev libeigen3-dev
)
packages_tool=(libopencv-calib3d-dev libcli11-dev nlohmann-json3-dev libtbb-dev libfccp-dev libssl-dev)
packages_build=(g++ cmake ninja-build pkg-config git npm "${packages_libraries[@]}" "${packages_tool[@]}")
packages_demo=(lomiri-wallpapers-16.04)
packages_pictures=(chromium ffmpeg)
packages_test=(libopencv-imgcodecs-dev libgtest-dev libgmock-dev libbenchmark-dev binutils python3 lld chromium ffmpeg man-db zsh fish
    android-liblog-dev openjdk-17-jdk-headless)
# For bench/quality, bench/measure_speed and bench/plan_check.
packages_bench=(ffmpeg lomiri-wallpapers-16.04 python3-cvxopt)
# A scheduler of its own for the batch examples (slurm.sh).
packages_cluster=(lomiri-wallpapers-16.04 munge parallel procps slurm-wlm)
packages_package=(debootstrap dpkg-dev file lintian)
packages_docs=(doxygen)
packages_clang=(clang libclang-rt-14-dev)
# To build for another machine and run what was built; what it is built with is unpacked beside it (sysroot.sh).
packages_arm64=(g++-aarch64-linux-gnu qemu-user)
packages_armhf=(g++-arm-linux-gnueabihf qemu-user)
packages_sysroot=(libc6-dev libstdc++-12-dev libgtest-dev libgmock-dev "${packages_libraries[@]}")

# is_there NAME: the package is installed, or the command npm for the package of that name: Node.js from another
# source brings an npm of its own, and Debian's cannot be installed beside it.
is_there() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ] ||
        { [ "$1" = npm ] && command -v npm >/dev/null; }
}

# install_packages NAME...: installs what is missing; asks for nothing when all is there.
install_packages() {
    local missing=() package
    for package in "$@"; do
        is_there "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure_release: the preset without tests and benchmarks, unless its tree is there, which may have them.
configure_release() {
    [ -f build/release/CMakeCache.txt ] ||
        cmake --preset release -DORBITWALK_BUILD_TESTS=OFF -DORBITWALK_BUILD_BENCHMARKS=OFF >/dev/null
}
