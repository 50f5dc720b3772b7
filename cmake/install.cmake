# The names by which other projects know the libraries, and what is installed for them. What is installed can be
# moved: nothing in it knows where it lies.

# Whoever uses the host has the pack built too, which the host loads by itself.
add_library(undula_efihost INTERFACE)
target_link_libraries(undula_efihost INTERFACE efihost)
add_dependencies(undula_efihost undula)
add_library(undula::efihost ALIAS undula_efihost)
add_library(undula::pack ALIAS undula)

if(NOT UNDULA_INSTALL)
  return()
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# In a folder of its own, as others install headers in one called efi.
set(headers ${CMAKE_INSTALL_INCLUDEDIR}/undula)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/undula)

set_target_properties(undula PROPERTIES EXPORT_NAME pack)
install(TARGETS efi efihost undula EXPORT undula
  RUNTIME COMPONENT libraries
  LIBRARY COMPONENT libraries NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  INCLUDES DESTINATION ${headers})
install(DIRECTORY include/efi host/include/efihost DESTINATION ${headers} COMPONENT development
  FILES_MATCHING PATTERN *.h)

install(EXPORT undula NAMESPACE undula:: FILE undulaTargets.cmake DESTINATION ${package} COMPONENT development)
configure_package_config_file(cmake/undulaConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/undulaConfig.cmake
  INSTALL_DESTINATION ${package} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/undulaConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/undulaConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/undulaConfigVersion.cmake
  DESTINATION ${package} COMPONENT development)

# Paths begin where undula.pc lies, unless the folders are absolute.
set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE to_prefix)
cmake_path(APPEND pc_prefix "\${pcfiledir}" ${to_prefix})
cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND pc_includedir "\${prefix}" ${headers})
configure_file(cmake/undula.pc.in ${CMAKE_CURRENT_BINARY_DIR}/undula.pc.in @ONLY)
file(GENERATE OUTPUT undula.pc INPUT ${CMAKE_CURRENT_BINARY_DIR}/undula.pc.in)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/undula.pc DESTINATION ${pkgconfig} COMPONENT development)
