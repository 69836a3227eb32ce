# `cmake --install`: the tools, the preview plug-in, the library with its
# headers and pkg-config file, the freedesktop thumbnailer entry and the
# shared-mime-info type of paint documents.

install(TARGETS paintdoc ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/paintdoc
  FILES_MATCHING PATTERN "*.h")

configure_file(${PROJECT_SOURCE_DIR}/data/paintdoc.pc.in
  ${PROJECT_BINARY_DIR}/data/paintdoc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/data/paintdoc.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET paintdoc-cli)
  install(TARGETS paintdoc-cli paintdoc-preview-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS paintdoc-preview LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

  configure_file(${PROJECT_SOURCE_DIR}/data/paintdoc.thumbnailer.in
    ${PROJECT_BINARY_DIR}/data/paintdoc.thumbnailer @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/data/paintdoc.thumbnailer
    DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/data/paintdoc-mime.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
  RENAME paintdoc.xml)

# Refresh the MIME database when installing straight into a prefix (package
# builds with DESTDIR leave that to the package manager's triggers).
install(CODE "
  find_program(PAINTDOC_UPDATE_MIME update-mime-database)
  if(PAINTDOC_UPDATE_MIME AND \"\$ENV{DESTDIR}\" STREQUAL \"\")
    execute_process(COMMAND \${PAINTDOC_UPDATE_MIME} \"${CMAKE_INSTALL_FULL_DATADIR}/mime\"
                    RESULT_VARIABLE PAINTDOC_MIME_RESULT OUTPUT_QUIET ERROR_QUIET)
  endif()
")
