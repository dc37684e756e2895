# qtx_headers(TARGET FOLDER): a target of headers in /usr/include/FOLDER. The folder above has the C library's as well,
# which are not for this processor.
function(qtx_headers target folder)
  if(TARGET ${target})
    return()
  endif()
  set(headers ${CMAKE_BINARY_DIR}/headers/${folder})
  file(MAKE_DIRECTORY ${headers})
  file(CREATE_LINK /usr/include/${folder} ${headers}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${headers})
endfunction()
