# Tests from a host's side. Each builds what it needs in a folder of its own.

set(work ${CMAKE_CURRENT_BINARY_DIR}/consumer)
set(folder ${PROJECT_SOURCE_DIR}/tests/consumer)

add_test(NAME consumer.subdirectory COMMAND
  ${folder}/subdirectory.sh ${PROJECT_SOURCE_DIR} ${work}/subdirectory ${CMAKE_CXX_COMPILER})

# A host without our sanitizers or coverage can't load a library with them.
if(NOT PXROM_SANITIZE AND NOT PXROM_COVERAGE)
  if(BUILD_SHARED_LIBS AND PXROM_BUILD_TOOLS)
    add_test(NAME consumer.shared COMMAND
      ${folder}/installed.sh ${PROJECT_SOURCE_DIR} ${work}/shared ${CMAKE_CXX_COMPILER}
      shared ${PROJECT_BINARY_DIR})
    add_test(NAME consumer.symbols COMMAND
      ${folder}/symbols.sh ${PROJECT_SOURCE_DIR}/include/pxrom $<TARGET_FILE:pxrom>)
    add_test(NAME consumer.hardened COMMAND
      ${folder}/hardened.sh ${work}/hardened ${PROJECT_SOURCE_DIR}/include $<TARGET_FILE:pxrom>
      $<TARGET_FILE:pxrom_command> ${pxrom_guards})
    find_program(PXROM_DPKG_SHLIBDEPS dpkg-shlibdeps)
    if(PXROM_DPKG_SHLIBDEPS)
      add_test(NAME consumer.package COMMAND
        ${folder}/package.sh ${PROJECT_SOURCE_DIR} ${work}/package ${PROJECT_BINARY_DIR}
        ${CMAKE_CPACK_COMMAND})
    endif()
  endif()
  add_test(NAME consumer.static COMMAND
    ${folder}/installed.sh ${PROJECT_SOURCE_DIR} ${work}/static ${CMAKE_CXX_COMPILER} static)
endif()
