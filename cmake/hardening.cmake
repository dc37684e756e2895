# What makes a mistake in memory hard to exploit on Linux: for everything that is built here, so that what is tested
# and measured is what users get. Not beside the sanitizers, which find more and want the calls as they stand.
if(APPLE OR EMSCRIPTEN OR QTX_SANITIZE)
  return()
endif()
set(qtx_hardening -fstack-protector-strong)
# The C library checks sizes only in optimised code. Some compilers define it by themselves.
list(APPEND qtx_hardening $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
# Addresses are resolved while loading, and then nobody writes them any more.
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
# Calls go where functions begin, and return where they came from. The linker marks a file so only if everything in it
# is, the C library's start files included. Of the shadow stack that can be said whatever these do, for they return
# where they came from; of the landing pads it cannot.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
  list(APPEND qtx_hardening -fcf-protection=full)
  add_link_options(-Wl,-z,shstk)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
  list(APPEND qtx_hardening -mbranch-protection=standard)
endif()
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:${qtx_hardening}>")
