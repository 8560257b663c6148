# The hardening options that distributions use, for release builds: position-independent code, stack
# protector, read-only relocations and checked lengths. Other builds do not use them, because not all
# of them are compatible with sanitizers and coverage.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  target_compile_options(project_options INTERFACE
    -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
    # Keeps paths of the build machine out of the program.
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
  target_link_options(project_options INTERFACE -Wl,-z,relro,-z,now)
endif()
