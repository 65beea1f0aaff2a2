#include "model_inputs.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "pxrom/database_reader.h"

namespace fuzz {

using namespace Tarvane::Plexura::PXROM;

bool SameBits(const NamedValues& a, const NamedValues& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].first != b[i].first || std::memcmp(&a[i].second, &b[i].second, sizeof(double)) != 0) {
      return false;
    }
  }
  return true;
}

ModelInputs::ModelInputs(std::string_view data) {
  const std::size_t end = data.rfind('\0');
  text_ = std::string(data.substr(0, end));
  if (end != std::string_view::npos) {
    for (std::string_view tail = data.substr(end + 1); tail.size() >= sizeof(double);
         tail.remove_prefix(sizeof(double))) {
      double value = 0.0;
      std::memcpy(&value, tail.data(), sizeof value);
      values_.push_back(value);
    }
  }
  if (values_.empty()) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    values_ = {0.4, -1.25, 0.0, 1e200, -kInfinity};
  }
}

bool ModelInputs::Read(CDiscreteCombinations& model) const {
  std::string text = text_;
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  try {
    static_cast<void>(reader.ResumeDiscreteCombinations(model));
  } catch (const std::out_of_range&) {
  }
  return !model.GetDiscreteCombinationsIndexingPtr()->empty();
}

std::size_t ModelInputs::MostCombinations() const {
  constexpr std::size_t kCharacters = std::size_t{1} << 20U;
  return std::max<std::size_t>(2, kCharacters / std::max<std::size_t>(text_.size(), 1));
}

std::vector<double> ModelInputs::Values(int count) const {
  std::vector<double> values;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    values.push_back(values_[i % values_.size()]);
  }
  return values;
}

NamedInts ModelInputs::DiscreteOf(const CDiscreteCombinations& model,
                                  const std::vector<int>& key) const {
  const std::vector<std::string> ids = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  NamedInts values;
  for (std::size_t i = 0; i < ids.size() && i < key.size(); ++i) {
    values.emplace_back(ids[i], key[i]);
  }
  return values;
}

NamedValues ModelInputs::ContinuousOf(const CDiscreteCombinations& model) const {
  NamedValues values;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;
    values.emplace_back(id, values_[values.size() % values_.size()]);
  }
  return values;
}

}  // namespace fuzz
