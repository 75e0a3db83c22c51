# The routine tables, and how files are made from them.

set(XKL_SERVICE_TABLES ${PROJECT_SOURCE_DIR}/src/service/service.tbl)
set(XKL_BLAS_TABLE_NAMES level1 sparse1 level2 level3 batch extensions)
list(TRANSFORM XKL_BLAS_TABLE_NAMES PREPEND ${PROJECT_SOURCE_DIR}/src/blas/ OUTPUT_VARIABLE XKL_BLAS_TABLES)
list(TRANSFORM XKL_BLAS_TABLES APPEND .tbl)
set(XKL_LAPACK_TABLE_NAMES
    general symmetric triangular orthogonal auxiliary functions matgen deprecated extensions)
list(TRANSFORM XKL_LAPACK_TABLE_NAMES PREPEND ${PROJECT_SOURCE_DIR}/src/lapack/ OUTPUT_VARIABLE XKL_LAPACK_TABLES)
list(TRANSFORM XKL_LAPACK_TABLES APPEND .tbl)
set(XKL_LAPACKE_HELPERS ${PROJECT_SOURCE_DIR}/src/lapacke/helpers.tbl)
set(XKL_LAPACKE_TABLE_NAMES
    linear_general linear_positive linear_symmetric linear_triangular conversion least_squares
    eigen_symmetric eigen_tridiagonal eigen_general singular_values auxiliary extensions)
list(TRANSFORM XKL_LAPACKE_TABLE_NAMES PREPEND ${PROJECT_SOURCE_DIR}/src/lapacke/ OUTPUT_VARIABLE XKL_LAPACKE_TABLES)
list(TRANSFORM XKL_LAPACKE_TABLES APPEND .tbl)
# What their routines stand on: ?ROT is one of BLAS.
set(XKL_LAPACKE_BASE_TABLES ${PROJECT_SOURCE_DIR}/src/blas/level1.tbl ${XKL_LAPACK_TABLES})
set(XKL_MATCOPY_TABLE_NAMES matcopy)
set(XKL_MATCOPY_TABLES ${PROJECT_SOURCE_DIR}/src/matcopy/matcopy.tbl)
set(XKL_DFTI_TABLE_NAMES interface fortran entries)
list(TRANSFORM XKL_DFTI_TABLE_NAMES PREPEND ${PROJECT_SOURCE_DIR}/src/dfti/ OUTPUT_VARIABLE XKL_DFTI_TABLES)
list(TRANSFORM XKL_DFTI_TABLES APPEND .tbl)
list(APPEND XKL_DFTI_TABLES ${PROJECT_SOURCE_DIR}/src/fftw/entries.tbl)
set(XKL_CBLAS_SHAPES ${PROJECT_SOURCE_DIR}/src/cblas/cblas.tbl)
set(XKL_SPBLAS_TABLES ${PROJECT_SOURCE_DIR}/src/spblas/spblas.tbl)
set(XKL_INSPECTOR_TABLES ${PROJECT_SOURCE_DIR}/src/inspector/inspector.tbl)
set(XKL_SOLVERS_TABLES ${PROJECT_SOURCE_DIR}/src/solvers/solvers.tbl)
set(XKL_RCI_TABLES ${PROJECT_SOURCE_DIR}/src/rci/rci.tbl)
foreach(family spblas inspector solvers rci)
  string(TOUPPER ${family} upper)
  set(XKL_${upper}_TABLE_NAMES ${family})
endforeach()
set(XKL_VML_TABLE ${PROJECT_SOURCE_DIR}/src/vml/vml.tbl)
set(XKL_VML_SETTINGS ${PROJECT_SOURCE_DIR}/src/vml/settings.tbl)
set(XKL_VML_LOADER ${PROJECT_SOURCE_DIR}/src/vml/loader.tbl)
set(XKL_VML_ERRORS ${PROJECT_SOURCE_DIR}/kernels/accuracy.tbl)
set(XKL_FFTW_TABLE ${PROJECT_SOURCE_DIR}/src/fftw/fftw.tbl)

set(XKL_VSL_TABLE_NAMES generators streams tasks)
list(TRANSFORM XKL_VSL_TABLE_NAMES PREPEND ${PROJECT_SOURCE_DIR}/src/vsl/ OUTPUT_VARIABLE XKL_VSL_TABLES)
list(TRANSFORM XKL_VSL_TABLES APPEND .tbl)
set(XKL_CONV_TABLES ${PROJECT_SOURCE_DIR}/src/vsl/entries.tbl) # of the core

# For ./dev, which reads no CMake.
foreach(family SERVICE BLAS DFTI LAPACK LAPACKE LAPACKE_BASE MATCOPY VSL SPBLAS INSPECTOR SOLVERS RCI)
  string(JOIN " " tables_in_a_line ${XKL_${family}_TABLES})
  file(WRITE ${PROJECT_BINARY_DIR}/tables-${family}.txt "${tables_in_a_line}\n")
endforeach()

set(XKL_GENERATED ${PROJECT_BINARY_DIR}/generated) # for the library's own sources
set(XKL_GENERATED_INCLUDE ${XKL_GENERATED}/include) # what is installed
file(MAKE_DIRECTORY ${XKL_GENERATED_INCLUDE})

# xkl_generate(OUTPUT COMMAND [TABLES t...] [SHAPES s] [PROVIDERS p...] [LAPACKE t...] [VML v] [SETTINGS s]
#              [VSL t...] [FFTW f] [TEMPLATE f] [OPTION text])
function(xkl_generate output command)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "SHAPES;VML;SETTINGS;FFTW;TEMPLATE;OPTION"
      "TABLES;PROVIDERS;LAPACKE;VSL")
  set(words ${command} -o ${output})
  foreach(kind TABLES SHAPES PROVIDERS VML SETTINGS FFTW TEMPLATE LAPACKE VSL OPTION)
    if(arg_${kind})
      string(TOLOWER ${kind} option)
      list(APPEND words --${option} ${arg_${kind}})
    endif()
  endforeach()
  set(read ${arg_TABLES} ${arg_SHAPES} ${arg_PROVIDERS} ${arg_LAPACKE} ${arg_VML} ${arg_SETTINGS} ${arg_VSL} ${arg_FFTW}
      ${arg_TEMPLATE})
  if(IS_ABSOLUTE "${arg_OPTION}") # a header whose constants are printed
    list(APPEND read ${arg_OPTION})
  endif()
  add_custom_command(
    OUTPUT ${output}
    COMMAND tablegen ${words}
    DEPENDS tablegen ${read}
    COMMENT "tablegen ${command}"
    VERBATIM)
endfunction()
