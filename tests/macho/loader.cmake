# The loader itself, for its tests and its fuzzer. entry_….S are for the two processors that the library is built for.
set(CMAKE_ASM_COMPILER ${CMAKE_CXX_COMPILER})  # else the system's own, whose settings would take the place of Clang's
enable_language(ASM)
set(here ${CMAKE_CURRENT_LIST_DIR})
add_library(macho_loader STATIC
  ${here}/entry_${CMAKE_SYSTEM_PROCESSOR}.S
  ${here}/compact_unwind.cpp
  ${here}/fixups.cpp
  ${here}/image.cpp
  ${here}/load.cpp
  ${here}/system.cpp
  ${here}/unwind.cpp
  ${here}/variadic.cpp
)
target_include_directories(macho_loader PUBLIC ${here}/..)
target_link_libraries(macho_loader PUBLIC ${CMAKE_DL_LIBS} PRIVATE qtx_options qtx_is_fuzzed)
