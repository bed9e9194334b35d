#include "lab/survey/worker_pool.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <new>
#include <set>
#include <vector>

#include "driver/process.h"
#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using Strings = std::vector<std::string>;

// A result in one line: "path=answer", "path!end(note)" or "path?refusal".
std::string Describe(const WorkResult& result) {
  if (!result.refusal.empty()) return result.path + "?" + result.refusal;
  if (result.answer) return result.path + "=" + *result.answer;
  return result.path + "!" + result.end + "(" + result.note + ")";
}

bool HasNoChild() {
  return waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD;
}

Strings ResultsOf(const Strings& paths, const Work& work, std::size_t jobs) {
  PrepareProcess();
  Selection selection(paths);
  Strings results;
  const auto end = WorkThrough(selection, work, jobs, [&](const WorkResult& result) {
    results.push_back(Describe(result));
    return true;
  });
  EXPECT_TRUE(end.complete);
  EXPECT_EQ(end.error, "");
  EXPECT_TRUE(HasNoChild());
  return results;
}

// Does what the path says, and else answers it twice over.
std::string Obey(const std::string& path, const Note& note) {
  note("a");
  note(path.substr(0, 2));
  if (path.ends_with("abort")) std::abort();
  if (path.ends_with("kill")) kill(getpid(), SIGKILL);
  if (path.ends_with("exit")) _exit(3);
  if (path.ends_with("exhaust")) std::get_new_handler()();
  if (path.ends_with("close")) {
    for (int file = 3; file < 100; ++file) close(file);
    for (;;) pause();
  }
  return path + path;
}

TEST(WorkerPool, HandsAnswersOverInTheOrderOfTheSelection) {
  Strings paths;
  Strings expected;
  for (int i = 0; i < 1000; ++i) {
    paths.push_back("/" + std::to_string(i));
    expected.push_back(paths.back() + "=" + paths.back() + paths.back());
  }
  for (const std::size_t jobs : {1u, 2u, 7u}) EXPECT_EQ(ResultsOf(paths, Obey, jobs), expected);
}

TEST(WorkerPool, LosesNothingButThePathOfAWorkerThatEnds) {
  const Strings paths = {"/1", "/2abort",   "/3",      "/4kill", "/5exit",
                         "/6", "/7exhaust", "/8close", "/9"};
  const Strings expected = {"/1=/1/1",
                            "/2abort!SIGABRT(/2)",
                            "/3=/3/3",
                            "/4kill!SIGKILL(/4)",
                            "/5exit!exit status 3(/5)",
                            "/6=/6/6",
                            "/7exhaust!out of memory(/7)",
                            "/8close!SIGKILL(/8)",
                            "/9=/9/9"};
  for (const std::size_t jobs : {1u, 2u, 20u}) EXPECT_EQ(ResultsOf(paths, Obey, jobs), expected);
}

TEST(WorkerPool, SurvivesTheEndOfEveryWorker) {
  const Strings paths(300, "/abort");
  EXPECT_EQ(ResultsOf(paths, Obey, 3), Strings(300, "/abort!SIGABRT(/a)"));
}

TEST(WorkerPool, PassesRefusalsThrough) {
  const testing::TemporaryDirectory directory;
  testing::StandardInputPipe input;  // which is then replaced by what cannot be read
  const int unreadable = open("/dev/null", O_WRONLY);
  dup2(unreadable, STDIN_FILENO);
  close(unreadable);
  EXPECT_EQ(ResultsOf({"/1", "-", "/2"}, Obey, 2),
            (Strings{"/1=/1/1", "-?Bad file descriptor", "/2=/2/2"}));
}

TEST(WorkerPool, CarriesBytesOfAnyKindAndNumber) {
  const std::string path = "/a\nb\xFF" + std::string(100'000, 'x');
  EXPECT_EQ(ResultsOf({path}, Obey, 1), Strings{path + "=" + path + path});
  const auto nothing = [](const std::string&, const Note&) { return std::string(); };
  EXPECT_EQ(ResultsOf({"/a"}, nothing, 1), Strings{"/a="});
}

TEST(WorkerPool, OfAnEmptySelectionHandsNothingOver) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(ResultsOf({directory.Path()}, Obey, 2), Strings{});
}

TEST(WorkerPool, StopsWhenResultsAreNoLongerTaken) {
  PrepareProcess();
  Selection selection({"/1", "/2", "/3"});
  Strings results;
  const auto end = WorkThrough(selection, Obey, 2, [&](const WorkResult& result) {
    results.push_back(Describe(result));
    return results.size() < 2;
  });
  EXPECT_FALSE(end.complete);
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(results, (Strings{"/1=/1/1", "/2=/2/2"}));
  EXPECT_TRUE(HasNoChild());
}

