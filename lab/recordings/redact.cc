#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "lab/recordings/recording_file.h"
#include "lab/recordings/redaction.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"
#include "registry/recording_reader.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

constexpr char Description[] =
    "Writes recordings in which unique ids, UUIDs, serial numbers and hardware addresses have "
    "given "
    "way to pseudonyms: the same for equal values, in all recordings given together, of the same "
    "kind and with the same low four bits, so that matching stays as it was except against those "
    "values. Prints how many values were replaced under each key. One recording goes to the file "
    "OUT; "
    "several, or one when OUT is a directory, go into it under their own names.";

constexpr char Example[] =
    "Example:\n  fernwick-lab redact desk.registry.plist lap.registry.plist shared/ --key owner\n";

// A recording and where its redacted form goes.
struct Job {
  std::string path;
  std::string out;
};

// Empty after a line on standard error when the files cannot go there.
std::vector<Job> PlanJobs(const std::vector<std::string>& paths, const std::string& out) {
  std::error_code error;  // what cannot be looked at is no directory; writing there tells why
  const bool intoDirectory = fs::is_directory(out, error);
  if (!intoDirectory && paths.size() > 1) {
    PrintError(out + ": several recordings need a directory to go to");
    return {};
  }
  std::vector<Job> jobs;
  std::set<std::string> taken;
  for (const auto& path : paths) {
    auto target = intoDirectory ? (fs::path(out) / fs::path(path).filename()).string() : out;
    if (!taken.insert(target).second) {
      PrintError(target + ": two recordings of that name would go there");
      return {};
    }
    jobs.push_back({path, std::move(target)});
  }
  return jobs;
}

// Reads every recording once before anything is written.
int CheckAll(const std::vector<Job>& jobs) {
  for (const auto& job : jobs) {
    const auto recording = LoadRecording(job.path);
    if (!recording) return PrintError(job.path, recording.Error());
  }
  return LabStatus::Done;
}

class Redaction {
 public:
  explicit Redaction(const std::vector<std::string>& furtherKeys)
      : furtherKeys_(furtherKeys.begin(), furtherKeys.end()) {}

  int Write(const Job& job) {
    Serialisation form;
    const auto recording = LoadRecording(job.path, &form);
    if (!recording) return PrintError(job.path, recording.Error());
    auto redacted = RedactRecording(recording->list.value, furtherKeys_, pseudonyms_);
    const auto check = InterpretRecording(std::move(redacted.list));
    if (!check) {
      return PrintError(job.path + ": cannot be redacted",
                        {check.Error(), LabStatus::MalformedInput});
    }
    for (const auto& [key, count] : redacted.replaced) counts_[key] += count;
    textsElsewhere_ += redacted.textsElsewhere;
    return WriteRecording(job.out, check->list.value, form);
  }

  std::string Report() const {
    std::string text;
    for (const auto& [key, count] : counts_) {
      text += "replaced \"" + PrintableText(key) + "\": " + std::to_string(count) + "\n";
    }
    if (textsElsewhere_ != 0) {
      text += "replaced inside other texts: " + std::to_string(textsElsewhere_) + "\n";
    }
    return text.empty() ? "nothing to replace\n" : text;
  }

 private:
  std::set<std::string> furtherKeys_;
  Pseudonyms pseudonyms_;
  ReplacedCounts counts_;
  std::size_t textsElsewhere_ = 0;
};

}  // namespace

VerbEnd Redact(int argumentCount, char* const arguments[]) {
  std::vector<std::string> paths;
  std::vector<std::string> keys;
  const CommandLine line = {
      .verb = "redact",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "RECORDING",
           .target = &paths,
           .help = "the recorded computers, and last the file or directory OUT that they go to",
           .least = 2},
          {.name = "--key",
           .target = &keys,
           .help = "replace the properties of that name as well; may be repeated",
           .valueName = "KEY"},
      }};
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  const auto out = paths.back();
  paths.pop_back();
  const auto jobs = PlanJobs(paths, out);
  if (jobs.empty()) return LabStatus::BadUsage;
  if (const int status = CheckAll(jobs); status != LabStatus::Done) return status;
  Redaction redaction(keys);
  for (const auto& job : jobs) {
    if (const int status = redaction.Write(job); status != LabStatus::Done) return status;
  }
  return PrintResult(redaction.Report());
}

}  // namespace fernwick::lab
