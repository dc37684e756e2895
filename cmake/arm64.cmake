# Cross-builds for 64-bit Arm on Debian and Ubuntu; tests run under qemu. Needs g++-aarch64-linux-gnu, qemu-user and
# the arm64 packages of the libraries: ./qtx build arm64 installs them.
foreach(each aarch64-linux-gnu-g++ qemu-aarch64)
  find_program(qtx_found_${each} ${each})
  if(NOT qtx_found_${each})
    message(FATAL_ERROR "${each} is missing: ./qtx build arm64 installs it (Debian packages g++-aarch64-linux-gnu, qemu-user).")
  endif()
endforeach()
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
