#include "lab/survey/workers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <barrier>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using Strings = std::vector<std::string>;

// What `answer` returns for each path, in the order in which it was reported. A refusal by the
// selection is "PATH?REFUSAL".
template <typename Answer>
Strings ResultsOf(const Strings& paths, std::size_t jobs, Answer answer) {
  Selection selection(paths);
  Strings results;
  const bool isComplete = WorkInOrder(selection, jobs, [&](const Selected& selected) -> Report {
    auto result =
        selected.error.empty() ? answer(selected.path) : selected.path + "?" + selected.error;
    return [&results, result = std::move(result)] {
      results.push_back(result);
      return true;
    };
  });
  EXPECT_TRUE(isComplete);
  return results;
}

std::string Twice(const std::string& path) {
  return path + path;
}

Strings Paths(std::size_t count) {
  Strings paths;
  for (std::size_t i = 0; i < count; ++i) paths.push_back("/" + std::to_string(i));
  return paths;
}

TEST(WorkInOrder, ReportsInTheOrderOfTheSelection) {
  const auto paths = Paths(1000);
  Strings expected;
  for (const auto& path : paths) expected.push_back(path + path);
  for (const std::size_t jobs : {1u, 2u, 7u}) EXPECT_EQ(ResultsOf(paths, jobs, Twice), expected);
}

TEST(WorkInOrder, ReportsRefusalsInTheirTurn) {
  testing::StandardInputPipe input;  // which is then replaced by what cannot be read
  const int unreadable = open("/dev/null", O_WRONLY);
  dup2(unreadable, STDIN_FILENO);
  close(unreadable);
  EXPECT_EQ(ResultsOf({"/1", "-", "/2"}, 2, Twice),
            (Strings{"/1/1", "-?Bad file descriptor", "/2/2"}));
}

TEST(WorkInOrder, TakesPathsOfAnyBytes) {
  const std::string path = "/a\nb\xFF" + std::string(100'000, 'x');
  EXPECT_EQ(ResultsOf({path}, 2, Twice), Strings{path + path});
}

TEST(WorkInOrder, OfAnEmptySelectionReportsNothing) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(ResultsOf({directory.Path()}, 2, Twice), Strings{});
}

// The calling thread is the one job there is.
TEST(WorkInOrder, WithOneJobStartsNoThread) {
  const auto self = std::this_thread::get_id();
  std::atomic<int> others = 0;
  ResultsOf(Paths(100), 1, [&](const std::string& path) {
    others += std::this_thread::get_id() != self;
    return path;
  });
  EXPECT_EQ(others, 0);
}

// No thread is done with a path before another works beside it, so each of two does half of them.
TEST(WorkInOrder, KeepsEveryThreadAtWork) {
  constexpr int Half = 1000;
  std::barrier meeting(2);
  std::mutex mutex;
  std::map<std::thread::id, int> shares;
  ResultsOf(Paths(std::size_t{2} * Half), 2, [&](const std::string& path) {
    meeting.arrive_and_wait();
    const std::lock_guard lock(mutex);
    ++shares[std::this_thread::get_id()];
    return path;
  });
  ASSERT_EQ(shares.size(), 2u);
  for (const auto& [thread, share] : shares) EXPECT_EQ(share, Half);
}

TEST(WorkInOrder, CallsOneReportAtATime) {
  Selection selection(Paths(2000));
  std::atomic<int> calls = 0;
  int atOnce = 0;
  WorkInOrder(selection, 4, [&](const Selected&) -> Report {
    return [&] {
      atOnce += ++calls != 1;
      std::this_thread::yield();
      --calls;
      return true;
    };
  });
  EXPECT_EQ(atOnce, 0);
}

// The work on the first path ends only when it has begun on all that the window allows, and returns
// on how many it has by then.
TEST(WorkInOrder, KeepsBoundedlyManyResultsBack) {
  constexpr int Window = 2 * 64;
  std::atomic<int> begun = 0;
  const auto results = ResultsOf(Paths(std::size_t{3} * Window), 2, [&](const std::string& path) {
    ++begun;
    begun.notify_all();
    if (path != "/0") return path;
    for (int count = begun; count < Window; count = begun) begun.wait(count);
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();  // for whatever else may begin
    return "first of " + std::to_string(begun);
  });
  EXPECT_EQ(results.size(), std::size_t{3} * Window);
  EXPECT_EQ(results.front(), "first of " + std::to_string(Window));
}

// After a report that fails no other is called, and only paths that were taken are worked on.
TEST(WorkInOrder, StopsAfterAReportThatFails) {
  for (const std::size_t jobs : {1u, 2u, 9u}) {
    Selection selection(Paths(10'000));
    std::atomic<std::size_t> begun = 0;
    Strings results;
    const bool isComplete = WorkInOrder(selection, jobs, [&](const Selected& selected) -> Report {
      ++begun;
      return [&, path = selected.path] {
        results.push_back(path);
        return results.size() < 2;
      };
    });
    EXPECT_FALSE(isComplete);
    EXPECT_EQ(results, (Strings{"/0", "/1"}));
    EXPECT_LE(begun, 2 + 64 * jobs);
  }
}

// A thread that waits for standard input delays neither the reports of the others nor the end.
TEST(WorkInOrder, ReportsAndStopsWhileStandardInputIsSilent) {
  for (const std::size_t jobs : {1u, 2u, 5u}) {
    testing::StandardInputPipe input;
    input.Write("/1\n");
    Selection selection({"-"});
    Strings results;
    WorkInOrder(selection, jobs, [&](const Selected& selected) -> Report {
      return [&, path = selected.path] {
        results.push_back(path);
        if (results.size() < 3) input.Write("/more\n");
        return results.size() < 3;
      };
    });
    EXPECT_EQ(results, (Strings{"/1", "/more", "/more"}));
  }
}

// Sets how large the stack of a new thread is to be, until its end.
class StackSize {
 public:
  explicit StackSize(std::size_t size) {
    pthread_getattr_default_np(&before_);
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
    pthread_attr_destroy(&attributes);
  }
  ~StackSize() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }
  StackSize(const StackSize&) = delete;
  StackSize& operator=(const StackSize&) = delete;

 private:
  pthread_attr_t before_;
};

TEST(WorkInOrder, DoesWithoutThreadsThatCannotBeStarted) {
  const StackSize tooLarge(std::size_t{1} << 47);
  const auto self = std::this_thread::get_id();
  std::atomic<int> others = 0;
  const auto results = ResultsOf(Paths(100), 50, [&](const std::string& path) {
    others += std::this_thread::get_id() != self;
    return path;
  });
  EXPECT_EQ(results, Paths(100));
  EXPECT_EQ(others, 0);
}

}  // namespace
}  // namespace fernwick::lab
