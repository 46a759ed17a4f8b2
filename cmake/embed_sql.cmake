# Makes the SQL files of a directory string constants of a target: kiv::NAME() gives them with their
# names, in alphabetical order. The target declares that function itself (util/embedded_text.h).
function(embed_sql target directory name)
  file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/*.sql)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  set(script ${PROJECT_SOURCE_DIR}/cmake/write_embedded_sql.cmake)
  add_custom_command(
    OUTPUT ${generated}
    COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DNAME=${name} -DOUTPUT=${generated} -P ${script}
    DEPENDS ${files} ${script}
    VERBATIM)
  target_sources(${target} PRIVATE ${generated})
endfunction()
