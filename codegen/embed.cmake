# Writes ${out}, the source of a function ${function} that returns the texts ${pieces} of ${folder}.
# They are embedded as bytes, since compilers may limit the length of a literal.

set(source "#include \"codegen/text.h\"\n\nnamespace pxrom_codegen {\n\nnamespace {\n\n")
set(list "")
string(REPLACE "," ";" pieces "${pieces}")
foreach(piece IN LISTS pieces)
  file(READ "${folder}/${piece}.inc" hex HEX)
  string(LENGTH "${hex}" digits)
  math(EXPR size "${digits} / 2")
  string(REPEAT "[0-9a-f]" 28 line)
  string(REGEX REPLACE "(${line})" "\\1\n" bytes "${hex}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND source "constexpr char ${piece}Of${function}[] = {\n${bytes}};\n\n")
  string(APPEND list "      std::string(${piece}Of${function}, ${size}),\n")
endforeach()
string(APPEND source "}  // namespace\n\nconst std::vector<std::string>& ${function}() {\n"
  "  static const std::vector<std::string> texts = {\n${list}  };\n  return texts;\n}\n\n"
  "}  // namespace pxrom_codegen\n")
file(WRITE "${out}" "${source}")
