# Debian's hardening=+all flags, plus stack-clash protection and the assertions of the C++ library. docs/security.md
# lists them; a test checks the binaries for them.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
# _FORTIFY_SOURCE requires optimization; Debian's compiler may already define it.
add_compile_options("$<$<IN_LIST:$<CONFIG>,Release;RelWithDebInfo;MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")

add_link_options("LINKER:-z,relro" "LINKER:-z,now" "LINKER:-z,noexecstack")
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  # A shared library has undefined symbols then: clang links the runtime to programs only. GCC warns of variables that
  # its instrumentation seems not to initialize. Clang 14 cannot check calls through pointers in coroutines.
  add_compile_options(
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-maybe-uninitialized>
    $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-fno-sanitize=function>)
else()
  add_link_options("$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:-z,defs>")
endif()