// A barrier that two processes pass together.
class SharedBarrier {
 public:
  SharedBarrier()
      : barrier_(static_cast<pthread_barrier_t*>(mmap(nullptr, sizeof(pthread_barrier_t),
                                                      PROT_READ | PROT_WRITE,
                                                      MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    pthread_barrierattr_t attributes;
    pthread_barrierattr_init(&attributes);
    pthread_barrierattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_barrier_init(barrier_, &attributes, 2);
    pthread_barrierattr_destroy(&attributes);
  }
  ~SharedBarrier() { munmap(barrier_, sizeof(pthread_barrier_t)); }
  SharedBarrier(const SharedBarrier&) = delete;
  SharedBarrier& operator=(const SharedBarrier&) = delete;

  void Pass() { pthread_barrier_wait(barrier_); }

 private:
  pthread_barrier_t* barrier_;
};

// No worker is done with a path before another works beside it, so each of two does half of them.
TEST(WorkerPool, KeepsEveryProcessAtWork) {
  constexpr int Half = 1000;
  SharedBarrier barrier;
  const auto meet = [&](const std::string&, const Note&) {
    barrier.Pass();
    return std::to_string(getpid());
  };
  PrepareProcess();
  Selection selection(Strings(std::size_t{2} * Half, "/1"));
  std::map<std::string, int> shares;
  WorkThrough(selection, meet, 2, [&](const WorkResult& result) {
    ++shares[result.answer.value_or(result.end)];
    return true;
  });
  ASSERT_EQ(shares.size(), 2u);
  for (const auto& [process, share] : shares) EXPECT_EQ(share, Half) << process;
}

// The first path is answered only when all have been begun that the window lets begin.
TEST(WorkerPool, KeepsBoundedlyManyResultsBack) {
  constexpr int Window = 2 * 64;
  int begun[2];
  ASSERT_EQ(pipe(begun), 0);
  const auto work = [&](const std::string& path, const Note&) {
    char byte = 'x';
    if (path != "/0") return std::string(write(begun[1], &byte, 1) == 1 ? "" : "failed");
    for (int i = 1; i < Window; ++i) {
      if (read(begun[0], &byte, 1) != 1) return std::string("failed");
    }
    // Whatever else were begun now would be told by a byte too much.
    pollfd more{begun[0], POLLIN, 0};
    return std::string(poll(&more, 1, 0) == 0 ? "bounded" : "unbounded");
  };
  Strings paths;
  for (int i = 0; i < 3 * Window; ++i) paths.push_back("/" + std::to_string(i));
  const auto results = ResultsOf(paths, work, 2);
  EXPECT_EQ(results.size(), paths.size());
  EXPECT_EQ(results.front(), "/0=bounded");
  close(begun[0]);
  close(begun[1]);
}

TEST(WorkerPool, HandsOverWhatIsDoneWhileStandardInputIsSilent) {
  PrepareProcess();
  testing::StandardInputPipe input;
  input.Write("/1\n");
  Selection selection({"-"});
  Strings results;
  WorkThrough(selection, Obey, 2, [&](const WorkResult& result) {
    results.push_back(Describe(result));
    input.Write("/2\n");
    return results.size() < 2;
  });
  EXPECT_EQ(results, (Strings{"/1=/1/1", "/2=/2/2"}));
}

// One that is killed while it has nothing to do costs nothing.
TEST(WorkerPool, ReplacesAWorkerThatIsKilledWhileItIsFree) {
  PrepareProcess();
  testing::StandardInputPipe input;
  input.Write("/1\n");
  Selection selection({"-"});
  const auto tellProcess = [](const std::string&, const Note&) { return std::to_string(getpid()); };
  std::set<std::string> processes;
  WorkThrough(selection, tellProcess, 1, [&](const WorkResult& result) {
    EXPECT_TRUE(result.answer.has_value()) << result.end;
    if (!result.answer) return false;
    processes.insert(*result.answer);
    kill(std::stoi(*result.answer), SIGKILL);
    input.Write("/more\n");
    return processes.size() < 20;
  });
  EXPECT_EQ(processes.size(), 20u);
}

// A process of the test's own kills the worker in the midst of its work.
TEST(WorkerPool, LosesNothingButThePathOfAWorkerThatIsKilledFromOutside) {
  int victims[2];
  ASSERT_EQ(pipe(victims), 0);
  const pid_t killer = fork();
  if (killer == 0) {
    close(victims[1]);
    for (pid_t victim = 0; read(victims[0], &victim, sizeof victim) == sizeof victim;) {
      kill(victim, SIGKILL);
    }
    _exit(0);
  }
  const auto work = [&](const std::string& path, const Note&) {
    if (path != "/2") return path;
    const pid_t self = getpid();
    while (write(victims[1], &self, sizeof self) == sizeof self) pause();
    return std::string("not killed");
  };
  PrepareProcess();
  Selection selection({"/1", "/2", "/3"});
  Strings results;
  WorkThrough(selection, work, 2, [&](const WorkResult& result) {
    results.push_back(Describe(result));
    return true;
  });
  EXPECT_EQ(results, (Strings{"/1=/1", "/2!SIGKILL()", "/3=/3"}));
  close(victims[1]);
  close(victims[0]);
  EXPECT_EQ(waitpid(killer, nullptr, 0), killer);
}

TEST(WorkerPool, TellsWhyNoProcessCanBeHad) {
  rlimit files;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
  const rlimit none{0, files.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  Selection selection({"/1"});
  const auto end = WorkThrough(selection, Obey, 2, [](const WorkResult&) { return true; });
  setrlimit(RLIMIT_NOFILE, &files);
  EXPECT_FALSE(end.complete);
  EXPECT_EQ(end.error, "Too many open files");
}

TEST(WorkerPool, MakesDoWithTheProcessesThatCanBeHad) {
  rlimit files;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
  const int next = dup(STDIN_FILENO);
  close(next);
  const rlimit few{static_cast<rlim_t>(next) + 6, files.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  const auto results = ResultsOf({"/1", "/2", "/3abort", "/4", "/5"}, Obey, 50);
  setrlimit(RLIMIT_NOFILE, &files);
  EXPECT_EQ(results, (Strings{"/1=/1/1", "/2=/2/2", "/3abort!SIGABRT(/3)", "/4=/4/4", "/5=/5/5"}));
}

}  // namespace
}  // namespace fernwick::lab
