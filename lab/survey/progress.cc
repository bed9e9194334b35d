#include "lab/survey/progress.h"

#include <unistd.h>

#include "platform/console.h"

namespace fernwick::lab {
namespace {

constexpr std::chrono::milliseconds Interval(200);

std::string MinutesAndSeconds(std::size_t seconds) {
  const auto rest = std::to_string(seconds % 60);
  return std::to_string(seconds / 60) + (rest.size() == 1 ? ":0" : ":") + rest;
}

}  // namespace

std::string ProgressText(std::size_t done, std::optional<std::size_t> total,
                         std::chrono::milliseconds elapsed) {
  const auto milliseconds = static_cast<std::size_t>(elapsed.count());
  auto text = std::to_string(done);
  if (total) text += " of " + std::to_string(*total);
  if (milliseconds == 0) return text;
  text += ", " + std::to_string(done * 1000 / milliseconds) + " a second";
  if (!total || done == 0 || *total < done) return text;
  return text + ", " + MinutesAndSeconds((*total - done) * milliseconds / done / 1000) + " left";
}

Progress::Progress(std::optional<std::size_t> total) : total_(total) {}

bool Progress::IsShown() {
  return isatty(STDERR_FILENO) != 0;
}

void Progress::Step() {
  ++done_;
  const auto now = Clock::now();
  if (!isShown_ || now - shown_ < Interval) return;
  shown_ = now;
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(now - begin_);
  ProcessConsole().WriteError("\r" + ProgressText(done_, total_, elapsed) + "\x1B[K");
  isVisible_ = true;
}

void Progress::Clear() {
  if (isVisible_) ProcessConsole().WriteError("\r\x1B[K");
  isVisible_ = false;
}

}  // namespace fernwick::lab
