# What `cmake --install` puts where, and how other projects find it.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_LIBDIR lib) # one place, whatever the distribution, so that pkg-config's file holds everywhere
set(header_directory ${CMAKE_INSTALL_INCLUDEDIR}/xkl)

add_library(xkl INTERFACE)
target_include_directories(xkl INTERFACE $<INSTALL_INTERFACE:${header_directory}>)
target_link_libraries(xkl INTERFACE xkl_quorl_ilp64)
add_library(xkl_gfortran INTERFACE)
target_include_directories(xkl_gfortran INTERFACE $<INSTALL_INTERFACE:${header_directory}>)
target_link_libraries(xkl_gfortran INTERFACE xkl_quorl_gf_ilp64 xkl_quorl_ilp64)
# For programs that include the usual lapacke.h and cblas.h.
add_library(xkl_compat INTERFACE)
target_include_directories(xkl_compat INTERFACE $<INSTALL_INTERFACE:${header_directory}/compat>)
target_link_libraries(xkl_compat INTERFACE xkl)
# For programs written for FFTW.
add_library(xkl_fftw3 INTERFACE)
target_include_directories(xkl_fftw3 INTERFACE $<INSTALL_INTERFACE:${header_directory}/fftw>)
target_link_libraries(xkl_fftw3 INTERFACE xkl)
set_target_properties(xkl_fftw3 PROPERTIES EXPORT_NAME fftw3)
set_target_properties(xkl_compat PROPERTIES EXPORT_NAME compat)
set_target_properties(xkl_gfortran PROPERTIES EXPORT_NAME gfortran)

install(TARGETS xkl_quorl_ilp64 xkl_quorl_gf_ilp64 xkl_core xkl_kernels xkl_public_headers xkl xkl_gfortran xkl_compat
    xkl_fftw3
    EXPORT xklTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET xkl_core_fft)
  install(TARGETS xkl_core_fft LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(TARGETS xkl_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${XKL_HEADER_FILES} ${PROJECT_SOURCE_DIR}/include/xkl.h ${PROJECT_SOURCE_DIR}/include/xkl_types.h
    ${PROJECT_SOURCE_DIR}/include/xkl_service_types.h ${PROJECT_SOURCE_DIR}/include/xkl_lapacke_types.h
    ${PROJECT_SOURCE_DIR}/include/xkl_vml_types.h ${PROJECT_SOURCE_DIR}/include/xkl_dfti.h
    ${PROJECT_SOURCE_DIR}/include/xkl_vsl_types.h ${PROJECT_SOURCE_DIR}/include/xkl_sparse_types.h
    ${PROJECT_SOURCE_DIR}/include/xkl_solver_types.h
    DESTINATION ${header_directory})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/compat DESTINATION ${header_directory})
install(FILES ${XKL_FFTW_HEADER_FILES} DESTINATION ${header_directory}/fftw)
install(EXPORT xklTargets NAMESPACE xkl:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xkl)

set(XKL_FORTRAN_DIRECTORY ${header_directory})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/xklConfig.cmake.in ${PROJECT_BINARY_DIR}/xklConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xkl PATH_VARS XKL_FORTRAN_DIRECTORY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/xklConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(${PROJECT_SOURCE_DIR}/cmake/xkl.pc.in ${PROJECT_BINARY_DIR}/xkl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/xklConfig.cmake ${PROJECT_BINARY_DIR}/xklConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/xkl)
install(FILES ${PROJECT_BINARY_DIR}/xkl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR}) # headers point there
install(FILES ${PROJECT_SOURCE_DIR}/tools/xkl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
