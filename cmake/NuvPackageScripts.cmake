# Run by CPack when the packages are made. CPack gives a package with libraries scripts that call ldconfig; its trigger
# does that already, and a package without scripts can be installed below any root.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(unpacked "${CPACK_TEMPORARY_DIRECTORY}/unpacked")
  execute_process(COMMAND dpkg-deb --raw-extract "${package}" "${unpacked}" COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS "${unpacked}/DEBIAN/triggers")
    file(REMOVE "${unpacked}/DEBIAN/postinst" "${unpacked}/DEBIAN/postrm")
    execute_process(COMMAND dpkg-deb --root-owner-group --build "${unpacked}" "${package}"
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE "${unpacked}")
endforeach()
