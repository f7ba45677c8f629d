# What Debian builds with under hardening=+all, and stack-clash protection and the assertions of the C++ library besides.
# docs/security.md says what each is good for; a test looks for them in what was built.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
# Only an optimising compiler can do this one; Debian's own may have it switched on already.
add_compile_options("$<$<IN_LIST:$<CONFIG>,Release;RelWithDebInfo;MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")

add_link_options("LINKER:-z,relro" "LINKER:-z,now" "LINKER:-z,noexecstack")
# Sanitizers leave symbols of theirs to the program.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_link_options("$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:-z,defs>")
endif()
