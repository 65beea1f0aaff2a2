#include "peers/error_peer.h"

#if defined(__unix__) && defined(PXROM_SCIKIT_LEARN)

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace peers {

namespace {

/// A Python program whose input and output are pipes.
class Python {
 public:
  Python() {
    // A Python without scikit-learn ends before it has read everything.
    std::signal(SIGPIPE, SIG_IGN);
    int in[2];
    int out[2];
    if (pipe(in) != 0 || pipe(out) != 0) std::abort();
    if (fork() == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      for (const int end : {in[0], in[1], out[0], out[1]}) close(end);
      execl(PXROM_PYTHON, PXROM_PYTHON, PXROM_SCIKIT_LEARN, nullptr);
      _exit(1);
    }
    close(in[0]);
    close(out[1]);
    to_ = fdopen(in[1], "w");
    from_ = fdopen(out[0], "r");
  }
  Python(const Python&) = delete;
  Python& operator=(const Python&) = delete;
  // It ends with its input.
  ~Python() {
    std::fclose(to_);
    std::fclose(from_);
  }

  template <class Value>
  void Write(const Value* values, std::size_t count) {
    std::fwrite(values, sizeof *values, count, to_);
  }
  template <class Value>
  bool Read(Value* values, std::size_t count) {
    std::fflush(to_);
    return std::fread(values, sizeof *values, count, from_) == count;
  }

 private:
  std::FILE* to_;
  std::FILE* from_;
};

class ScikitLearnProcess : public ErrorPeer {
 public:
  explicit ScikitLearnProcess(const Process& process) {
    const std::int64_t sizes[] = {static_cast<std::int64_t>(process.inputs),
                                  static_cast<std::int64_t>(process.Samples()),
                                  static_cast<std::int64_t>(process.Points())};
    const double numbers[] = {process.length, process.noise};
    python_.Write(sizes, 3);
    python_.Write(numbers, 2);
    for (const auto* const values : {&process.samples, &process.outputs, &process.points}) {
      python_.Write(values->data(), values->size());
    }
    char ready = 0;
    isReady_ = python_.Read(&ready, 1);
  }

  bool IsReady() const { return isReady_; }

  const char* Name() const override { return "scikit-learn"; }

  void Predict(std::vector<double>& values, std::vector<double>& errors) override {
    python_.Write("p", 1);
    if (python_.Read(values.data(), values.size()) && python_.Read(errors.data(), errors.size())) {
      return;
    }
    std::fprintf(stderr, "scikit-learn has ended\n");
    std::exit(1);
  }

 private:
  Python python_;
  bool isReady_ = false;
};

}  // namespace

std::unique_ptr<ErrorPeer> ScikitLearn(const Process& process) {
  auto peer = std::make_unique<ScikitLearnProcess>(process);
  if (!peer->IsReady()) return nullptr;
  return peer;
}

}  // namespace peers

#else

std::unique_ptr<peers::ErrorPeer> peers::ScikitLearn(const Process&) { return nullptr; }

#endif
