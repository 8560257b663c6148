# An interface target that all our targets link: language level, warnings and include root.
option(BELUN_WERROR "Treat compiler warnings as errors" OFF)

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_17)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(project_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${BELUN_WERROR}>:-Werror>)

# The vehicle's bytes must be read the same way whether plain char is signed or not.
option(BELUN_OTHER_CHAR "Compile with the other sign of plain char" OFF)
if(BELUN_OTHER_CHAR)
  include(CheckCXXSourceCompiles)
  check_cxx_source_compiles("static_assert(char(-1) < 0, \"\"); int main() { return 0; }"
    BELUN_CHAR_IS_SIGNED)
  if(BELUN_CHAR_IS_SIGNED)
    target_compile_options(project_options INTERFACE -funsigned-char)
    target_compile_definitions(project_options INTERFACE BELUN_EXPECT_SIGNED_CHAR=false)
  else()
    target_compile_options(project_options INTERFACE -fsigned-char)
    target_compile_definitions(project_options INTERFACE BELUN_EXPECT_SIGNED_CHAR=true)
  endif()
endif()

# gold is three times as fast as the default linker. Builds without the tests use the default linker.
if(BUILD_TESTING)
  include(CheckLinkerFlag)
  check_linker_flag(CXX -fuse-ld=gold BELUN_HAVE_GOLD)
  if(BELUN_HAVE_GOLD)
    target_link_options(project_options INTERFACE -fuse-ld=gold)
  endif()
endif()
