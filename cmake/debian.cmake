# Packages of Debian's by CPack (`./setup packages`): zurt, zurt-mpi where it is built, and
# zurt-companions. They come to build/packages of the source tree; debian_files.cmake brings in what Debian alone wants.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zurt)
set(CPACK_PACKAGE_VENDOR "ZUR-T developers")
set(CPACK_PACKAGE_CONTACT "ZUR-T developers <zurt@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_OUTPUT_FILE_PREFIX ${CMAKE_CURRENT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_ZURT_SOURCES ${CMAKE_CURRENT_SOURCE_DIR})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program companions)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME zurt)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
# The program has this BLAS's folder in its search path, whatever the machine's default is: others sum in another order.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS libopenblas0-serial)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "zurt-companions, paraview")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "nonlinear, transient diffusion by finite elements
A batch program: it reads a text deck with a mesh of lines, quadrilaterals
and bricks, materials whose coefficients depend on the concentration, sources,
surface fluxes, convection and radiation, advances in time by Euler backward,
and writes a listing, a universal file and files for ParaView. Nanochannels,
fibres that are not meshed, and homogenization. Manual and examples are in
/usr/share/doc/zurt.")

set(CPACK_DEBIAN_COMPANIONS_PACKAGE_NAME zurt-companions)
set(CPACK_DEBIAN_COMPANIONS_PACKAGE_ARCHITECTURE all)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS companions/libraries)
file(STRINGS companions/libraries ZURT_LIBRARIES)
list(JOIN ZURT_LIBRARIES ", " ZURT_LIBRARIES)
set(CPACK_DEBIAN_COMPANIONS_PACKAGE_DEPENDS "zurt (>= ${PROJECT_VERSION}), python3 (>= 3.11), ${ZURT_LIBRARIES}")
set(CPACK_DEBIAN_COMPANIONS_PACKAGE_CONTROL_EXTRA
  "${CMAKE_CURRENT_SOURCE_DIR}/cmake/companions/postinst;${CMAKE_CURRENT_SOURCE_DIR}/cmake/companions/prerm")
set(CPACK_DEBIAN_COMPANIONS_DESCRIPTION "from a mesh to a deck of zurt, from a run to a report
Programs beside zurt: zurt-deck writes a deck from a mesh and a job file,
zurt-fibres makes sets of fibres, zurt-report writes a page about a run,
zurt-convert turns older results into files for ParaView. The package zurt of
Python runs decks and reads what they write.")

if(ZURT_PETSC)
  list(APPEND CPACK_COMPONENTS_ALL mpi)
  set(CPACK_DEBIAN_MPI_PACKAGE_NAME zurt-mpi)
  set(CPACK_DEBIAN_MPI_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_MPI_PACKAGE_DEPENDS "zurt (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), openmpi-bin, libopenblas0-serial")
  set(CPACK_DEBIAN_MPI_DESCRIPTION "zurt on several processes
One problem of zurt's on several processes and nodes, its linear systems solved
by PETSc over MPI. See /usr/share/doc/zurt/docs/cluster.md.")
endif()
include(CPack)
