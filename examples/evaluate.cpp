// The smallest host: reads a model, evaluates it at one point and prints its outputs with their
// predicted errors.
//
//   evaluate examples/beam.pxdb

#include <pxrom/pxrom.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
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

  // The model keeps nothing of the reader, which may go.
  CDiscreteCombinations model;
  if (reader.ResumeDiscreteCombinations(model) != 0) {
    std::cerr << "no model in " << argv[1] << '\n';
    return 1;
  }

  // The discrete values choose the fitted combination, by name and in any order. What is prepared
  // is a copy: the model may go, and any number of threads may evaluate it.
  CPreparedModel beam;
  std::string reason;
  if (CPreparedModel::Prepare(model, {{"Material", 1}, {"Holes", 2}}, beam, &reason) != 0) {
    std::cerr << reason << '\n';
    return 1;
  }

  // A table of points, here of one row; a column per input, in the order of InputIDs().
  const std::vector<double> point = {90, 3000, 1.5, 45};  // h, F, L, b
  const std::size_t outputs = beam.OutputIDs().size();
  std::vector<double> values(outputs);
  std::vector<double> errors(outputs);
  // 0: value and error are good; -2: the value is good, there is no error; 1: neither.
  std::vector<int> statuses(outputs);
  if (beam.InputIDs().size() != point.size() ||
      beam.Evaluate(point.data(), 1, PrecisionExact, values.data(), errors.data(),
                    statuses.data()) != 0) {
    std::cerr << "the model has other inputs\n";
    return 1;
  }
  for (std::size_t i = 0; i < outputs; ++i) {
    std::cout << beam.OutputIDs()[i];
    if (statuses[i] == 1) {
      std::cout << " can't be evaluated there\n";
    } else {
      std::cout << " = " << values[i] << ", error " << errors[i] << '\n';
    }
  }
  return 0;
}
