# Adding tests. Every test belongs to one label, which sets its time limit:
#   unit    no thread, no socket
#   socket  threads and sockets, the window included
#   system  the built programs
# A test marked PRIVATE_NETWORK also gets the label `network` and runs in a private network of its
# own, so that such tests run side by side.

# What has nothing to run shows nothing new with Qt 6 or under a sanitizer.
if(BELUN_SANITIZE OR BELUN_QT_MAJOR EQUAL 6)
  set(BELUN_EVERY_VARIANT OFF)
else()
  set(BELUN_EVERY_VARIANT ON)
endif()

# Always a network of its own, also for a caller who is inside one already.
set(BELUN_PRIVATE_NETWORK "${PROJECT_SOURCE_DIR}/tools/private-network" --own)

math(EXPR BELUN_TIMEOUT_unit "60 * ${BELUN_TIME_FACTOR}")
math(EXPR BELUN_TIMEOUT_socket "180 * ${BELUN_TIME_FACTOR}")
math(EXPR BELUN_TIMEOUT_system "300 * ${BELUN_TIME_FACTOR}")

# Sets what all tests have in common. Windows are drawn offscreen; the time zone and the language
# are fixed so that dates and messages are the same everywhere.
function(_belun_set_test_properties name label network)
  set(labels ${label})
  if(network)
    list(APPEND labels network)
  endif()
  set_tests_properties(${name} PROPERTIES
    LABELS "${labels}"
    TIMEOUT ${BELUN_TIMEOUT_${label}}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TZ=UTC;LC_ALL=C.UTF-8;QT_LOGGING_RULES=;${BELUN_SANITIZER_ENVIRONMENT}")
endfunction()

# add_test_program(link LIBRARIES link [SOURCES LinkRecorder.h])
# The test program of a folder, test_link: add_unit_test adds the classes.
function(add_test_program folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  set(target "test_${folder}")
  add_executable(${target} ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES
    AUTOMOC ON
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  target_link_libraries(${target} PRIVATE project_options test_kit Qt::Test ${arg_LIBRARIES})
  # Clang builds without it, so that a missing include shows.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_precompile_headers(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/Precompiled.h")
  endif()
endfunction()

# add_unit_test(NAME link.VehicleFrame LABEL unit [PRIVATE_NETWORK])
# One test class of the folder's program, in VehicleFrameTest.cpp; CTest runs it by itself.
function(add_unit_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "PRIVATE_NETWORK" "NAME;LABEL" "")
  string(REPLACE "." ";" parts ${arg_NAME})
  list(GET parts 0 folder)
  list(GET parts 1 class)
  target_sources(test_${folder} PRIVATE ${class}Test.cpp)
  set(command $<TARGET_FILE:test_${folder}> ${class})
  if(arg_PRIVATE_NETWORK)
    list(PREPEND command ${BELUN_PRIVATE_NETWORK})
  endif()
  add_test(NAME ${arg_NAME} COMMAND ${command})
  _belun_set_test_properties(${arg_NAME} ${arg_LABEL} "${arg_PRIVATE_NETWORK}")
endfunction()

# add_private_network_test(NAME system.Demo COMMAND <command line>)
# A system test that is a program of its own (a script, say).
function(add_private_network_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "COMMAND")
  add_test(NAME ${arg_NAME} COMMAND ${BELUN_PRIVATE_NETWORK} ${arg_COMMAND})
  _belun_set_test_properties(${arg_NAME} system TRUE)
endfunction()
