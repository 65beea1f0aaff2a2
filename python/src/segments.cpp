#include "segments.h"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace py = pybind11;

namespace pxrom_python {
namespace {

// Results of the fast mode may depend on the points that are evaluated together.
constexpr std::size_t kRows = 512;
constexpr std::chrono::milliseconds kBetweenSignals{100};

/// Where the threads of one call meet.
class Segments {
 public:
  Segments(std::size_t rows, const std::function<void(std::size_t, std::size_t)>& work)
      : rows_(rows), work_(work) {}
  Segments(const Segments&) = delete;
  Segments& operator=(const Segments&) = delete;
  ~Segments() { Join(true); }

  /// Starts up to `count` threads; fewer if the system refuses one.
  void StartThreads(std::size_t count) {
    try {
      while (threads_.size() < count) threads_.emplace_back([this] { RunInThread(); });
    } catch (const std::system_error&) {
      return;
    }
  }

  template <class AfterEach>
  void Run(const AfterEach& afterEach) {
    while (!isStopped_) {
      const std::size_t first = next_.fetch_add(kRows);
      if (first >= rows_) return;
      work_(first, std::min(kRows, rows_ - first));
      afterEach();
    }
  }

  /// Waits for the threads; throws what one of them threw.
  void Finish() {
    Join(false);
    if (failure_ != nullptr) std::rethrow_exception(failure_);
  }

 private:
  void RunInThread() {
    try {
      Run([] {});
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (failure_ == nullptr) failure_ = std::current_exception();
      isStopped_ = true;
    }
  }

  void Join(bool isStopped) {
    if (isStopped) isStopped_ = true;
    for (std::thread& thread : threads_) thread.join();
    threads_.clear();
  }

  std::size_t rows_;
  const std::function<void(std::size_t, std::size_t)>& work_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> isStopped_{false};
  std::mutex mutex_;
  std::exception_ptr failure_;
  std::vector<std::thread> threads_;
};

/// Lets the interpreter handle signals, but seldom: to take the lock can take milliseconds.
class SignalCheck {
 public:
  void operator()() {
    const Clock::time_point now = Clock::now();
    if (now - last_ < kBetweenSignals) return;
    last_ = now;
    const py::gil_scoped_acquire locked;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point last_ = Clock::now();
};

}  // namespace

void ForSegments(std::size_t rows, std::size_t jobs,
                 const std::function<void(std::size_t, std::size_t)>& work) {
  const py::gil_scoped_release unlocked;
  const std::size_t count = rows / kRows + (rows % kRows != 0 ? 1 : 0);
  Segments segments(rows, work);
  if (count > 1) segments.StartThreads(std::min(jobs, count) - 1);
  SignalCheck check;
  segments.Run([&] { check(); });
  segments.Finish();
}

}  // namespace pxrom_python
