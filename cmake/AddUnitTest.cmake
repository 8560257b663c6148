# Functions that add tests. Every test has one of these labels, which sets its time limit:
#   unit    no threads, no sockets
#   socket  threads and sockets, including the window
#   system  the built programs
# A test marked PRIVATE_NETWORK also gets the label `network` and runs in its own private network, so
# that such tests can run in parallel.

# Compile-only tests are not built with Qt 6 or with a sanitizer, where they would find nothing new.
if(BELUN_SANITIZE OR BELUN_QT_MAJOR EQUAL 6)
  set(BELUN_EVERY_VARIANT OFF)
else()
  set(BELUN_EVERY_VARIANT ON)
endif()

# With --own, each test gets a new network, even if CTest runs inside a private network.
set(BELUN_PRIVATE_NETWORK "${PROJECT_SOURCE_DIR}/tools/private-network" --own)

math(EXPR BELUN_TIMEOUT_unit "60 * ${BELUN_TIME_FACTOR}")
math(EXPR BELUN_TIMEOUT_socket "180 * ${BELUN_TIME_FACTOR}")
math(EXPR BELUN_TIMEOUT_system "300 * ${BELUN_TIME_FACTOR}")

# Sets the properties common to all tests. Windows are drawn offscreen; time zone and locale are
# fixed so that dates and messages are the same everywhere.
function(belun_set_test_properties name label network)
  set(labels ${label})
  if(network)
    list(APPEND labels network)
  endif()
  set_tests_properties(${name} PROPERTIES
    LABELS "${labels}"
    TIMEOUT ${BELUN_TIMEOUT_${label}}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TZ=UTC;LC_ALL=C.UTF-8;QT_LOGGING_RULES=;${BELUN_SANITIZER_ENVIRONMENT}")
endfunction()

# With GCC, a test program uses a precompiled header, which it shares with the others of its kind, and
# is compiled in groups of eight files; this halves the time of a build. Clang compiles every file by
# itself, so that missing includes are found.
function(belun_compile_together target precompiled)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_precompile_headers(${target} REUSE_FROM ${precompiled})
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
  endif()
endfunction()

# add_test_program(link LIBRARIES link [SOURCES Link.cpp Link.h])
# add_test_program(card WIDGETS LIBRARIES card cardwidgets)
# Adds a folder's test program, such as test_link; add_unit_test adds its classes. With WIDGETS, each
# class has a QApplication, otherwise a QCoreApplication.
function(add_test_program folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "WIDGETS" "" "SOURCES;LIBRARIES")
  set(target "test_${folder}")
  add_executable(${target} ${arg_SOURCES})
  set_target_properties(${target} PROPERTIES
    AUTOMOC ON
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  if(arg_WIDGETS)
    set(precompiled precompiled_widgets)
  else()
    set(precompiled precompiled)
  endif()
  target_link_libraries(${target} PRIVATE ${precompiled} test_kit ${arg_LIBRARIES})
  belun_compile_together(${target} ${precompiled})
endfunction()

# add_unit_test(NAME link.VehicleFrame LABEL unit [PRIVATE_NETWORK])
# Adds one test class, in VehicleFrameTest.cpp, to the folder's program; CTest runs it separately.
function(add_unit_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "PRIVATE_NETWORK" "NAME;LABEL" "")
  string(REPLACE "." ";" parts ${arg_NAME})
  list(GET parts 0 folder)
  list(GET parts 1 class)
  target_sources(test_${folder} PRIVATE ${class}Test.cpp)
  # In a cross build the program runs in an emulator, which CMake adds by itself only where the command is
  # the name of a target.
  set(command ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:test_${folder}> ${class})
  if(arg_PRIVATE_NETWORK)
    list(PREPEND command ${BELUN_PRIVATE_NETWORK})
  endif()
  add_test(NAME ${arg_NAME} COMMAND ${command})
  belun_set_test_properties(${arg_NAME} ${arg_LABEL} "${arg_PRIVATE_NETWORK}")
endfunction()

# add_private_network_test(NAME system.Demo COMMAND <command line>)
# Adds a system test that is a separate program, such as a script.
function(add_private_network_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "COMMAND")
  add_test(NAME ${arg_NAME} COMMAND ${BELUN_PRIVATE_NETWORK} ${arg_COMMAND})
  belun_set_test_properties(${arg_NAME} system TRUE)
endfunction()
