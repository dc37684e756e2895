include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
qtx_headers(CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)
