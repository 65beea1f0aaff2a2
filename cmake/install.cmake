# What an installation holds: library, headers, command, and the files by which another project
# finds them with CMake or pkg-config.

option(PXROM_INSTALL "Make install rules" ${PROJECT_IS_TOP_LEVEL})
if(NOT PXROM_INSTALL)
  return()
endif()

include(CMakePackageConfigHelpers)
set(pxrom_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pxrom)

install(TARGETS pxrom EXPORT pxrom-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/pxrom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

if(PXROM_BUILD_TOOLS)
  # The command finds the library beside itself, wherever the whole is moved to.
  file(RELATIVE_PATH libraries_from_command
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(pxrom_command PROPERTIES
    INSTALL_RPATH "$ORIGIN/${libraries_from_command}")
  install(TARGETS pxrom_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS pxrom_codegen EXPORT pxrom-targets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY codegen/include/pxrom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

install(EXPORT pxrom-targets NAMESPACE pxrom:: DESTINATION ${pxrom_package_dir})
configure_package_config_file(cmake/pxrom-config.cmake.in pxrom-config.cmake
  INSTALL_DESTINATION ${pxrom_package_dir})
# Before 1.0 each minor version may change the interface.
write_basic_package_version_file(pxrom-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/pxrom-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/pxrom-config-version.cmake
  DESTINATION ${pxrom_package_dir})

# The prefix is written relative to the file, so that a moved installation is still found. Absolute
# folders, as some distributions set them, stay as they are.
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_LIBDIR absolute_libdir)
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_INCLUDEDIR absolute_includedir)
if(absolute_libdir)
  set(pxrom_pc_prefix ${CMAKE_INSTALL_PREFIX})
  set(pxrom_pc_libdir ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH up_to_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  set(pxrom_pc_prefix "\${pcfiledir}/${up_to_prefix}")
  set(pxrom_pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(absolute_includedir)
  set(pxrom_pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(pxrom_pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/pxrom.pc.in pxrom.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pxrom.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
