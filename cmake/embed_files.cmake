# Makes files constants of a target: kiv::NAME() gives their bytes with their names, in the order of
# FILES. The target declares that function itself (util/embedded_text.h).
function(embed_files target name)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  set(script ${PROJECT_SOURCE_DIR}/cmake/write_embedded_files.cmake)
  add_custom_command(
    OUTPUT ${generated}
    COMMAND ${CMAKE_COMMAND} "-DFILES=${ARGN}" -DNAME=${name} -DOUTPUT=${generated} -P ${script}
    DEPENDS ${ARGN} ${script}
    VERBATIM)
  target_sources(${target} PRIVATE ${generated})
  # Its names for the files are those of every such source.
  set_source_files_properties(${generated} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# The same for the SQL files of a directory, in alphabetical order.
function(embed_sql target directory name)
  file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/*.sql)
  embed_files(${target} ${name} ${files})
endfunction()
