#include "peers/peer.h"

#ifdef PXROM_WITH_LIBSVM

#include <libsvm/svm.h>

namespace peers {

namespace {

using Tarvane::Plexura::PXROM::CSVRData;

class Libsvm : public Peer {
 public:
  explicit Libsvm(const CSVRData& record)
      : slope_(record.OutputScaleSlope), intercept_(record.OutputScaleIntercept) {
    for (const double width : record.KernelArray) roots_.push_back(std::sqrt(width));
    const auto count = static_cast<std::size_t>(record.NumberOfSamples);
    for (std::size_t j = 0; j < count; ++j) {
      std::vector<double> row = record.InputSamples[j];
      record.ScaleAndOverwriteInputSample(row);
      samples_.push_back(NodesOf(row));
      weights_.push_back(record.AlphasStar[j] - record.Alphas[j]);
    }
    for (auto& sample : samples_) pointers_.push_back(sample.data());
    coefficients_[0] = weights_.data();
    shift_ = -record.ConstantCoefficient;
    model_.param.svm_type = EPSILON_SVR;
    model_.param.kernel_type = RBF;
    model_.param.gamma = 1.0;
    model_.nr_class = 2;
    model_.l = record.NumberOfSamples;
    model_.SV = pointers_.data();
    model_.sv_coef = coefficients_;
    model_.rho = &shift_;
  }

  const char* Name() const override { return "libsvm"; }

  void SetPoints(const std::vector<std::vector<double>>& scaled) override {
    for (const auto& x : scaled) points_.push_back(NodesOf(x));
  }

  double EvaluateAt(std::size_t point) const override {
    return (svm_predict(&model_, points_[point].data()) - intercept_) / slope_;
  }

 private:
  std::vector<svm_node> NodesOf(const std::vector<double>& x) const {
    std::vector<svm_node> nodes;
    for (std::size_t i = 0; i < x.size(); ++i) {
      nodes.push_back({static_cast<int>(i) + 1, roots_[i] * x[i]});
    }
    nodes.push_back({-1, 0.0});
    return nodes;
  }

  double slope_;
  double intercept_;
  double shift_ = 0.0;
  std::vector<double> roots_;
  std::vector<std::vector<svm_node>> samples_;
  std::vector<svm_node*> pointers_;
  std::vector<double> weights_;
  double* coefficients_[1] = {nullptr};
  svm_model model_ = {};
  std::vector<std::vector<svm_node>> points_;
};

}  // namespace

std::unique_ptr<Peer> LibsvmRegression(const CSVRData& record) {
  return std::make_unique<Libsvm>(record);
}

}  // namespace peers

#else

std::unique_ptr<peers::Peer> peers::LibsvmRegression(const Tarvane::Plexura::PXROM::CSVRData&) {
  return nullptr;
}

#endif
