# -DBELUN_SANITIZE=address,undefined (or thread) instruments all our targets.
#
# BELUN_SANITIZER_ENVIRONMENT contains the run-time options as environment variables. Every test gets them
# and passes them on to the programs that it starts.
set(BELUN_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas")

set(BELUN_SANITIZER_ENVIRONMENT)
# Instrumented code is slower: CTest's time limits and the limits checked by tests are multiplied by
# this factor.
set(BELUN_TIME_FACTOR 1)
if(BELUN_SANITIZE)
  target_compile_options(project_options INTERFACE
    -fsanitize=${BELUN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(project_options INTERFACE -fsanitize=${BELUN_SANITIZE})

  set(suppressions "${PROJECT_SOURCE_DIR}/cmake/sanitizers")
  # ignore_noninstrumented_modules: the sanitizer does not see Qt's locks and atomics, so accesses that
  # they protect must be ignored as well.
  # halt_on_error: a race ends the program at once, so that it is noticed even in a program that is later
  # killed by its test.
  set(BELUN_TIME_FACTOR 6)
  set(BELUN_SANITIZER_ENVIRONMENT
    "BELUN_TIME_FACTOR=${BELUN_TIME_FACTOR}"
    "ASAN_OPTIONS=detect_stack_use_after_return=1"
    "LSAN_OPTIONS=print_suppressions=0:suppressions='${suppressions}/lsan.supp'"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=ignore_noninstrumented_modules=1:halt_on_error=1:suppressions='${suppressions}/tsan.supp'")
endif()

if(BELUN_SANITIZE MATCHES "thread")
  # Links QtThreads.cpp, which explains why, into every target that links Qt.
  set(qt_core "Qt${BELUN_QT_MAJOR}::Core")
  add_library(qt_threads STATIC "${PROJECT_SOURCE_DIR}/cmake/sanitizers/QtThreads.cpp")
  target_include_directories(qt_threads SYSTEM PRIVATE
    $<TARGET_PROPERTY:${qt_core},INTERFACE_INCLUDE_DIRECTORIES>)
  target_compile_options(qt_threads PRIVATE -fPIC)
  target_link_libraries(${qt_core} INTERFACE qt_threads)
  foreach(symbol _ZN7QThread5startENS_8PriorityE _ZN7QThread4waitEm
                 _ZN7QThread4waitE14QDeadlineTimer)
    target_link_options(${qt_core} INTERFACE "LINKER:--wrap=${symbol}")
  endforeach()
endif()

# The environment for tests on a display: only the slow unwinder attributes leaks of the xcb plugin to that
# plugin. All other tests use the fast unwinder, because the slow one makes them eight times slower.
set(BELUN_DISPLAY_ENVIRONMENT ${BELUN_SANITIZER_ENVIRONMENT})
list(TRANSFORM BELUN_DISPLAY_ENVIRONMENT
  REPLACE "^ASAN_OPTIONS=" "ASAN_OPTIONS=fast_unwind_on_malloc=0:")

# Writes the variables to a file, one per line, for programs that CTest does not start.
list(JOIN BELUN_SANITIZER_ENVIRONMENT "\n" lines)
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/test-environment" CONTENT "${lines}\n" @ONLY)
