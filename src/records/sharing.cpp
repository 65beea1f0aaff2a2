#include "records/sharing.h"

#include <cstring>
#include <utility>

namespace Tarvane::Plexura::PXROM::batch {

namespace {

std::uintptr_t NumberOf(const void* address) { return reinterpret_cast<std::uintptr_t>(address); }

}  // namespace

/// By their bits: 0 and -0 give different results, and NaN has no order.
bool Sharing::IsLess::operator()(const Array& a, const Array& b) const {
  if (a->size() != b->size()) return a->size() < b->size();
  return !a->empty() && std::memcmp(a->data(), b->data(), a->size() * sizeof(double)) < 0;
}

bool Sharing::IsLess::operator()(const Norms& a, const Norms& b) const {
  return a->Compare(*b) < 0;
}

Sharing::Array Sharing::Pooled(Array values) { return *arrays_.insert(std::move(values)).first; }

Sharing::Norms Sharing::Pooled(Norms norms) { return *norms_.insert(std::move(norms)).first; }

/// The pool keeps the arrays, so equal addresses mean equal arrays.
std::uintptr_t Sharing::AddressOf(const Array& values) { return NumberOf(Pooled(values).get()); }

void Sharing::Enter(const std::vector<double>& slopes, const std::vector<double>& intercepts) {
  space_ = {AddressOf(std::make_shared<const std::vector<double>>(slopes)),
            AddressOf(std::make_shared<const std::vector<double>>(intercepts))};
}

std::size_t Sharing::SlotOf(const void* kernel, const std::vector<Array>& parts,
                            std::size_t count) {
  Key key = space_;
  key.push_back(NumberOf(kernel));
  for (const Array& part : parts) key.push_back(AddressOf(part));
  const auto [slot, isNew] = slots_.emplace(std::move(key), counts_.size());
  if (isNew) counts_.push_back(count);
  return slot->second;
}

std::size_t Sharing::ErrorSlotOf(std::size_t slot, const Norms& norms, const Array& functions) {
  const Key key = {slot, NumberOf(Pooled(norms).get()), AddressOf(functions)};
  return errorSlots_.emplace(key, errorSlots_.size()).first->second;
}

}  // namespace Tarvane::Plexura::PXROM::batch
