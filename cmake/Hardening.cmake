# What distributions build with, in every build for use: addresses are not known beforehand, the
# stack is guarded, the tables of the linker are read-only, and lengths are checked where known.
# Other builds are left as they are: sanitizers and coverage do not go with all of it.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  target_compile_options(project_options INTERFACE
    -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
    # No path of the machine that builds gets into the program.
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
  target_link_options(project_options INTERFACE -Wl,-z,relro,-z,now)
endif()
