# The program zurt-mpi: the objects of zurt, but for those that know of one process and of its solvers. Its own objects define
# the same names and stand first, so that the linker takes nothing of core/ranks.cpp and solver/linear_system.cpp out of the
# library, nor what only these call: PETSc's MUMPS must not meet the sequential one, whose names are the same.

find_package(MPI REQUIRED COMPONENTS CXX)
find_package(PkgConfig REQUIRED)
# Debian's is found by its alternatives; PETSC_DIR and PETSC_ARCH name others.
if(DEFINED ENV{PETSC_DIR})
  set(ENV{PKG_CONFIG_PATH} "$ENV{PETSC_DIR}/$ENV{PETSC_ARCH}/lib/pkgconfig:$ENV{PETSC_DIR}/lib/pkgconfig:$ENV{PKG_CONFIG_PATH}")
endif()
pkg_check_modules(ZURT_PETSC_LIBRARY REQUIRED PETSc>=3.17)

add_executable(zurt-mpi ${ZURT_MPI_SOURCES})
add_dependencies(zurt-mpi zurt_library)
target_include_directories(zurt-mpi PRIVATE src)
target_include_directories(zurt-mpi SYSTEM PRIVATE ${ZURT_PETSC_LIBRARY_INCLUDE_DIRS})
target_compile_definitions(zurt-mpi PRIVATE OMPI_SKIP_MPICXX MPICH_SKIP_MPICXX)
target_link_libraries(zurt-mpi PRIVATE zurt_options zurt_instrumented $<TARGET_FILE:zurt_library>
  ${ZURT_PETSC_LIBRARY_LINK_LIBRARIES} MPI::MPI_CXX Threads::Threads ${ZURT_ZLIB}
  "-Wl,-rpath,${ZURT_OPENBLAS_FOLDER},--push-state,--no-as-needed,${ZURT_OPENBLAS},--pop-state")
