# MUMPS (sequential, with 32-bit integers for orders of matrices), and SCOTCH with 64-bit integers for the
# order of elimination, as archives that go in hidden. MUMPS' calls of BLAS, exit and rand get names of the
# core's (symbols.txt): the kernel library beside it has the same names with 64-bit integers.
set(parts smumps dmumps cmumps zmumps mumps_common pord mpiseq)
set(directory ${CMAKE_CURRENT_BINARY_DIR}/mumps)
file(MAKE_DIRECTORY ${directory})
set(XKL_MUMPS_ARCHIVES)
foreach(part ${parts})
  string(TOUPPER ${part} upper)
  find_library(XKL_MUMPS_${upper} lib${part}_64pord_seq.a
      DOC "Static sequential MUMPS (Debian: libmumps64-seq-dev)")
  if(NOT XKL_MUMPS_${upper})
    message(FATAL_ERROR "lib${part}_64pord_seq.a not found. On Debian: apt-get install libmumps64-seq-dev; "
                        "elsewhere set XKL_MUMPS_${upper} to that part of a static sequential MUMPS.")
  endif()
  add_custom_command(OUTPUT ${directory}/lib${part}.a
    COMMAND ${CMAKE_OBJCOPY} --redefine-syms=${CMAKE_CURRENT_SOURCE_DIR}/solvers/mumps/symbols.txt
            ${XKL_MUMPS_${upper}} ${directory}/lib${part}.a
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/solvers/mumps/symbols.txt ${XKL_MUMPS_${upper}}
    COMMENT "Names of BLAS in lib${part}"
    VERBATIM)
  list(APPEND XKL_MUMPS_ARCHIVES ${directory}/lib${part}.a)
endforeach()
add_custom_target(xkl_mumps_archives DEPENDS ${XKL_MUMPS_ARCHIVES})

find_path(XKL_MUMPS_INCLUDE dmumps_c.h DOC "Headers of MUMPS")
find_library(XKL_SCOTCH libscotch.a PATH_SUFFIXES scotch-int64
    DOC "Static SCOTCH with 64-bit integers (Debian: libscotch-dev)")
find_path(XKL_SCOTCH_INCLUDE scotch.h PATH_SUFFIXES scotch-int64
    DOC "Headers of SCOTCH with 64-bit integers")
foreach(needed SCOTCH MUMPS_INCLUDE SCOTCH_INCLUDE)
  if(NOT XKL_${needed})
    message(FATAL_ERROR "XKL_${needed} not found. On Debian: apt-get install libmumps64-seq-dev libscotch-dev")
  endif()
endforeach()
