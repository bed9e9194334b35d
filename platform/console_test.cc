#include "platform/console.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "testing/redirection.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Redirection;
using testing::TemporaryDirectory;
using testing::TestConsole;

using Flushes = std::vector<std::string>;

constexpr std::size_t LargeSize = std::size_t{1} << 16;

TEST(Console, SendsWhatIsInTheBufferAtEachFlush) {
  TestConsole console;
  console.Write("a ");
  console.Print("%d%%\n", 7);
  console.Flush();
  console.Write("b");
  EXPECT_EQ(console.Flushes(), Flushes{"a 7%\n"});
  console.Flush();
  EXPECT_EQ(console.Flushes(), (Flushes{"a 7%\n", "b"}));
  EXPECT_EQ(console.OutputError(), 0);
}

TEST(Console, SendsNothingForAFlushOfNothing) {
  TestConsole console;
  console.Flush();
  console.Write("");
  console.Flush();
  console.Write("a");
  console.Flush();
  console.Flush();
  EXPECT_EQ(console.Flushes(), Flushes{"a"});
}

TEST(Console, WritesTextWithoutReadingItAsAFormat) {
  TestConsole console;
  console.Write("100%s %n");
  console.Flush();
  EXPECT_EQ(console.Output(), "100%s %n");
}

TEST(Console, WritesZeroBytesLikeOthers) {
  TestConsole console;
  console.Write(std::string_view("a\0b", 3));
  console.Flush();
  EXPECT_EQ(console.Output(), std::string("a\0b", 3));
}

TEST(Console, PrintsAsPrintfDoes) {
  TestConsole console;
  console.Print("\t%-5s 0x%llX %1.02f|", "ab", 0xFFFFFFFFFFFFFFFFull, 2.345);
  console.Print("plain");
  console.Flush();
  EXPECT_EQ(console.Output(), "\tab    0xFFFFFFFFFFFFFFFF 2.35|plain");
}

TEST(Console, PrintsATextOfAnyLength) {
  const std::string text(3 * LargeSize, 'x');
  TestConsole console;
  console.Print("%s.", text.c_str());
  console.Flush();
  EXPECT_EQ(console.Output(), text + ".");
}

TEST(Console, SendsALargeBufferWithoutAFlush) {
  TestConsole console;
  console.Write("a");
  console.Write(std::string(LargeSize - 2, 'x'));
  EXPECT_EQ(console.Flushes(), Flushes());
  console.Write("b");
  EXPECT_EQ(console.Flushes(), Flushes{"a" + std::string(LargeSize - 2, 'x') + "b"});
}

TEST(Console, SendsALargeTextWhole) {
  const std::string text = "first" + std::string(100 * LargeSize, 'x') + "last";
  TestConsole console;
  console.Write("before ");
  console.Write(text);
  console.Write(" after");
  console.Flush();
  EXPECT_EQ(console.Output(), "before " + text + " after");
}

TEST(Console, WritesNothingMoreAfterTheFirstFailureAlsoWhenALaterWriteWouldSucceed) {
  TestConsole console;
  console.Write("arrives ");
  console.Flush();
  console.Write("is lost");
  console.FailOutput(ENOSPC);
  EXPECT_EQ(console.OutputError(), 0);
  console.Flush();
  EXPECT_EQ(console.OutputError(), ENOSPC);
  console.FailOutput(0);
  console.Flush();
  console.Write("never");
  console.Print("%s", "never");
  console.Flush();
  console.Write(std::string(LargeSize, 'x'));
  EXPECT_EQ(console.Flushes(), Flushes{"arrives "});
  EXPECT_EQ(console.OutputError(), ENOSPC);
}

TEST(Console, RemembersTheFirstFailureAlone) {
  TestConsole console;
  console.FailOutput(ENOSPC);
  console.Write("lost");
  console.Flush();
  console.FailOutput(EPIPE);
  console.Write("lost");
  console.Flush();
  EXPECT_EQ(console.OutputError(), ENOSPC);
}

TEST(Console, NoticesAFailureWithoutAFlush) {
  TestConsole console;
  console.FailOutput(ENOSPC);
  console.Write(std::string(LargeSize, 'x'));
  EXPECT_EQ(console.OutputError(), ENOSPC);
}

TEST(Console, StillWritesToStandardErrorWhenStandardOutputHasFailed) {
  TestConsole console;
  console.FailOutput(EPIPE);
  console.Write("lost");
  console.Flush();
  console.WriteError("could not be written\n");
  console.Log("a line");
  EXPECT_EQ(console.Error(), "could not be written\nfernwick: a line\n");
}

