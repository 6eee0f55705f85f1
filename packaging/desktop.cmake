# What a desktop and a shell of Unix know of the program: its entry in the menus with its icon, the
# type of its files, its manual page, and the completion of its command line.

set(packaging "${PROJECT_SOURCE_DIR}/packaging")
configure_file("${packaging}/orvquery.1.in" "${PROJECT_BINARY_DIR}/packaging/orvquery.1" @ONLY)
set(manual "${PROJECT_BINARY_DIR}/packaging/orvquery.1")
# Debian wants it compressed, without the time at which that was done.
find_program(ORV_GZIP gzip)
mark_as_advanced(ORV_GZIP)
if(ORV_GZIP)
    execute_process(COMMAND "${ORV_GZIP}" -9nkf "${manual}" COMMAND_ERROR_IS_FATAL ANY)
    string(APPEND manual .gz)
endif()

install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT application)
install(FILES "${packaging}/orvquery.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT application)
install(FILES "${PROJECT_SOURCE_DIR}/app/icons/orvquery.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT application)
install(FILES "${PROJECT_SOURCE_DIR}/app/icons/orvquery.svg"
    RENAME application-x-orvquery+json.svg
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/mimetypes" COMPONENT application)
install(FILES "${packaging}/orvquery-mime.xml" RENAME orvquery.xml
    DESTINATION "${CMAKE_INSTALL_DATADIR}/mime/packages" COMPONENT application)
install(FILES "${packaging}/completion/orvquery.bash" RENAME orvquery
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT application)
install(FILES "${packaging}/completion/_orvquery"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT application)
install(FILES "${packaging}/completion/orvquery.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT application)
