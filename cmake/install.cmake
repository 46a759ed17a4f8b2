# What an installation has besides the programs: manual pages, completions, documents, samples.
find_program(GZIP gzip REQUIRED)

set(manual_pages)
foreach(program kiv kivdb kivconvert)
  set(page ${PROJECT_BINARY_DIR}/docs/${program}.1)
  configure_file(docs/${program}.1.in ${page} @ONLY)
  add_custom_command(OUTPUT ${page}.gz DEPENDS ${page}
    COMMAND ${GZIP} -9nkf ${page} VERBATIM)
  list(APPEND manual_pages ${page}.gz)
  install(FILES completions/${program}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endforeach()
add_custom_target(manual_pages ALL DEPENDS ${manual_pages})
install(FILES ${manual_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Where it is installed, the library is found beside its description.
file(RELATIVE_PATH KIVTRACE_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/kivtrace.pc.in ${PROJECT_BINARY_DIR}/kivtrace.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kivtrace.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# README.md names the documents as docs/...
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
if(KIV_DATABASE)
  install(FILES ${D3_LICENCE} DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright.d3)
endif()
file(GLOB documents CONFIGURE_DEPENDS docs/*.md docs/*.png)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

# Data that README.md works on, so not below doc/, which small systems leave out.
install(DIRECTORY samples DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}
        FILES_MATCHING PATTERN "*.kivhdr" PATTERN "*.kivdat" PATTERN "*.zst" PATTERN "*.c")