TEST(StringConsole, CollectsWhatIsFlushed) {
  StringConsole console;
  console.Write("a ");
  console.Print("%d", 7);
  EXPECT_EQ(console.Output(), "");
  console.Flush();
  EXPECT_EQ(console.Output(), "a 7");
  console.Write(" never flushed");
  EXPECT_EQ(console.Output(), "a 7");
  EXPECT_EQ(console.OutputError(), 0);
}

TEST(StringConsole, CollectsDiagnosticsAndLinesOfTheLogInTheirOrder) {
  StringConsole console;
  console.WriteError("** first\n");
  console.Log("second");
  console.WriteError("** 100% %s %n \u00E9");
  EXPECT_EQ(console.Error(), "** first\nfernwick: second\n** 100% %s %n \u00E9");
  EXPECT_EQ(console.Output(), "");
}

TEST(LogLine, IsTheMessageUnderTheToolsName) {
  EXPECT_EQ(LogLine("a line"), "fernwick: a line\n");
  EXPECT_EQ(LogLine(""), "fernwick: \n");
  EXPECT_EQ(LogLine("two\nlines"), "fernwick: two\nlines\n");
}

TEST(LogLine, DoesNotRepeatALineFeedAtTheEnd) {
  EXPECT_EQ(LogLine("a line\n"), "fernwick: a line\n");
  EXPECT_EQ(LogLine("\n"), "fernwick: \n");
  EXPECT_EQ(LogLine("a line\n\n"), "fernwick: a line\n\n");
}

