include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
qtx_headers(fmt::fmt-header-only fmt)
target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY=1)
set(fmt_FOUND TRUE)
