#include "row_workers.h"

#include <system_error>
#include <utility>

namespace pxrom_command {

RowWorkers::~RowWorkers() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    isEnding_ = true;
    tasks_.clear();
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

/// Starts a thread if all are busy. False without any thread.
bool RowWorkers::HasThreadFor(std::size_t tasks) {
  if (idle_ < tasks && threads_.size() < jobs_) {
    try {
      threads_.emplace_back([this] { Work(); });
    } catch (const std::system_error&) {
      jobs_ = threads_.size();
    }
  }
  return !threads_.empty();
}

std::future<EvaluatedRows> RowWorkers::Add(Task task) {
  std::future<EvaluatedRows> result = task.get_future();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (jobs_ > 1 && HasThreadFor(tasks_.size() + 1)) {
      tasks_.push_back(std::move(task));
      changed_.notify_one();
      return result;
    }
  }
  task();
  return result;
}

void RowWorkers::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!isEnding_) {
    if (tasks_.empty()) {
      ++idle_;
      changed_.wait(lock);
      --idle_;
      continue;
    }
    Task task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    lock.lock();
  }
}

}  // namespace pxrom_command
