# Adding tests. Every test belongs to one label, which sets its time limit:
#   unit    no thread, no socket
#   socket  threads and sockets, the window included
#   system  the built programs
# A test marked PRIVATE_NETWORK also gets the label `network` and runs in a private network of its
# own, so that such tests run side by side.

# What compiles the same code in another way, or has nothing to run, tells nothing new with Qt 6 or
# under a sanitizer.
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

# add_unit_test(NAME link.VehicleFrame LABEL unit SOURCES link/VehicleFrameTest.cpp
#               LIBRARIES link [PRIVATE_NETWORK] [BOTH_CHARS [COMPILE_TWICE]])
# One Qt Test executable; the first source is the one with the test class. Links the libraries and
# test_support. With BOTH_CHARS the test stands twice: under its own name, and with a suffix with
# its libraries built for the other sign of plain char.
function(add_unit_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "PRIVATE_NETWORK;BOTH_CHARS;COMPILE_TWICE" "NAME;LABEL"
    "SOURCES;LIBRARIES")
  set(target "test_${arg_NAME}")
  add_executable(${target} ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  _belun_finish_unit_test(${arg_NAME} ${arg_LABEL} "${arg_PRIVATE_NETWORK}" "${arg_LIBRARIES}")
  if(arg_BOTH_CHARS AND BELUN_EVERY_VARIANT)
    _belun_add_other_char_test()
  endif()
endfunction()

function(_belun_finish_unit_test name label network libraries)
  set(target "test_${name}")
  set_target_properties(${target} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  target_link_libraries(${target} PRIVATE project_options test_support Qt::Test ${libraries})
  set(command $<TARGET_FILE:${target}>)
  if(network)
    list(PREPEND command ${BELUN_PRIVATE_NETWORK})
  endif()
  add_test(NAME ${name} COMMAND ${command})
  _belun_set_test_properties(${name} ${label} "${network}")
endfunction()

# The libraries without a window have to behave alike whether plain char is signed or not. Objects
# of both kinds link with one another, so the second test is made of the objects of the first one
# and is only linked anew. COMPILE_TWICE compiles them too, where a test itself reads chars as
# numbers. Every library in the list is built once for the other sign.
macro(_belun_add_other_char_test)
  _belun_find_other_char()
  set(libraries)
  foreach(library ${arg_LIBRARIES})
    _belun_add_other_char_library(${library})
    list(APPEND libraries ${library}_${other_char})
  endforeach()
  set(other "${target}.${other_char}")
  if(arg_COMPILE_TWICE)
    add_executable(${other} ${arg_SOURCES})
    set_target_properties(${other} PROPERTIES AUTOMOC ON)
    target_compile_options(${other} PRIVATE ${other_char_option})
    # Also those that the caller adds to the first one later.
    target_compile_definitions(${other} PRIVATE
      $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
  else()
    add_executable(${other} $<TARGET_OBJECTS:${target}>)
    add_dependencies(${other} ${target})
    set_target_properties(${other} PROPERTIES LINKER_LANGUAGE CXX)
  endif()
  _belun_finish_unit_test(${arg_NAME}.${other_char} ${arg_LABEL} "${arg_PRIVATE_NETWORK}"
    "${libraries}")
endmacro()

# Sets other_char, the suffix, and other_char_option for the compiler.
macro(_belun_find_other_char)
  include(CheckCXXSourceCompiles)
  check_cxx_source_compiles("static_assert(char(-1) < 0, \"\"); int main() { return 0; }"
    BELUN_CHAR_IS_SIGNED)
  if(BELUN_CHAR_IS_SIGNED)
    set(other_char unsignedChar)
    set(other_char_option -funsigned-char)
  else()
    set(other_char signedChar)
    set(other_char_option -fsigned-char)
  endif()
endmacro()

function(_belun_add_other_char_library library)
  set(other "${library}_${other_char}")
  if(TARGET ${other})
    return()
  endif()
  get_target_property(sources ${library} SOURCES)
  get_target_property(folder ${library} SOURCE_DIR)
  get_target_property(automoc ${library} AUTOMOC)
  get_target_property(linked ${library} LINK_LIBRARIES)
  list(TRANSFORM sources PREPEND "${folder}/")
  add_library(${other} STATIC ${sources} "${PROJECT_SOURCE_DIR}/tests/support/CharSign.cpp")
  set_target_properties(${other} PROPERTIES AUTOMOC "${automoc}")
  target_compile_options(${other} PRIVATE ${other_char_option})
  target_compile_definitions(${other} PRIVATE EXPECT_${other_char})
  target_link_libraries(${other} PUBLIC ${linked})
endfunction()

# add_private_network_test(NAME system.Demo COMMAND <command line>)
# A system test that is a program of its own (a script, say).
function(add_private_network_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "COMMAND")
  add_test(NAME ${arg_NAME} COMMAND ${BELUN_PRIVATE_NETWORK} ${arg_COMMAND})
  _belun_set_test_properties(${arg_NAME} system TRUE)
endfunction()
