// Reads the model that it is given and prints every output of its one combination at x = 0.5.

#include <pxrom/pxrom.h>

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace pxrom = Tarvane::Plexura::PXROM;

int main(int argc, char** argv) {
  std::stringstream text;
  text << std::ifstream(argc > 1 ? argv[1] : "").rdbuf();
  pxrom::CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  pxrom::CDiscreteCombinations model;
  if (reader.ResumeDiscreteCombinations(model) != 0) return 1;

  std::vector<std::pair<std::string, double>> outputs;
  if (model.Evaluate({}, {{"x", 0.5}}, outputs) != 0) return 1;
  std::cout << PXROM_VERSION_STRING;
  for (const auto& [id, value] : outputs) std::cout << ' ' << id << '=' << value;
  std::cout << '\n';
  return 0;
}
