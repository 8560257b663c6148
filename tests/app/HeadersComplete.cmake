# Fails if a header of the product or the simulator is missing from CHECKED.
file(GLOB headers RELATIVE "${ROOT}"
  "${ROOT}/app/*.h" "${ROOT}/card/*.h" "${ROOT}/download/*.h" "${ROOT}/http/*.h" "${ROOT}/link/*.h"
  "${ROOT}/posix/*.h" "${ROOT}/simulator/*.h" "${ROOT}/verify/*.h")
if(NOT headers)
  message(FATAL_ERROR "no header found in ${ROOT}")
endif()
list(REMOVE_ITEM headers ${CHECKED})
if(headers)
  message(FATAL_ERROR "headers not compiled by themselves; add them to HeadersTest.cmake: ${headers}")
endif()
