# Fails if a header of the product or the simulator has no include guard, or if nothing proves that it
# includes what it needs: it is not in CHECKED, and its source does not include it first.
cmake_minimum_required(VERSION 3.22)

file(GLOB headers RELATIVE "${ROOT}"
  "${ROOT}/app/*.h" "${ROOT}/card/*.h" "${ROOT}/download/*.h" "${ROOT}/http/*.h" "${ROOT}/link/*.h"
  "${ROOT}/posix/*.h" "${ROOT}/simulator/*.h" "${ROOT}/verify/*.h")
if(NOT headers)
  message(FATAL_ERROR "no header found in ${ROOT}")
endif()

foreach(header IN LISTS headers)
  file(STRINGS "${ROOT}/${header}" guard LIMIT_COUNT 1 REGEX "^#pragma once$")
  if(NOT guard)
    message(SEND_ERROR "${header}: no #pragma once")
  endif()
  string(REGEX REPLACE "h$" "cpp" source "${header}")
  set(first "")
  if(EXISTS "${ROOT}/${source}")
    file(STRINGS "${ROOT}/${source}" first LIMIT_COUNT 1 REGEX "^#include ")
  endif()
  if(NOT first STREQUAL "#include \"${header}\"" AND NOT header IN_LIST CHECKED)
    message(SEND_ERROR "${header}: add it to HeadersTest.cmake, or include it first in ${source}")
  endif()
endforeach()
