# Adding tests. Every test belongs to one label, which sets its time limit:
#   unit    no thread, no socket
#   socket  threads and sockets, the window included
#   system  the built programs
# A test marked PRIVATE_NETWORK also gets the label `network` and runs in a private network of its
# own, so that such tests run side by side.

# Always a network of its own, also for a caller who is inside one already.
set(BELUN_PRIVATE_NETWORK "${PROJECT_SOURCE_DIR}/simulator/private-network" --own)

set(BELUN_TIMEOUT_unit 60)
set(BELUN_TIMEOUT_socket 180)
set(BELUN_TIMEOUT_system 300)

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
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TZ=UTC;LC_ALL=C.UTF-8;QT_LOGGING_RULES=")
endfunction()

# add_unit_test(NAME link.VehicleFrame LABEL unit SOURCES link/VehicleFrameTest.cpp
#               LIBRARIES link [PRIVATE_NETWORK])
# One Qt Test executable; the first source is the one with the test class. Links the libraries and
# test_support.
function(add_unit_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "PRIVATE_NETWORK" "NAME;LABEL" "SOURCES;LIBRARIES")
  set(target "test_${arg_NAME}")
  add_executable(${target} ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES
    AUTOMOC ON
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  target_link_libraries(${target} PRIVATE project_options test_support Qt::Test ${arg_LIBRARIES})
  set(command $<TARGET_FILE:${target}>)
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
