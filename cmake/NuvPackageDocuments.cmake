# Run by CPack when everything is staged: puts in each package what Debian wants in it.
set(permissions OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" key)
  set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share")
  set(documents "${root}/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME}")
  file(COPY "${CMAKE_CURRENT_LIST_DIR}/debian/copyright" DESTINATION "${documents}" FILE_PERMISSIONS ${permissions})
  configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in" "${documents}/changelog.Debian" @ONLY
    FILE_PERMISSIONS ${permissions})
  file(GLOB pages "${root}/man/*/*")
  execute_process(COMMAND gzip -9nf "${documents}/changelog.Debian" ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
