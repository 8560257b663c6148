# Toolchain file of the preset `arm64`: Debian's cross compiler, the libraries of Debian's arm64
# packages, and QEMU for the programs that the build and CTest run. moc, uic, rcc and lrelease run without
# QEMU: they are those of the build machine.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)
