# `cmake --install`: the tools, the preview plug-in, the library with its
# headers and pkg-config file, the freedesktop thumbnailer entry and the
# shared-mime-info type of paint documents.

install(TARGETS paintdoc ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# Headers that only the library's own sources include: the drawing primitives
# and cairo conversion behind GraphicsContext, the image decoding helpers behind
# the codecs, the property-list graph check and the archive's writer plumbing,
# the cairo path bridge and the exact float helpers of the geometry. A program
# that embeds the library gets every other header.
set(PAINTDOC_INTERNAL_HEADERS
  drawing_primitives.h cairo_conversion.h gaussian_blur.h image_decoding.h
  plist_graph_check.h archived_forms.h archive_object_writer.h
  cairo_path.h exact_float_arithmetic.h)
set(internal_patterns)
foreach(header ${PAINTDOC_INTERNAL_HEADERS})
  list(APPEND internal_patterns PATTERN ${header} EXCLUDE)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/paintdoc
  FILES_MATCHING PATTERN "*.h" ${internal_patterns})

# The pkg-config file finds the prefix from its own place, so that an install
# moved elsewhere (a package's staging directory, a scratch prefix) still works.
file(RELATIVE_PATH PAINTDOC_PC_TO_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/data/paintdoc.pc.in
  ${PROJECT_BINARY_DIR}/data/paintdoc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/data/paintdoc.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET paintdoc-cli)
  install(TARGETS paintdoc-cli paintdoc-preview-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS paintdoc-preview LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

  # The entry names the tool without a path: thumbnailers are found on PATH,
  # and the sandbox they run in shows all of /usr.
  install(FILES ${PROJECT_SOURCE_DIR}/data/paintdoc.thumbnailer
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
    execute_process(COMMAND \${PAINTDOC_UPDATE_MIME} \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/mime\"
                    RESULT_VARIABLE PAINTDOC_MIME_RESULT OUTPUT_QUIET ERROR_QUIET)
  endif()
")
