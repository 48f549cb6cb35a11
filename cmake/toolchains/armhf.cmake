# Debian's armhf, built on another of its machines with the compiler of the package g++-arm-linux-gnueabihf.
# The libraries are those of Debian's own armhf, beside the machine's (scripts/cross).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabihf/pkgconfig:/usr/share/pkgconfig)
# Runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
# What packages of the build are for.
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
