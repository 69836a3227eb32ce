# The tool tests run the built programs and load the preview plug-in. The test
# program defines the plug-in registration functions (through the library's
# host registry) and exports them so that the loaded plug-in calls them.
add_dependencies(test_apps paintdoc-cli paintdoc-preview paintdoc-examples)
set_target_properties(test_apps PROPERTIES ENABLE_EXPORTS ON)
target_compile_definitions(test_apps PRIVATE
  PAINTDOC_APPS_DIR="$<TARGET_FILE_DIR:paintdoc-cli>"
  PAINTDOC_PLUGIN_PATH="$<TARGET_FILE:paintdoc-preview>")
target_link_libraries(test_apps PRIVATE paintdoc_plugin_host paintdoc_plugin_entry_points)
# The helpers that run the built programs need their paths above, so they are
# compiled into this test program rather than into the shared support library.
target_sources(test_apps PRIVATE
  ${CMAKE_CURRENT_SOURCE_DIR}/support/apps/app_fixtures.cc
  ${CMAKE_CURRENT_SOURCE_DIR}/support/apps/program_runner.cc)
# The thumbnail cache's hash is checked against the RFC's test suite in process.
target_sources(test_apps PRIVATE ${PROJECT_SOURCE_DIR}/apps/md5.cc)
target_include_directories(test_apps PRIVATE ${PROJECT_SOURCE_DIR}/apps)
