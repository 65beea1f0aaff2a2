// The smallest host: reads a model, evaluates it at one point and prints its outputs with their
// predicted errors.
//
//   evaluate examples/beam.pxdb

#include <pxrom/pxrom.h>

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace Tarvane::Plexura::PXROM;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: evaluate examples/beam.pxdb\n";
    return 1;
  }

  // The library opens no files: it is handed text.
  std::stringstream text;
  text << std::ifstream(argv[1]).rdbuf();
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);

  // Afterwards the model stands by itself, and the reader may go.
  CDiscreteCombinations model;
  if (reader.ResumeDiscreteCombinations(model) != 0) {
    std::cerr << "no model in " << argv[1] << '\n';
    return 1;
  }

  // Values go by name, in any order; the discrete ones choose the fitted combination.
  const std::vector<std::pair<std::string, int>> discrete = {{"Material", 1}, {"Holes", 2}};
  const std::vector<std::pair<std::string, double>> continuous = {
      {"L", 1.5}, {"b", 45}, {"h", 90}, {"F", 3000}};

  // 0: all outputs have an error; -2: some have none, the values are good; 1: no values. Who
  // evaluates one model often, or in several threads, reads docs/behaviours.md about this form.
  std::vector<std::pair<std::string, double>> outputs;
  std::vector<std::pair<std::string, double>> errors;
  if (model.Evaluate(discrete, continuous, outputs, errors) == 1) {
    std::cerr << "the model can't be evaluated there\n";
    return 1;
  }
  for (const auto& [id, value] : outputs) std::cout << id << " = " << value << '\n';
  for (const auto& [id, error] : errors) std::cout << "error of " << id << " = " << error << '\n';
  return 0;
}
