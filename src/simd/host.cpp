#include "simd/host.h"

#include <cmath>
#include <cstddef>

namespace Tarvane::Plexura::PXROM::simd {

namespace {

struct KnownValue {
  double x;
  double fused;
  double plain;
};

// For each operation of the hyperbolic tangent that a compiler may fuse, two arguments where fusing
// it changes the result if all others are fused, and two where it does if no other is. Four more
// operations change one result in ten million at the most.
constexpr KnownValue kTangents[] = {
    {0x1.73844e49488p-3, 0x1.6f7e9802b22d9p-3, 0x1.6f7e9802b22dap-3},
    {0x1.eb8310a4f5cf6p-2, 0x1.c8f2706ee3c1dp-2, 0x1.c8f2706ee3c1ep-2},
    {0x1.37e247df56abcp-3, 0x1.357ebc8340585p-3, 0x1.357ebc8340585p-3},
    {0x1.cacb5ebc8cb89p-1, 0x1.6dc3e4f3fe78ep-1, 0x1.6dc3e4f3fe78dp-1},
    {0x1.0263139eb91e4p-3, 0x1.01065387a09p-3, 0x1.01065387a0901p-3},
    {0x1.770ce18829118p-4, 0x1.760172edd2a62p-4, 0x1.760172edd2a62p-4},
    {0x1.542782810f09cp-3, 0x1.510f843a6103bp-3, 0x1.510f843a6103dp-3},
    {0x1.b484d6905b7c8p-4, 0x1.b2dfaf7cfa14fp-4, 0x1.b2dfaf7cfa14ep-4},
    {0x1.bc72c3afe8898p-3, 0x1.b5999d4ba1c91p-3, 0x1.b5999d4ba1c92p-3},
    {0x1.0f3125c162676p-1, 0x1.f0c5f8df54e9fp-2, 0x1.f0c5f8df54ea2p-2},
    {0x1.9ea5f19e1241cp-3, 0x1.9912e7435ebd2p-3, 0x1.9912e7435ebdp-3},
    {0x1.486b830246b98p-3, 0x1.45a22909f5cdfp-3, 0x1.45a22909f5cdep-3},
    {0x1.9614343506178p-3, 0x1.90d6f0355fa51p-3, 0x1.90d6f0355fa53p-3},
    {0x1.e5f15b241a888p-2, 0x1.c479dca5f625ep-2, 0x1.c479dca5f6261p-2},
    {0x1.c806fadd1bdbp-3, 0x1.c0a30da4886ddp-3, 0x1.c0a30da4886dep-3},
    {0x1.2b89715a0f131p-1, 0x1.0d79032ca54eap-1, 0x1.0d79032ca54e9p-1},
    {0x1.43989fb1ccfb8p-3, 0x1.40ee0b09de879p-3, 0x1.40ee0b09de878p-3},
    {0x1.dfafc5512cbp-4, 0x1.dd816f45dc73p-4, 0x1.dd816f45dc731p-4},
    {0x1.ab92c66bd5374p-3, 0x1.a577adf29c81cp-3, 0x1.a577adf29c81dp-3},
    {0x1.e156b640be5a8p-2, 0x1.c0c37765d9dc2p-2, 0x1.c0c37765d9dc5p-2},
};

// The same for log(1 + x), where only one operation matters: a z + b z^2, of which either product
// may be fused.
constexpr KnownValue kLogarithms[] = {
    {0x1.77af5346d4afbp-2, 0x1.400804b72e718p-2, 0x1.400804b72e719p-2},
    {0x1.848927cdff29bp-2, 0x1.4963dab451c46p-2, 0x1.4963dab451c47p-2},
    {0x1.e2a06e5c0989cp-3, 0x1.b15d0d9b82b3p-3, 0x1.b15d0d9b82b2fp-3},
    {0x1.21254d65374cbp-2, 0x1.fd5b2a2914841p-3, 0x1.fd5b2a291484p-3},
    {0x1.4842b129b8d13p-2, 0x1.1cbc0dfee0d8cp-2, 0x1.1cbc0dfee0d8cp-2},
    {0x1.83597ce4208c1p-2, 0x1.48879f2ebbf87p-2, 0x1.48879f2ebbf87p-2},
    {0x1.f438b3182e4dp-2, 0x1.97504c486f4dfp-2, 0x1.97504c486f4ep-2},
    {0x1.95a801fc5829ap-2, 0x1.55ba0c05ad53cp-2, 0x1.55ba0c05ad53dp-2},
    {0x1.16648c751b0ap-2, 0x1.ec844207458cfp-3, 0x1.ec844207458dp-3},
    {0x1.0ffb55d4c140ap-2, 0x1.e26917ca5b8dp-3, 0x1.e26917ca5b8d1p-3},
    {0x1.7884de285cff8p-3, 0x1.59a3cc8ec2be2p-3, 0x1.59a3cc8ec2be3p-3},
    {0x1.5d9082bd2026dp-2, 0x1.2cbdc478f6c57p-2, 0x1.2cbdc478f6c58p-2},
};

template <std::size_t kCount, class Function>
HostForm FormOf(const KnownValue (&values)[kCount], const Function& function) {
  bool isFused = true;
  bool isPlain = true;
  for (const KnownValue& known : values) {
    // Else a compiler would compute it itself, correctly rounded.
    const volatile double x = known.x;
    const double value = function(x);
    isFused = isFused && value == known.fused;
    isPlain = isPlain && value == known.plain;
  }
  return isFused ? HostForm::Fused : isPlain ? HostForm::Plain : HostForm::Other;
}

}  // namespace

HostForm FormOfTanh() noexcept {
  static const HostForm form = FormOf(kTangents, [](double x) { return std::tanh(x); });
  return form;
}

HostForm FormOfLog1p() noexcept {
  static const HostForm form = FormOf(kLogarithms, [](double x) { return std::log1p(x); });
  return form;
}

}  // namespace Tarvane::Plexura::PXROM::simd
