#pragma once

#include <cstddef>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "pxrom/batch.h"
#include "pxrom/export.h"

/// A model in a few lines of C++, over the classes of Tarvane::Plexura::PXROM. What is refused is
/// an exception, pxrom::Error, whose text says why.
///
/// `pxrom.h` does not include this header, since hosts may use the name pxrom for something else.
namespace pxrom {

/// What a model refuses. what() is a sentence for the user of the host; for a database it is that
/// of the inspection, with its line.
class PXROM_API Error : public std::runtime_error {
 public:
  explicit Error(const std::string& sentence) : std::runtime_error(sentence) {}
  Error(const Error&) = default;
  Error& operator=(const Error&) = default;
  ~Error() override;
};

using ErrorOrigin = Tarvane::Plexura::PXROM::CErrorOrigin;

/// One output at one point. CPreparedModel says what its numbers mean (batch.h).
struct Prediction {
  double value = 0.0;
  /// In the unit of the output. Without an error, this and both ends of the interval are NaN.
  double error = 0.0;
  double lower = 0.0;
  double upper = 0.0;
  /// Whose error it is.
  ErrorOrigin origin;
  /// Whether the point is inside the ranges of the samples; false as well if the model does not
  /// hold them.
  bool inside = false;
  /// To the nearest sample, in typical spacings; NaN if that is unknown.
  double distance = 0.0;
};

/// The outputs at one point, by ID.
class PXROM_API Answer {
 public:
  explicit Answer(std::map<std::string, Prediction> outputs);

  /// Error for an ID without an output.
  const Prediction& operator[](const std::string& id) const;
  const std::map<std::string, Prediction>& outputs() const { return outputs_; }

 private:
  std::map<std::string, Prediction> outputs_;
};

/// Values and errors of many points: tables of one row for each point and one column for each
/// output. A missing value or error is NaN.
struct Table {
  std::vector<std::string> outputs;
  std::vector<double> values;
  std::vector<double> errors;
};

/// A database of fitted models. Copies are cheap and share what they hold, which never changes: any
/// number of threads may use one object and its copies. The first prediction of a combination of
/// discrete values prepares it, and the model keeps it.
class PXROM_API Model {
 public:
  using Discrete = std::map<std::string, int>;
  using Continuous = std::map<std::string, double>;
  using Limit = Tarvane::Plexura::PXROM::CEvaluationLimit;

  /// From the text of a database. Error if that can't be read. A host that reads models from
  /// strangers should set a limit to what an evaluation may cost.
  static Model parse(std::string text, const Limit& limit = Limit());
  /// From a file. The host opens it: the library itself reads no file.
  static Model load(const std::string& path, const Limit& limit = Limit()) {
    std::ostringstream text;
    if (!(text << std::ifstream(path, std::ios::binary).rdbuf())) {
      throw Error("can't read anything from the file \"" + path + "\"");
    }
    return parse(text.str(), limit);
  }

  /// All outputs of the combination `discrete` at `point`, which has a value for each input. Error
  /// for a combination that was not fitted, a name that is no input, an input without a value, an
  /// output that can't be evaluated there, or a cost above the limit.
  Answer predict(const Discrete& discrete, const Continuous& point) const;
  /// Many points of one combination: a row for each, with the inputs in the order of `inputs`. An
  /// output that can't be evaluated at a point is NaN there. Error for a number of values that is
  /// no multiple of that of the inputs.
  Table predictRows(const Discrete& discrete, const std::vector<double>& points) const;
  /// The continuous inputs of a point.
  std::vector<std::string> inputs(const Discrete& discrete) const;

  /// The same combination for all that is not here: gradients, ranges of samples, selected outputs.
  Tarvane::Plexura::PXROM::CPreparedModel prepared(const Discrete& discrete) const;

 private:
  struct Content;

  explicit Model(std::shared_ptr<const Content> content);

  std::shared_ptr<const Content> content_;
};

}  // namespace pxrom
