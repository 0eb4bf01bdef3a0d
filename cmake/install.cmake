# What is installed, in three components: program (zurt, its pages, documents and examples), mpi (zurt-mpi, where it is built) and
# companions (the programs in Python). `cmake --install build/release` takes all of them; each becomes a package of Debian's, which
# debian.cmake makes from them.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(ZURT_PYTHON_FOLDER lib/python3/dist-packages) # below the prefix; Debian's Python looks into that of /usr
set(ZURT_MADE ${CMAKE_CURRENT_BINARY_DIR}/install)

file(GLOB ZURT_PAGES CONFIGURE_DEPENDS man/*.1)

# man/NAME.1 with the version in it.
function(zurt_install_page name component)
  if(NOT ${CMAKE_CURRENT_SOURCE_DIR}/man/${name}.1 IN_LIST ZURT_PAGES)
    message(WARNING "${name} has no page in man/")
    return()
  endif()
  configure_file(man/${name}.1 ${ZURT_MADE}/man/${name}.1 @ONLY)
  install(FILES ${ZURT_MADE}/man/${name}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

# The files by which bash completes the arguments of a program: each program has one of its own name, all are the same.
function(zurt_install_completion name component)
  install(FILES completion/zurt.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${name} COMPONENT ${component})
endfunction()

install(TARGETS zurt RUNTIME COMPONENT program)
zurt_install_page(zurt program)
zurt_install_completion(zurt program)
install(FILES completion/_zurt DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT program)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program
  PATTERN __pycache__ EXCLUDE)

if(ZURT_PETSC)
  install(TARGETS zurt-mpi RUNTIME COMPONENT mpi)
  zurt_install_page(zurt-mpi mpi)
  zurt_install_completion(zurt-mpi mpi)
endif()

# Programs of the source tree find their package beside their folder, installed ones below the prefix.
file(WRITE ${ZURT_MADE}/VERSION "${PROJECT_VERSION}\n")
file(GLOB ZURT_COMPANIONS CONFIGURE_DEPENDS companions/bin/zurt-*)
file(RELATIVE_PATH ZURT_PYTHON_FROM_PROGRAMS /${CMAKE_INSTALL_BINDIR} /${ZURT_PYTHON_FOLDER})
foreach(path ${ZURT_COMPANIONS})
  get_filename_component(name ${path} NAME)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
  file(READ ${path} text)
  string(REPLACE "os.path.realpath(__file__)), \"..\")" "os.path.realpath(__file__)), \"${ZURT_PYTHON_FROM_PROGRAMS}\")" installed "${text}")
  if(installed STREQUAL text)
    message(FATAL_ERROR "${path}: the path of its package is not where cmake/install.cmake looks for it")
  endif()
  file(WRITE ${ZURT_MADE}/bin/${name} "${installed}")
  install(PROGRAMS ${ZURT_MADE}/bin/${name} TYPE BIN COMPONENT companions)
  zurt_install_page(${name} companions)
  zurt_install_completion(${name} companions)
endforeach()
install(DIRECTORY companions/zurt DESTINATION ${ZURT_PYTHON_FOLDER} COMPONENT companions
  PATTERN __pycache__ EXCLUDE)
install(FILES ${ZURT_MADE}/VERSION DESTINATION ${ZURT_PYTHON_FOLDER}/zurt COMPONENT companions)
install(FILES companions/README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zurt-companions COMPONENT companions)

include(cmake/debian.cmake)
