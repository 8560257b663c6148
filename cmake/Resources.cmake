# belun_add_resources(<target> <collection> <catalogues> [<file>...])
#
# Compiles the resource collection <collection>.qrc into an object library. The paths in it are relative
# to the build folder, which has the catalogues of belun_add_translations and copies of the other files:
# Qt's functions do not escape an absolute path, in which an ampersand is no valid XML.
function(belun_add_resources target collection catalogues)
  foreach(file ${collection}.qrc ${ARGN})
    configure_file("${file}" "${CMAKE_CURRENT_BINARY_DIR}/${file}" COPYONLY)
  endforeach()

  # Format 1 contains no file times, so that builds are reproducible.
  set(collection_file "${CMAKE_CURRENT_BINARY_DIR}/${collection}.qrc")
  if(BELUN_QT_MAJOR EQUAL 5)
    qt5_add_resources(compiled "${collection_file}" OPTIONS --format-version 1)
  else()
    qt_add_resources(compiled "${collection_file}" OPTIONS --format-version 1)
  endif()

  # An object library, not an archive: the linker would drop an archive's members, because nothing
  # refers to them, and the window's paths must be valid before main.
  add_library(${target} OBJECT ${compiled} ${catalogues})
  target_link_libraries(${target} PRIVATE Qt::Core)
endfunction()
