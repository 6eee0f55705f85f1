# What `cmake --install` copies of the library, and the CMake package that finds it. The components:
# runtime, development; application, designer and python bring their own rules.

include(CMakePackageConfigHelpers)

set(ORV_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/OrvQueryBuilder")

install(TARGETS orvquerybuilder
    EXPORT OrvQueryBuilderTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/orvquerybuilder"
    COMPONENT runtime)

# They are written when they are installed, so that they are those of the library beside them.
install(CODE "
    include(\"${PROJECT_SOURCE_DIR}/cmake/OrvHeaders.cmake\")
    orv_write_headers(\"${PROJECT_SOURCE_DIR}\" \"${PROJECT_BINARY_DIR}/headers\" headers)"
    COMPONENT development)
install(DIRECTORY "${PROJECT_BINARY_DIR}/headers/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    COMPONENT development)

install(EXPORT OrvQueryBuilderTargets
    NAMESPACE Orv::
    DESTINATION "${ORV_PACKAGE_DIR}"
    COMPONENT development)

set(ORV_PROGRAM "${CMAKE_INSTALL_BINDIR}/orvquery${CMAKE_EXECUTABLE_SUFFIX}")
set(ORV_DESIGNER_PLUGIN "${CMAKE_INSTALL_LIBDIR}/qt6/plugins/designer")
if(ORV_DESIGNER_PLUGIN_DIR)
    set(ORV_DESIGNER_PLUGIN "${ORV_DESIGNER_PLUGIN_DIR}")
endif()
string(APPEND ORV_DESIGNER_PLUGIN
    "/${CMAKE_SHARED_MODULE_PREFIX}orvquerybuilderplugin${CMAKE_SHARED_MODULE_SUFFIX}")
# Where the bindings are left out here, another build may have installed them at their usual place.
set(ORV_PYTHON_PACKAGE "lib/python3/dist-packages")
if(ORV_PYTHON_INSTALL_DIR)
    set(ORV_PYTHON_PACKAGE "${ORV_PYTHON_INSTALL_DIR}")
endif()
string(APPEND ORV_PYTHON_PACKAGE "/orvquerybuilder/__init__.py")
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/OrvQueryBuilderConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/OrvQueryBuilderConfig.cmake"
    INSTALL_DESTINATION "${ORV_PACKAGE_DIR}"
    PATH_VARS ORV_PROGRAM ORV_DESIGNER_PLUGIN ORV_PYTHON_PACKAGE
    NO_CHECK_REQUIRED_COMPONENTS_MACRO
    NO_SET_AND_CHECK_MACRO)
# What a host was written against stays until the next major version.
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/OrvQueryBuilderConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/OrvQueryBuilderConfig.cmake"
    "${PROJECT_BINARY_DIR}/OrvQueryBuilderConfigVersion.cmake"
    DESTINATION "${ORV_PACKAGE_DIR}"
    COMPONENT development)
