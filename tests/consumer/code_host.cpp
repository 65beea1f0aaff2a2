// A host that writes a model as C.

#include <pxrom/codegen.h>
#include <pxrom/pxrom.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

int main(int count, char** arguments) {
  if (count != 2) return 1;
  std::ifstream file(arguments[1], std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  Tarvane::Plexura::PXROM::CReaderPXROMDatabase reader;
  Tarvane::Plexura::PXROM::CDiscreteCombinations model;
  reader.ReadDataStream(text);
  if (reader.ResumeDiscreteCombinations(model) != 0) return 1;
  pxrom_codegen::Options options;
  pxrom_codegen::Code code;
  std::string reason;
  if (pxrom_codegen::GenerateCode(model, options, code, reason) != 0) {
    std::cerr << reason << '\n';
    return 1;
  }
  std::cout << code.header.substr(0, code.header.find('\n')) << '\n';
  return 0;
}
