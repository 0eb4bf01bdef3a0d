# The target zurt_mumps: MUMPS in its sequential form, its one-process message passing layer, and a serial optimised
# BLAS. MUMPS itself asks for whatever BLAS is the machine's default, perhaps a slow or a threaded one. So the program
# needs the BLAS of its own accord, though it calls none: libraries that the program itself needs come first when
# names are looked up, and its folder stands in the program's search path.

function(zurt_find_solver_part variable kind name what)
  if(kind STREQUAL "library")
    find_library(${variable} NAMES ${name} PATH_SUFFIXES ${ARGN})
  else()
    find_path(${variable} NAMES ${name} PATH_SUFFIXES ${ARGN})
  endif()
  mark_as_advanced(${variable})
  if(NOT ${variable})
    message(FATAL_ERROR "${name} was not found: ${what}. On Debian and its kin ./setup installs what is missing "
      "(libmumps-seq-dev, libopenblas-serial-dev); elsewhere set ${variable}.")
  endif()
endfunction()

zurt_find_solver_part(ZURT_MUMPS_INCLUDE header dmumps_c.h "the C interface of MUMPS")
zurt_find_solver_part(ZURT_MUMPS_SEQ_INCLUDE header mumps_seq/mpi.h "the one-process message passing layer of MUMPS")
zurt_find_solver_part(ZURT_DMUMPS_SEQ library dmumps_seq "sequential MUMPS in double precision")
zurt_find_solver_part(ZURT_MPISEQ library mpiseq_seq "the one-process message passing layer of MUMPS")
zurt_find_solver_part(ZURT_OPENBLAS library openblas "an optimised BLAS" openblas-serial)

add_library(zurt_mumps INTERFACE)
target_include_directories(zurt_mumps SYSTEM INTERFACE ${ZURT_MUMPS_INCLUDE} ${ZURT_MUMPS_SEQ_INCLUDE}/mumps_seq)
get_filename_component(ZURT_OPENBLAS_FOLDER ${ZURT_OPENBLAS} DIRECTORY)
target_link_libraries(zurt_mumps INTERFACE ${ZURT_DMUMPS_SEQ} ${ZURT_MPISEQ}
  "-Wl,-rpath,${ZURT_OPENBLAS_FOLDER},--push-state,--no-as-needed,${ZURT_OPENBLAS},--pop-state")
