#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "point_evaluator.h"

namespace pxrom_command {

/// Threads that evaluate parts of a table. They begin them in the order in which they are added.
class RowWorkers {
 public:
  using Task = std::packaged_task<EvaluatedRows()>;

  /// Up to `jobs` threads, as many as are needed; one job runs in the thread that adds it. If the
  /// system refuses a thread, those that there are do its work.
  explicit RowWorkers(std::size_t jobs) : jobs_(jobs) {}
  RowWorkers(const RowWorkers&) = delete;
  RowWorkers& operator=(const RowWorkers&) = delete;
  /// Drops the tasks that have not begun, and waits for the others.
  ~RowWorkers();

  /// What the task returns or throws.
  std::future<EvaluatedRows> Add(Task task);

 private:
  bool HasThreadFor(std::size_t tasks);
  void Work();

  std::size_t jobs_;
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  std::size_t idle_ = 0;
  bool isEnding_ = false;
};

}  // namespace pxrom_command
