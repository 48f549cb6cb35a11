# Debian's arm64, built on another of its machines with the compiler of the package g++-aarch64-linux-gnu.
# The libraries are those of Debian's own arm64, beside the machine's (scripts/cross).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
# Runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# What packages of the build are for.
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
