# The API reference, by Doxygen: BUILD/reference/html/index.html.
configure_file(cmake/Doxyfile.in Doxyfile @ONLY)
add_custom_target(docs COMMAND doxygen ${PROJECT_BINARY_DIR}/Doxyfile COMMENT "Writing the API reference" VERBATIM)
