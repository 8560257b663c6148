# belun_add_translations(<variable> <update target> <code> <file.ts>...)
#
# Compiles each catalogue source to a .qm in the build folder and lists the results in <variable>.
# lrelease writes the language of the source into a section of the .qm. This section is removed: nothing
# reads it, because a catalogue is chosen by its file name.
#
# The update target updates the sources from <code>, a pattern of file names. It is run by hand, never by a
# build, and removes no entry: lupdate marks entries that are not in the code as vanished, and lrelease
# would drop them. The target removes this mark, because an entry may have been added by hand.
function(belun_add_translations variable update code)
  set(with_language "${CMAKE_CURRENT_BINARY_DIR}/with_language")
  file(MAKE_DIRECTORY "${with_language}")
  set_source_files_properties(${ARGN} PROPERTIES OUTPUT_LOCATION "${with_language}")
  if(BELUN_QT_MAJOR EQUAL 5)
    qt5_add_translation(compiled ${ARGN})
  else()
    qt_add_translation(compiled ${ARGN})
  endif()
  set(catalogues)
  foreach(from IN LISTS compiled)
    get_filename_component(name "${from}" NAME)
    set(catalogue "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    set(script "${PROJECT_SOURCE_DIR}/cmake/DropLanguage.cmake")
    add_custom_command(OUTPUT "${catalogue}"
      COMMAND ${CMAKE_COMMAND} "-DFROM=${from}" "-DTO=${catalogue}" -P "${script}"
      DEPENDS "${from}" "${script}"
      COMMENT "Generating ${name} without its language section"
      VERBATIM)
    list(APPEND catalogues "${catalogue}")
  endforeach()
  set(${variable} ${catalogues} PARENT_SCOPE)

  set(sources ${ARGN})
  list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  add_custom_target(${update}
    COMMAND sh -c "exec \"$<TARGET_FILE:Qt${BELUN_QT_MAJOR}::lupdate>\" -locations none ${code} -ts \"$@\""
            ${update} ${sources}
    COMMAND sed -i "s/ type=\"vanished\"//" ${sources}
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    COMMENT "Updating the catalogue sources from ${code}"
    VERBATIM)
endfunction()
