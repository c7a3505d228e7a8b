# shellcheck shell=bash
# Debian packages (12 "bookworm") that the scripts install where they are missing; one list for each purpose.
# shellcheck disable=SC2034  # Used by the scripts that source this file.

# To build the workbench, its plug-in pack and its pictures.
BUILD_PACKAGES=(
    g++ cmake ninja-build ccache pkg-config python3
    qtbase5-dev qtbase5-dev-tools libjpeg62-turbo-dev libpng-dev zlib1g-dev libopencv-core-dev libopencv-imgproc-dev
)

# To run it: drawn pictures and other picture formats beyond Qt's own, Qt's own texts in Chinese, a font with Chinese characters.
RUN_PACKAGES=(libqt5svg5 qt5-image-formats-plugins qttranslations5-l10n fonts-wqy-microhei)

# To run it where only a Wayland display is offered.
WAYLAND_PACKAGES=(qtwayland5)

# To see whether a display answers.
DISPLAY_PACKAGES=(x11-utils)

# To run it without a display and look at its window.
HEADLESS_PACKAGES=(xvfb xauth xdotool imagemagick x11-utils)

# To run the tests and the checks beside them.
TEST_PACKAGES=(git clang-14 clang-format-14 lld abigail-tools)

# To measure speed.
BENCH_PACKAGES=(
    libbenchmark-dev libopencv-imgcodecs-dev
    libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base
)

# To fuzz: the compiler with the fuzzer and the checks.
FUZZ_PACKAGES=(clang-14 libclang-rt-14-dev)

# To make Debian packages and to look at them.
PACKAGE_PACKAGES=(git build-essential debhelper dpkg-dev cmark-gfm librsvg2-bin lintian)

# To make fresh Debian trees, for ARM too, and to install packages into them.
TREE_PACKAGES=(mmdebstrap arch-test qemu-user-static)

# To build for the board and to run what was built: cross compiler, emulator, name spaces; what builds Lumivant here
# (BUILD_PACKAGES) is needed, too, for its tools.
BOARD_PACKAGES=(g++-arm-linux-gnueabihf binutils-arm-linux-gnueabihf qemu-user-static util-linux abigail-tools)

# What the sysroot of the board holds, as packages of the board's architecture.
BOARD_SYSROOT_PACKAGES=(
    libc6-dev libstdc++-12-dev linux-libc-dev libubsan1
    qtbase5-dev libjpeg62-turbo-dev libpng-dev zlib1g-dev libopencv-core-dev libopencv-imgproc-dev
    libqt5test5 libqt5svg5 qt5-image-formats-plugins qttranslations5-l10n fonts-dejavu-core fonts-wqy-microhei
)
