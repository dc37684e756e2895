# Cross-builds for WebAssembly, for pages and for node. Needs emscripten and nodejs: ./qtx build wasm installs them.
find_program(qtx_found_emcc emcc)
if(NOT qtx_found_emcc)
  message(FATAL_ERROR "emcc is missing: ./qtx build wasm installs it (Debian package emscripten).")
endif()
file(REAL_PATH ${qtx_found_emcc} qtx_emcc)
set(qtx_emscripten /usr/share/emscripten)
include(${qtx_emscripten}/cmake/Modules/Platform/Emscripten.cmake)
# Packages that are headers alone, which the distribution keeps among those of its own processor.
list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/wasm)
# node finds the distribution's packages, which the linker needs, only where node is the distribution's as well.
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -include ${CMAKE_CURRENT_LIST_DIR}/wasm/library.h")
