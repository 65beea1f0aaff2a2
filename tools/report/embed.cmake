# Writes ${assets}, the source that embeds the page's parts of ${folder}, the script ${library} of the
# npm package, and the file ${module}, compressed, unless that is empty.

# A constant as bytes, since compilers may limit the length of a literal.
function(append_bytes name hex)
  string(LENGTH "${hex}" digits)
  math(EXPR size "${digits} / 2")
  if(size EQUAL 0)
    string(APPEND source "const std::string_view ${name};\n")
  else()
    string(REPEAT "[0-9a-f]" 28 line)
    string(REGEX REPLACE "(${line})" "\\1\n" bytes "${hex}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND source "constexpr char ${name}Bytes[] = {\n${bytes}};\n"
      "const std::string_view ${name}(${name}Bytes, ${size});\n")
  endif()
  set(source "${source}" PARENT_SCOPE)
endfunction()

function(append_file name path)
  file(READ "${path}" hex HEX)
  append_bytes(${name} "${hex}")
  set(source "${source}" PARENT_SCOPE)
endfunction()

function(append_text name text)
  string(HEX "${text}" hex)
  append_bytes(${name} "${hex}")
  set(source "${source}" PARENT_SCOPE)
endfunction()

# In one file, as in the page: the hash covers all bytes of the script element.
set(script "${assets}.js")
file(WRITE "${script}" "\"use strict\";\n")
foreach(script_part "${library}" ${folder}/numbers.js ${folder}/profile.js ${folder}/page.js)
  file(READ "${script_part}" text)
  file(APPEND "${script}" "${text}")
endforeach()
file(SHA256 "${script}" hash)

set(source "// Made by embed.cmake.\n#include \"assets.h\"\n
namespace pxrom_command::report_assets {\n\n")
append_file(kPage "${folder}/page.html")
append_file(kLive "${folder}/live.html")
append_file(kStyle "${folder}/page.css")
append_file(kScript "${script}")
append_bytes(kScriptHash "${hash}")
if(module STREQUAL "")
  append_text(kModule "")
else()
  cmake_path(GET module PARENT_PATH parent)
  cmake_path(GET module FILENAME name)
  set(zipped "${assets}.gz")
  file(ARCHIVE_CREATE OUTPUT "${zipped}" PATHS "${module}" FORMAT raw COMPRESSION GZip
    COMPRESSION_LEVEL 9)
  append_file(kModule "${zipped}")
endif()
string(APPEND source "\n}  // namespace pxrom_command::report_assets\n")
file(WRITE "${assets}" "${source}")
