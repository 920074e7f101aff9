# 32-bit ARM with floating-point registers, without NEON: what Debian builds for.
set(ORBITWALK_MACHINE arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(ORBITWALK_EMULATOR qemu-arm)
# The compiler tells of every call that its versions before 7 made in another way.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
