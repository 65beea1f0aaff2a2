# `cpack` in a build folder makes one Debian package of what an installation holds: the library, its
# headers and the files to find them, and the command.

if(NOT PXROM_INSTALL)
  return()
endif()

# Who made the package, as git knows them. Without either, cpack asks for CPACK_PACKAGE_CONTACT.
set(PXROM_MAINTAINER "" CACHE STRING "The maintainer of packages, Name <address>; git's identity if empty")
set(maintainer "${PXROM_MAINTAINER}")
find_package(Git QUIET)
if(NOT maintainer AND Git_FOUND)
  foreach(item name email)
    execute_process(COMMAND ${GIT_EXECUTABLE} config user.${item}
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE git_${item}
      OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endforeach()
  if(git_name AND git_email)
    set(maintainer "${git_name} <${git_email}>")
  endif()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pxrom)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The PXROM developers")
set(CPACK_PACKAGE_CONTACT "${maintainer}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "Predicts the outputs of a costly simulation by formulas that were fitted to its results: shared
library, headers, CMake and pkg-config files, and the command pxrom.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
# The libraries that ours and the command load.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
include(CPack)
