# Packages by CPack: one .deb for each component that this build installs, or one archive of all.
# `./dev package` makes them at the places of a distribution.

set(CPACK_PACKAGE_NAME orvquerybuilder)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "The OrvQueryBuilder authors")
set(CPACK_PACKAGE_CONTACT "OrvQueryBuilder <orvquerybuilder@example.org>")
# Each package has a summary of its own below; CPack would put this one above it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_ORV_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/documents.cmake")

set(CPACK_GENERATOR TGZ)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
endif()
find_program(ORV_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(ORV_DPKG_SHLIBDEPS)
if(ORV_DPKG_SHLIBDEPS)
    set(CPACK_GENERATOR DEB)
endif()

get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)
# CMake knows this one once any rule exists; no file is in it.
list(REMOVE_ITEM CPACK_COMPONENTS_ALL Unspecified)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# It would go onto this machine instead of into the package.
set(CPACK_ERROR_ON_ABSOLUTE_INSTALL_DESTINATION ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# What is compiled against a minor version runs with it alone; see SOVERSION.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(library "liborvquerybuilder${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(same "(= ${PROJECT_VERSION})")

set(about
"OrvQueryBuilder is a control for Qt 6 Widgets in which a person puts a SQL
query together by mouse: tables are boxes whose columns are ticked, joins are
lines, and the control writes the statement. It loads statements as well.
.")

# orv_package(component name section depends description): the description's first line is its
# summary.
macro(orv_package component name section depends description)
    string(TOUPPER "${component}" orv_upper)
    set(CPACK_DEBIAN_${orv_upper}_PACKAGE_NAME "${name}")
    set(CPACK_DEBIAN_${orv_upper}_PACKAGE_SECTION "${section}")
    set(CPACK_DEBIAN_${orv_upper}_PACKAGE_DEPENDS "${depends}")
    set(CPACK_DEBIAN_${orv_upper}_DESCRIPTION "${description}")
endmacro()

orv_package(runtime "${library}" libs ""
"visual SQL query builder control for Qt 6 - library
${about}
This package has the shared library.")
orv_package(development liborvquerybuilder-dev libdevel
    "${library} ${same}, qt6-base-dev (>= ${ORV_QT_VERSION})"
"visual SQL query builder control for Qt 6 - development files
${about}
This package has the headers and the CMake package OrvQueryBuilder.")
orv_package(designer orvquerybuilder-designer devel "${library} ${same}"
"visual SQL query builder control for Qt 6 - Qt Designer plugin
${about}
With this package Qt Designer offers the control for forms, and programs load
such forms at run time.")
orv_package(application orvquery database "${library} ${same}, libqt6sql6-sqlite"
"visual SQL query builder for SQLite and other databases
With orvquery a person puts a query together by mouse: tables are boxes whose
columns are ticked, joins are lines, and conditions are edited in place. It
runs the query and shows its rows, in a window or from the command line, and
loads statements that someone wrote.")
orv_package(python python3-orvquerybuilder python
    "${library} ${same}, python3 (>= 3.9), python3-pyqt6"
"visual SQL query builder control for Qt 6 - Python bindings
${about}
This package has the bindings for Python 3 and PyQt 6.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
set(CPACK_DEBIAN_DESIGNER_PACKAGE_RECOMMENDS designer-qt6)
set(CPACK_DEBIAN_APPLICATION_PACKAGE_SUGGESTS
    "libqt6sql6-psql, libqt6sql6-mysql, libqt6sql6-odbc, libqt6sql6-ibase")

# A component without a package of its own here would get a name that nobody chose.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    if(NOT CPACK_DEBIAN_${upper}_PACKAGE_NAME)
        message(FATAL_ERROR "cmake/OrvPackages.cmake describes no package for ${component}")
    endif()
endforeach()

include(CPack)
