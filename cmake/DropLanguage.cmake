# cmake -DFROM=<file.qm> -DTO=<file.qm> -P DropLanguage.cmake
#
# Copies a compiled catalogue without its language section, which follows the 16-byte magic number: tag A7,
# the length 5 in four bytes, and a name such as zh_CN. Fails if there is no such section.
cmake_minimum_required(VERSION 3.22)

set(magic 3cb86418caef9c95cd211cbf60a1bddd)
file(READ "${FROM}" start LIMIT 26 HEX)
string(LENGTH "${start}" digits)
if(NOT digits EQUAL 52 OR NOT start MATCHES "^${magic}a700000005")
  message(FATAL_ERROR "${FROM}: no language section after the magic number")
endif()

# CMake's file() cannot write NUL bytes.
execute_process(
  COMMAND sh -c [[head -c 16 "$1" && tail -c +27 "$1"]] sh "${FROM}"
  OUTPUT_FILE "${TO}"
  COMMAND_ERROR_IS_FATAL ANY)
