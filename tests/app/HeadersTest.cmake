# Compiles every header that no source includes first by itself, included twice, with only its own
# library's dependencies: it must include what it needs, and use no more of Qt than its library may.
# The other headers are proved by their sources, X.h by X.cpp; the test app.Headers checks that no
# header is missing.
function(check_headers library)
  foreach(header ${ARGN})
    string(MAKE_C_IDENTIFIER "${header}" name)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"@header@\"\n#include \"@header@\"\n" @ONLY)
    list(APPEND sources "${source}")
  endforeach()
  add_library(headers_${library} OBJECT ${sources})
  target_link_libraries(headers_${library} PRIVATE ${library})
  set(checked_headers ${checked_headers} ${ARGN} PARENT_SCOPE)
endfunction()

check_headers(posix posix/LeadingNumber.h posix/Worker.h)
check_headers(http http/HTTPClient.h http/HTTPRecords.h)
check_headers(download download/resp_header.h)
# The simulator is one program: its headers need no library.
check_headers(project_options simulator/Clock.h simulator/FileDescriptor.h simulator/LineReader.h
  simulator/PacketBytes.h)

add_test(NAME app.Headers
  COMMAND ${CMAKE_COMMAND} "-DROOT=${PROJECT_SOURCE_DIR}" "-DCHECKED=${checked_headers}"
          -P "${CMAKE_CURRENT_SOURCE_DIR}/HeadersComplete.cmake")
belun_set_test_properties(app.Headers unit FALSE)
