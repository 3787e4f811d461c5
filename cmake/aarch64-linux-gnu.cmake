# For 64-bit ARM on another Linux machine, with Debian's cross compiler. The libraries are named on the
# command line, see scripts/release.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
# What is built is run to print its completions.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)
