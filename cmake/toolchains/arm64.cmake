# 64-bit ARM.
set(ORBITWALK_MACHINE aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ORBITWALK_EMULATOR qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
