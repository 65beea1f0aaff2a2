# What is built beside the library, which itself needs nothing but a compiler.

# pxrom_part(OPTION TEXT packages...): an option that is ON, OFF or AUTO. With AUTO, which is the
# default unless a host adds the project as a subdirectory, the part is left out with a message
# where a package that it needs is lacking; with ON that is an error. Afterwards it is ON or OFF.
macro(pxrom_part option text)
  if(PROJECT_IS_TOP_LEVEL)
    set(${option} AUTO CACHE STRING "Build ${text}: ON, OFF, or AUTO for where its packages are found")
  else()
    set(${option} OFF CACHE STRING "Build ${text}: ON, OFF, or AUTO for where its packages are found")
  endif()
  set_property(CACHE ${option} PROPERTY STRINGS AUTO ON OFF)
  if(${option} STREQUAL "AUTO")
    set(lacking "")
    foreach(package ${ARGN})
      find_package(${package} QUIET)
      if(NOT ${package}_FOUND)
        list(APPEND lacking ${package})
      endif()
    endforeach()
    if(lacking)
      list(JOIN lacking ", " lacking)
      message(STATUS "Without ${text}: not found: ${lacking}")
      set(${option} OFF)
    else()
      set(${option} ON)
    endif()
  endif()
endmacro()

# A source distribution of the Python package brings the libraries of headers that the command needs.
set(pxrom_bundled ${PROJECT_SOURCE_DIR}/third_party)
if(EXISTS ${pxrom_bundled})
  foreach(package CLI11 nlohmann_json)
    string(TOLOWER ${package} file)
    file(WRITE ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${file}-config.cmake
      "if(NOT TARGET ${package}::${package})
  add_library(${package}::${package} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${package}::${package} INTERFACE ${pxrom_bundled})
endif()\n")
  endforeach()
endif()
pxrom_part(PXROM_BUILD_TESTS "the tests" GTest nlohmann_json)
pxrom_part(PXROM_BUILD_TOOLS "the pxrom command" CLI11 nlohmann_json Threads)
