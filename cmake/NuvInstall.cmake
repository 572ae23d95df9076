# The installed package: find_package(NuvXMLUtils) gives Nuv::NuvXMLUtils, Nuv::InputOutput and Nuv::NuvRoot;
# pkg-config knows nuvxmlutils.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/NuvXMLUtils")
configure_package_config_file(cmake/NuvXMLUtilsConfig.cmake.in NuvXMLUtilsConfig.cmake
  INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file(NuvXMLUtilsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/NuvXMLUtilsConfig.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/NuvXMLUtilsConfigVersion.cmake"
  DESTINATION "${package_folder}"
  COMPONENT development)
install(EXPORT NuvXMLUtilsTargets NAMESPACE Nuv:: DESTINATION "${package_folder}" COMPONENT development)

# The file finds the prefix by its own place, wherever it is installed; but pkg-config passes over the folders of the
# system only where they are written out.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(pkg_config_prefix "/usr")
else()
  string(REGEX REPLACE "[^/]+" ".." pkg_config_prefix "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  string(PREPEND pkg_config_prefix "\${pcfiledir}/")
endif()
configure_file(cmake/nuvxmlutils.pc.in nuvxmlutils.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/nuvxmlutils.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
  COMPONENT development)
