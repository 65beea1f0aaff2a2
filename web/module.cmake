# pxrom_web_module(TARGET FILE options...): builds the library as the WebAssembly module FILE. A
# project of its own, since one build has one compiler. PXROM_EMSCRIPTEN_TOOLCHAIN is false where
# Emscripten is not found.

include(ExternalProject)
find_program(PXROM_EMXX em++)
find_file(PXROM_EMSCRIPTEN_TOOLCHAIN Emscripten.cmake
  PATHS /usr/share/emscripten/cmake/Modules/Platform "$ENV{EMSDK}/upstream/emscripten/cmake/Modules/Platform"
  NO_DEFAULT_PATH)
if(NOT PXROM_EMXX)
  set(PXROM_EMSCRIPTEN_TOOLCHAIN FALSE)
endif()
set(pxrom_web_folder ${CMAKE_CURRENT_LIST_DIR})

function(pxrom_web_module target file)
  cmake_path(GET file PARENT_PATH folder)
  cmake_path(GET file STEM name)
  ExternalProject_Add(${target}
    SOURCE_DIR ${pxrom_web_folder}/module
    BINARY_DIR ${CMAKE_CURRENT_BINARY_DIR}/${name}
    CMAKE_GENERATOR ${CMAKE_GENERATOR}
    CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${PXROM_EMSCRIPTEN_TOOLCHAIN} -DCMAKE_BUILD_TYPE=Release
      -DPXROM_MODULE=${file} ${ARGN}
    BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --parallel 2
    BUILD_ALWAYS ON
    BUILD_BYPRODUCTS ${file}
    INSTALL_COMMAND "")
endfunction()
