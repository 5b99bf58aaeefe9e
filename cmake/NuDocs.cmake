# The API reference: `cmake --build <build dir> --target docs` writes <build dir>/docs/html.
# Doxygen reads the headers only, so the target needs no library build; it is not part of ALL,
# and any warning (an undocumented public member among them) fails it.
set(NU_DOCS_OUTPUT_DIR ${PROJECT_BINARY_DIR}/docs)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${NU_DOCS_OUTPUT_DIR}/Doxyfile @ONLY)
add_custom_target(docs
  COMMAND Doxygen::doxygen ${NU_DOCS_OUTPUT_DIR}/Doxyfile
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  COMMENT "API reference into ${NU_DOCS_OUTPUT_DIR}/html/index.html"
  VERBATIM)
