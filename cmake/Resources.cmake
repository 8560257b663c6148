# belun_add_resources(<target> <collection> <catalogues> [<file>...])
#
# Compiles the resource collection <collection>.qrc into an object library. The paths in it are relative
# to the build folder, which contains the catalogues of belun_add_translations and copies of the other
# files. They are not absolute because Qt's functions do not escape them: an ampersand in a path would make
# the XML invalid.
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

  # An object library, not an archive: nothing refers to the members, so the linker would drop them from an
  # archive; and the resources must be registered before main() runs.
  add_library(${target} OBJECT ${compiled} ${catalogues})
  target_link_libraries(${target} PRIVATE Qt::Core)
endfunction()
