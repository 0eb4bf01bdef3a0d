# Run by CPack when the components lie in folders of their own, before they are packed: the files of a Debian package that
# `cmake --install` leaves out, and pages compressed. Working variables are CPack's.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The date of the version's heading in CHANGELOG.md, as changelogs of packages have it.
file(STRINGS ${CPACK_ZURT_SOURCES}/CHANGELOG.md heading REGEX "^## ${CPACK_PACKAGE_VERSION} ")
if(NOT heading MATCHES "([0-9]+-[0-9]+-[0-9]+)\\)$")
  message(FATAL_ERROR "CHANGELOG.md has no heading '## ${CPACK_PACKAGE_VERSION} (...)'")
endif()
execute_process(COMMAND date -u -R -d ${CMAKE_MATCH_1} OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

foreach(component ${CPACK_COMPONENTS_ALL})
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  if(NOT IS_DIRECTORY ${root})
    continue()
  endif()
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(documents ${root}/share/doc/${package})
  file(MAKE_DIRECTORY ${documents})
  file(COPY ${CPACK_ZURT_SOURCES}/cmake/copyright DESTINATION ${documents})
  file(WRITE ${documents}/changelog.Debian
    "${package} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
    "  * Version ${CPACK_PACKAGE_VERSION}: see changelog.gz.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  configure_file(${CPACK_ZURT_SOURCES}/CHANGELOG.md ${documents}/changelog COPYONLY)
  file(GLOB compressed ${documents}/changelog* ${root}/share/man/man1/*)
  run(gzip -9nf ${compressed})
  run(chmod -R u=rwX,go=rX ${root})
  # Debian's zsh looks for what packages bring in another folder than for the administrator's.
  if(IS_DIRECTORY ${root}/share/zsh/site-functions)
    file(RENAME ${root}/share/zsh/site-functions ${root}/share/zsh/vendor-completions)
  endif()
  if(EXISTS ${CPACK_ZURT_SOURCES}/cmake/lintian/${package})
    file(COPY ${CPACK_ZURT_SOURCES}/cmake/lintian/${package} DESTINATION ${root}/share/lintian/overrides)
  endif()
endforeach()
