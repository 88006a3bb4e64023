# Puts the collector's tables into a source file.
file(READ ${TABLES} KORD_TABLES)
configure_file(${CMAKE_CURRENT_LIST_DIR}/tablesText.cpp.in ${TEXT} @ONLY)
