# The Debian packages, one an install component: the target "package" of the preset "packages" makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET nuvxml)
  list(APPEND CPACK_COMPONENTS_ALL nuvxml)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/NuvPackageDocuments.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/NuvPackageScripts.cmake")

set(CPACK_PACKAGE_CONTACT "NuvXMLUtils maintainers <nuvxmlutils@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Dependencies: on foreign libraries by what is linked, between the packages on the same version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  "${PROJECT_BINARY_DIR}/NuvRoot" "${PROJECT_BINARY_DIR}/InputOutput" "${PROJECT_BINARY_DIR}/NuvXMLUtils")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_NUVXML_DEPENDS runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libnuvxmlutils${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "XML services on top of Xerces-C++ (shared libraries)
NuvXMLUtils writes objects to XML and reads them back through channels that
know nothing of the DOM. It loads documents with the source line of every
node, prints them in any encoding, compares them with tolerances, and streams
them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnuvxmlutils-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libxerces-c-dev (>= 3.2)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libgmock-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "XML services on top of Xerces-C++ (development files)
NuvXMLUtils writes objects to XML and reads them back through channels that
know nothing of the DOM. It loads, prints, compares and streams documents.

This package has what programs are built with: headers, a CMake package and a
pkg-config file. The matchers for tests need GoogleMock.")

set(CPACK_DEBIAN_NUVXML_PACKAGE_NAME nuvxml)
set(CPACK_DEBIAN_NUVXML_PACKAGE_SECTION text)
set(CPACK_DEBIAN_NUVXML_DESCRIPTION "compare, print and validate XML documents
A tool for the command line that compares documents with tolerances, prints
them in any encoding and validates them, on top of the NuvXMLUtils library.")

include(CPack)
