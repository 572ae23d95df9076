# nuv_add_module(<name> HEADERS <public>... SOURCES <file>... [PUBLIC_LIBRARIES ...] [PRIVATE_LIBRARIES ...])
#
# One module of the product: the shared library lib<name>.so, built from the folder of the same name, known as
# Nuv::<name> in the build tree and when installed. Only what its export macro marks is visible.
function(nuv_add_module name)
  cmake_parse_arguments(PARSE_ARGV 1 module "" "" "HEADERS;SOURCES;PUBLIC_LIBRARIES;PRIVATE_LIBRARIES")
  set(include_root "${PROJECT_SOURCE_DIR}")
  if(NUV_HAS_HOST_MODULES) # their headers are found, and not those of the portable editions beside this module
    set(include_root "${PROJECT_BINARY_DIR}/include/${name}")
    file(MAKE_DIRECTORY "${include_root}")
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${include_root}/${name}" SYMBOLIC)
    list(TRANSFORM module_HEADERS PREPEND "${include_root}/${name}/")
  endif()
  add_library(${name} SHARED ${module_SOURCES})
  add_library(Nuv::${name} ALIAS ${name})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${include_root}" FILES ${module_HEADERS})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_link_libraries(${name} PUBLIC ${module_PUBLIC_LIBRARIES} PRIVATE ${module_PRIVATE_LIBRARIES} nuv_options)
  # Calls within the module are direct: nobody replaces its functions by others of the same name.
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions)
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN")
  if(NOT NUV_SANITIZE) # whose run-time library is linked to programs only
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
  install(TARGETS ${name}
    EXPORT NuvXMLUtilsTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
endfunction()
