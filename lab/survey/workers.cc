// An ordered pipeline: a thread pool with a bounded reorder buffer. Every path has a slot in a
// queue, in the order of the selection. The thread that fills the first slot reports it and every
// filled slot after it; a thread that fills another slot leaves its report there and fetches the
// next path. The number of slots is bounded, so that memory does not grow with the number of paths,
// and large enough that threads stay busy while one path is slow.

#include "lab/survey/workers.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace fernwick::lab {
namespace {

constexpr std::size_t SlotsPerJob = 64;

class Workers {
 public:
  Workers(Selection& selection, std::size_t jobs, const Work& work)
      : selection_(selection), jobs_(jobs), work_(work) {}

  bool Run() {
    std::vector<std::thread> threads;
    try {
      while (threads.size() + 1 < jobs_) threads.emplace_back([this] { ProcessPaths(); });
    } catch (const std::system_error&) {  // no more threads
    }
    ProcessPaths();
    for (auto& thread : threads) thread.join();
    return !isStopped_;
  }

 private:
  struct Task {
    Selected selected;
    Report* slot;
  };

  void ProcessPaths() {
    while (auto task = NextTask()) Fill(*task->slot, work_(std::move(task->selected)));
  }

  // Waits for a free slot and for the path. Empty when there is nothing more to do.
  std::optional<Task> NextTask() {
    const std::lock_guard isNext(selectionMutex_);
    {
      std::unique_lock lock(mutex_);
      slotFreed_.wait(lock, [this] { return isStopped_ || slots_.size() < SlotsPerJob * jobs_; });
      if (isStopped_) return std::nullopt;
    }
    auto selected = selection_.Next();
    if (!selected) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return Task{*std::move(selected), &slots_.emplace_back()};
  }

  void Fill(Report& slot, Report report) {
    std::unique_lock lock(mutex_);
    slot = std::move(report);
    if (isReporting_) return;
    isReporting_ = true;
    while (!isStopped_ && !slots_.empty() && slots_.front()) {
      const auto next = std::move(slots_.front());
      slots_.pop_front();
      lock.unlock();
      slotFreed_.notify_one();
      const bool goesOn = next();
      lock.lock();
      if (!goesOn) Stop();
    }
    isReporting_ = false;
  }

  void Stop() {
    isStopped_ = true;
    slotFreed_.notify_one();  // one thread at most waits
    selection_.Stop();
  }

  Selection& selection_;
  const std::size_t jobs_;
  const Work& work_;

  std::mutex selectionMutex_;  // locked before mutex_
  std::mutex mutex_;           // guards everything below
  std::condition_variable slotFreed_;
  std::deque<Report> slots_;  // null: not filled; their addresses stay the same
  bool isReporting_ = false;
  bool isStopped_ = false;
};

}  // namespace

bool WorkInOrder(Selection& selection, std::size_t jobs, const Work& work) {
  return Workers(selection, jobs, work).Run();
}

}  // namespace fernwick::lab
