# Language level, warnings and include root: one interface target that all of ours link.
option(BELUN_WERROR "Treat compiler warnings as errors" OFF)

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_17)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(project_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${BELUN_WERROR}>:-Werror>)

# The tests are some hundred programs, and linking them is a good part of a build: gold takes a third
# of the default linker's time. What is built for use keeps the default.
if(BUILD_TESTING)
  include(CheckLinkerFlag)
  check_linker_flag(CXX -fuse-ld=gold BELUN_HAVE_GOLD)
  if(BELUN_HAVE_GOLD)
    target_link_options(project_options INTERFACE -fuse-ld=gold)
  endif()
endif()