// Both consoles show a line of the log alike.
TEST(ProcessConsole, LogsToStandardErrorAsALogLine) {
  const std::string messages[] = {"a line",
                                  "",
                                  "two\nlines",
                                  "a line\n",
                                  "\n",
                                  "a\n\n",
                                  "%s %n %m 100% %@ %d",
                                  "\u00E9 \u65E5",
                                  " blank ",
                                  "\t",
                                  std::string(100'000, 'x')};
  for (const auto& message : messages) {
    const Redirection standardError(STDERR_FILENO);
    ProcessConsole().Log(message);
    StringConsole strings;
    strings.Log(message);
    EXPECT_EQ(standardError.Text(), LogLine(message));
    EXPECT_EQ(strings.Error(), LogLine(message));
  }
}

TEST(ProcessConsole, WritesDiagnosticsAtOnceAndAsTheyAre) {
  const Redirection standardError(STDERR_FILENO);
  ProcessConsole console;
  console.WriteError("** Aborting\n");
  EXPECT_EQ(standardError.Text(), "** Aborting\n");
  console.WriteError("** 100% %s %n \u00E9\n");
  EXPECT_EQ(standardError.Text(), "** Aborting\n** 100% %s %n \u00E9\n");
}

TEST(ProcessConsole, KeepsTheOrderOfDiagnosticsAndLinesOfTheLog) {
  const Redirection standardError(STDERR_FILENO);
  ProcessConsole console;
  console.WriteError("** first\n");
  console.Log("second");
  console.WriteError("** third\n");
  console.Log("fourth");
  EXPECT_EQ(standardError.Text(), "** first\nfernwick: second\n** third\nfernwick: fourth\n");
}

TEST(ProcessConsole, WritesToStandardOutputWhatIsFlushedAndNothingElse) {
  Redirection standardOutput(STDOUT_FILENO);
  const Redirection standardError(STDERR_FILENO);
  std::string beforeFlush;
  std::string afterFlush;
  {
    ProcessConsole console;
    console.Write("flushed");
    beforeFlush = standardOutput.Text();
    console.Flush();
    afterFlush = standardOutput.Text();
    console.Write("not flushed");
  }
  standardOutput.End();
  EXPECT_EQ(beforeFlush, "");
  EXPECT_EQ(afterFlush, "flushed");
  EXPECT_EQ(standardOutput.Text(), "flushed");
  EXPECT_EQ(standardError.Text(), "");
}

TEST(ProcessConsole, WritesALargeTextWhole) {
  const std::string text = "first" + std::string(100 * LargeSize, 'x') + "last";
  Redirection standardOutput(STDOUT_FILENO);
  ProcessConsole console;
  console.Write(text);
  console.Flush();
  standardOutput.End();
  EXPECT_EQ(standardOutput.Text(), text);
  EXPECT_EQ(console.OutputError(), 0);
}

TEST(ProcessConsole, WritesNothingMoreAfterAFullDiskAlsoWhenThereIsRoomAgain) {
  ProcessConsole console;
  {
    const Redirection fullDisk(STDOUT_FILENO, "/dev/full");
    console.Write("lost");
    console.Flush();
  }
  EXPECT_EQ(console.OutputError(), ENOSPC);
  Redirection standardOutput(STDOUT_FILENO);
  console.Write("never");
  console.Flush();
  standardOutput.End();
  EXPECT_EQ(console.OutputError(), ENOSPC);
  EXPECT_EQ(standardOutput.Text(), "");
}

TEST(ProcessConsole, NoticesAFullDiskWithoutAFlush) {
  Redirection fullDisk(STDOUT_FILENO, "/dev/full");
  ProcessConsole console;
  console.Write(std::string(LargeSize, 'x'));
  fullDisk.End();
  EXPECT_EQ(console.OutputError(), ENOSPC);
}

TEST(ProcessConsole, CannotWriteToAClosedStandardOutput) {
  Redirection standardOutput(STDOUT_FILENO);
  close(STDOUT_FILENO);
  ProcessConsole console;
  console.Write("lost");
  console.Flush();
  standardOutput.End();
  EXPECT_EQ(console.OutputError(), EBADF);
}

TEST(ProcessConsole, GoesOnWhenStandardErrorCannotBeWritten) {
  Redirection standardOutput(STDOUT_FILENO);
  const Redirection fullDisk(STDERR_FILENO, "/dev/full");
  ProcessConsole console;
  console.WriteError("lost");
  console.Log("lost");
  console.Write("a plan");
  console.Flush();
  standardOutput.End();
  EXPECT_EQ(standardOutput.Text(), "a plan");
  EXPECT_EQ(console.OutputError(), 0);
}

// A file that may not grow beyond so many bytes, until the end of its scope.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    const rlimit limit{size, saved_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*handler_)(int);
  rlimit saved_;
};

TEST(ProcessConsole, LeavesAPrefixWhereAWriteFailsHalfway) {
  Redirection standardOutput(STDOUT_FILENO);
  ProcessConsole console;
  {
    const FileSizeLimit limit(10);
    console.Write("0123456789 and more");
    console.Flush();
  }
  console.Write("never");
  console.Flush();
  standardOutput.End();
  EXPECT_EQ(console.OutputError(), EFBIG);
  EXPECT_EQ(standardOutput.Text(), "0123456789");
}

std::atomic<int> interruptions = 0;

// Waits until the thread sleeps, as it does in a write to a full pipe.
void WaitUntilAsleep(pid_t thread) {
  const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
  for (std::string stat; stat.find(") S ") == std::string::npos;) {
    std::getline(std::ifstream(path), stat);
  }
}

// Reads a pipe to its end, after two signals have interrupted the thread that writes into it. The
// first interrupts a write that has filled the pipe, which ends short; the second, a write of
// nothing.
std::string ReadAfterInterruptions(int pipe, pthread_t writer, pid_t writerId) {
  for (int count = 1; count <= 2; ++count) {
    WaitUntilAsleep(writerId);
    pthread_kill(writer, SIGUSR1);
    while (interruptions < count) std::this_thread::yield();
  }
  std::string text;
  char piece[4096];
  for (;;) {
    const ssize_t size = read(pipe, piece, sizeof piece);
    if (size <= 0) return text;
    text.append(piece, static_cast<std::size_t>(size));
  }
}

TEST(ProcessConsole, WritesOnAfterASignal) {
  struct sigaction action {};
  action.sa_handler = [](int) { ++interruptions; };  // without SA_RESTART
  struct sigaction saved {};
  ASSERT_EQ(sigaction(SIGUSR1, &action, &saved), 0);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string text = "first" + std::string(4 * LargeSize, 'x') + "last";
  std::string arrived;
  std::thread reader([&, writer = pthread_self(), writerId = gettid()] {
    arrived = ReadAfterInterruptions(ends[0], writer, writerId);
  });
  ProcessConsole console;
  {
    const Redirection standardOutput(STDOUT_FILENO, "/dev/fd/" + std::to_string(ends[1]));
    close(ends[1]);
    console.Write(text);
    console.Flush();
  }
  reader.join();
  close(ends[0]);
  sigaction(SIGUSR1, &saved, nullptr);
  EXPECT_EQ(console.OutputError(), 0);
  EXPECT_EQ(interruptions, 2);
  EXPECT_EQ(arrived, text);
}

}  // namespace
}  // namespace fernwick
