#include "lab/survey/worker_pool.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

namespace fernwick::lab {
namespace {

constexpr std::size_t WindowPerJob = 64;

// A path whose workers end before they begin on it is not what ends them.
constexpr int MostStarts = 3;

class Pool {
 public:
  Pool(Selection& selection, const Work& work, std::size_t jobs, const TakeResult& take)
      : selection_(selection),
        work_(work),
        jobs_(jobs),
        window_(WindowPerJob * jobs),
        take_(take) {}

  PoolEnd Run() {
    for (;;) {
      HandOut();
      if (!error_.empty()) return {false, error_};
      const bool wasFull = places_.size() == window_;
      if (!HandOver()) return {false};
      if (places_.empty() && ended_) return {true};
      // A full window kept paths from workers that may all be free: then nothing would wake it.
      if (!wasFull || places_.size() == window_) Wait();
    }
  }

 private:
  // A path on its way. Its address stays the same as long as it is.
  struct Place {
    WorkResult result;
    bool isDone = false;
    int starts = 0;
  };

  // Gives every worker that is free something to do, as far as there is something.
  void HandOut() {
    while (working_.size() < jobs_) {
      auto* place = NextPlace();
      if (place == nullptr) return;
      if (!Begin(*place)) return;
    }
  }

  // The next path that is to be worked on; null when there is none for now.
  Place* NextPlace() {
    if (!returned_.empty()) {
      auto* place = returned_.back();
      returned_.pop_back();
      return place;
    }
    isWaiting_ = false;
    while (!ended_ && places_.size() < window_) {
      auto selected = selection_.Next();
      if (!selected) {
        isWaiting_ = selection_.IsWaiting();
        ended_ = !isWaiting_;
        return nullptr;
      }
      auto& place = places_.emplace_back();
      place.result.path = std::move(selected->path);
      place.result.refusal = std::move(selected->error);
      if (place.result.refusal.empty()) return &place;
      place.isDone = true;
    }
    return nullptr;
  }

  // False when there is no worker for it: it waits for the next that is free.
  bool Begin(Place& place) {
    if (idle_.empty() && !StartWorker()) {
      returned_.push_back(&place);
      return false;
    }
    auto* worker = idle_.back();
    idle_.pop_back();
    ++place.starts;
    worker->Give(place.result.path);
    working_.emplace_back(worker, &place);
    return true;
  }

  // Where no more can be had, those that there are do all the work.
  bool StartWorker() {
    auto worker = Worker::Start(work_, workers_);
    if (worker == nullptr) {
      if (workers_.empty()) error_ = std::strerror(errno);
      jobs_ = workers_.size();
      return false;
    }
    idle_.push_back(worker.get());
    workers_.push_back(std::move(worker));
    return true;
  }

  bool HandOver() {
    while (!places_.empty() && places_.front().isDone) {
      if (!take_(places_.front().result)) return false;
      places_.pop_front();
    }
    return true;
  }

  void Wait() {
    std::vector<pollfd> awaited;
    std::vector<Worker*> readable;
    const bool hasRoom = working_.size() < jobs_ && places_.size() < window_;
    for (const auto& worker : workers_) awaited.push_back({worker->Descriptor(), POLLIN, 0});
    if (isWaiting_ && hasRoom) awaited.push_back({STDIN_FILENO, POLLIN, 0});
    if (poll(awaited.data(), awaited.size(), -1) < 0) return;
    for (std::size_t i = 0; i < workers_.size(); ++i) {
      if (awaited[i].revents != 0) readable.push_back(workers_[i].get());
    }
    for (auto* worker : readable) Read(*worker);
  }

  void Read(Worker& worker) {
    switch (worker.Read()) {
      case Worker::Progress::Underway: break;
      case Worker::Progress::Answered: {
        auto& place = *TakePlaceOf(worker);
        place.result.answer = worker.TakeAnswer();
        place.isDone = true;
        idle_.push_back(&worker);
        break;
      }
      case Worker::Progress::Ended: Bury(worker); break;
    }
  }

  void Bury(Worker& worker) {
    std::erase(idle_, &worker);
    if (auto* place = TakePlaceOf(worker)) {
      if (!worker.HasBegun() && place->starts < MostStarts) {
        returned_.push_back(place);
      } else {
        place->result.end = worker.End();
        place->result.note = worker.LastNote();
        place->isDone = true;
      }
    }
    std::erase_if(workers_, [&](const auto& owned) { return owned.get() == &worker; });
  }

  // What the worker is on, which it then is no longer; null when it is on nothing.
  Place* TakePlaceOf(const Worker& worker) {
    const auto found =
        std::ranges::find(working_, &worker, [](const auto& pair) { return pair.first; });
    if (found == working_.end()) return nullptr;
    auto* place = found->second;
    working_.erase(found);
    return place;
  }

  Selection& selection_;
  const Work& work_;
  std::size_t jobs_;
  const std::size_t window_;
  const TakeResult& take_;

  std::deque<Place> places_;      // in the order of the selection, from the next to hand over
  std::vector<Place*> returned_;  // to be given to a worker again
  std::vector<std::unique_ptr<Worker>> workers_;
  std::vector<Worker*> idle_;
  std::vector<std::pair<Worker*, Place*>> working_;
  bool ended_ = false;      // nothing more is selected
  bool isWaiting_ = false;  // for standard input
  std::string error_;
};

}  // namespace

PoolEnd WorkThrough(Selection& selection, const Work& work, std::size_t jobs,
                    const TakeResult& take) {
  return Pool(selection, work, jobs, take).Run();
}

}  // namespace fernwick::lab
