# What users download: for macOS the library as a zip, for Linux the library and qtxhost as tar.gz and deb, each with
# documentation and examples. ./qtx package makes all of them. One commit gives the same bytes again: files carry the
# commit's time, and nothing says where they were built.
set(folder ${CMAKE_CURRENT_LIST_DIR})
if(APPLE)
  set(qtx_library_folder .)
  set(qtx_text_folder .)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME macos)
  set(readme ${folder}/README-macos.md)
else()
  # One level deeper than CPack looks for libraries to tell the system's linker of: this one is opened by name.
  set(qtx_library_folder lib/qtx/plugins)
  set(qtx_text_folder share/doc/qtx)
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_STRIP_FILES ON)
  set(readme ${folder}/README-linux.md)
endif()
# What is installed is what was built for it, not the tests.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
install(TARGETS qtx LIBRARY DESTINATION ${qtx_library_folder}
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
if(QTX_HOST AND NOT APPLE)
  install(TARGETS qtxhost RUNTIME DESTINATION bin)
endif()

# Pages and examples say ./qtx, the command of the sources; where only qtxhost is installed, they say that.
set(texts ${CMAKE_BINARY_DIR}/packaged)
# Folders change with the files that come and go in them. With globs that are checked again, ninja could not tell in
# advance that there is nothing to do.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples)
file(GLOB pages RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/examples/*)
list(REMOVE_ITEM pages docs/developing.md docs/performance.md)
foreach(page ${pages})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${page})
  file(READ ${PROJECT_SOURCE_DIR}/${page} text)
  string(REPLACE "./qtx " "qtxhost " text "${text}")
  file(CONFIGURE OUTPUT ${texts}/${page} CONTENT "${text}" @ONLY)
  get_filename_component(kind ${page} DIRECTORY)
  install(FILES ${texts}/${page} DESTINATION ${qtx_text_folder}/${kind})
endforeach()
file(GLOB pictures ${PROJECT_SOURCE_DIR}/docs/*.svg)
install(FILES ${pictures} DESTINATION ${qtx_text_folder}/docs)
configure_file(${readme} ${texts}/README.md @ONLY)
install(FILES ${texts}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${qtx_text_folder})

add_custom_target(packaged DEPENDS qtx)
# Compressed without a time or a name.
function(compress from to)
  add_custom_command(OUTPUT ${to} DEPENDS ${from} COMMAND gzip -9nc ${from} > ${to} VERBATIM)
endfunction()
if(QTX_HOST AND NOT APPLE)
  add_dependencies(packaged qtxhost)
  # One page and one script for each shell, each printed by qtxhost itself.
  function(printed file destination)
    add_custom_command(OUTPUT ${texts}/${file} DEPENDS qtxhost
      COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:qtxhost> ${ARGN} > ${texts}/${file})
    if(destination)
      install(FILES ${texts}/${file} DESTINATION ${destination})
    endif()
  endfunction()
  printed(qtxhost share/bash-completion/completions completion bash)
  printed(_qtxhost share/zsh/vendor-completions completion zsh)
  printed(qtxhost.fish share/fish/vendor_completions.d completion fish)
  printed(qtxhost.1 "" manual)
  configure_file(${folder}/changelog ${texts}/changelog @ONLY)
  compress(${texts}/qtxhost.1 ${texts}/qtxhost.1.gz)
  compress(${texts}/changelog ${texts}/changelog.gz)
  install(FILES ${texts}/qtxhost.1.gz DESTINATION share/man/man1)
  install(FILES ${texts}/changelog.gz ${folder}/copyright DESTINATION ${qtx_text_folder})
  add_custom_target(packaged_texts DEPENDS ${texts}/qtxhost ${texts}/_qtxhost ${texts}/qtxhost.fish
    ${texts}/qtxhost.1.gz ${texts}/changelog.gz)
  add_dependencies(packaged packaged_texts)
else()
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/NOTICES DESTINATION ${qtx_text_folder})
endif()

set(CPACK_PACKAGE_VENDOR "The QTX authors")
set(CPACK_PACKAGE_CONTACT "The QTX authors <authors@qtx.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PRE_BUILD_SCRIPTS ${folder}/same_times.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"A plug-in library for programs in an object-oriented BASIC dialect:
mathematical functions, 128-bit integers, atomic types, a thread-safe queue
and a cubic spline.

The program qtxhost stands in for the host: it loads the library and runs
programs in the same language.")
if(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
include(CPack)
