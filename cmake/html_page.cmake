# Puts the page of `kivdb html` together from the files of a directory and makes it a constant of a
# target: kiv::NAME() gives one text, the whole page but for @TITLE@ and @DATA@. SCRIPTS become one
# script, in the order given. What draws the pictures comes from Debian's package node-d3.
function(html_page target name directory)
  cmake_parse_arguments(page "" "" "SCRIPTS" ${ARGN})
  find_file(D3_SCRIPT d3.min.js PATHS /usr/share/nodejs/d3/dist NO_DEFAULT_PATH)
  find_file(D3_LICENCE copyright PATHS /usr/share/doc/node-d3 NO_DEFAULT_PATH)
  if(NOT D3_SCRIPT OR NOT D3_LICENCE)
    message(FATAL_ERROR "d3.min.js or its licence was not found: install the package node-d3 "
                        "(scripts/setup.sh build), or set D3_SCRIPT and D3_LICENCE to the files")
  endif()
  list(TRANSFORM page_SCRIPTS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/)
  set(skeleton ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/page.html)
  set(style ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/page.css)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${name}.html)
  set(script ${PROJECT_SOURCE_DIR}/cmake/write_html_page.cmake)
  add_custom_command(
    OUTPUT ${generated}
    COMMAND ${CMAKE_COMMAND} -DSKELETON=${skeleton} -DSTYLE=${style} "-DSCRIPTS=${page_SCRIPTS}"
            -DD3_SCRIPT=${D3_SCRIPT} -DD3_LICENCE=${D3_LICENCE} -DOUTPUT=${generated} -P ${script}
    DEPENDS ${skeleton} ${style} ${page_SCRIPTS} ${D3_SCRIPT} ${D3_LICENCE} ${script}
    VERBATIM)
  embed_files(${target} ${name} ${generated})
endfunction()
