// Times how property lists are read, beside other readers, and measures the memory it takes.
//
// usage: reading_bench [--json FILE] [--megabytes N]... [GOOGLE-BENCHMARK-FLAG...]
//
// Prints a table; with --json also writes the figures: an array of objects with "document", "form",
// "reader", "seconds" (the median), "ratio" (to what fernwick takes) and, where it was measured,
// "peakBytes" (beyond the file itself).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "bench/documents.h"
#include "bench/peak_memory.h"
#include "bench/readers.h"
#include "testing/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick::bench {
namespace {

// One file to read.
struct Subject {
  std::string document;
  std::string form;  // "XML" or "binary"
  std::string bytes;
  std::string path;
};

struct Row {
  std::string document;
  std::string form;
  std::string reader;
  double seconds;
  std::optional<double> peakBytes;
};

struct Options {
  std::vector<std::size_t> megabytes;
  std::string jsonPath;
};

// Keeps the median of each benchmark by its name, and prints nothing.
class MedianKeeper : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const auto& run : runs) {
      if (run.aggregate_name == "median") {
        medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
      }
    }
  }

  double SecondsOf(const std::string& name) const { return medians_.at(name); }

 private:
  std::map<std::string, double> medians_;
};

std::vector<Subject> SubjectsOf(const Options& options,
                                const testing::TemporaryDirectory& directory) {
  std::vector<Subject> subjects;
  for (const auto megabytes : options.megabytes) {
    for (auto& document : DocumentsOf(megabytes)) {
      const auto add = [&](const char* form, std::string& bytes) {
        const auto path = directory.Write(std::to_string(subjects.size()), bytes);
        subjects.push_back({document.name, form, std::move(bytes), path});
      };
      add("XML", document.xml);
      add("binary", document.binary);
    }
  }
  return subjects;
}

bool Reads(const Reader& reader, const Subject& subject) {
  return subject.form == "XML" ? reader.readsXml : reader.readsBinary;
}

std::string BenchmarkName(const Reader& reader, const Subject& subject) {
  return subject.document + ", " + subject.form + ", " + std::string(reader.name);
}

void RegisterAll(const std::vector<Subject>& subjects) {
  for (const auto& subject : subjects) {
    for (const auto& reader : Readers()) {
      if (!Reads(reader, subject)) continue;
      const auto run = [&subject, read = reader.secondsToRead](benchmark::State& state) {
        for (auto _ : state) state.SetIterationTime(read(subject.bytes));
      };
      benchmark::RegisterBenchmark(BenchmarkName(reader, subject).c_str(), run)
          ->UseManualTime()
          ->Unit(benchmark::kSecond)
          ->MinTime(0.2)
          ->Repetitions(5)
          ->ReportAggregatesOnly();
    }
  }
}

std::optional<double> SecondsOfPlistlib(const Subject& subject) {
  const auto outcome = testing::RunChild(
      {FERNWICK_BENCH_PYTHON, FERNWICK_BENCH_DIRECTORY "/plistlib_seconds.py", subject.path, "3"},
      "/");
  if (outcome.status != "0") return std::nullopt;
  return std::strtod(outcome.standardOutput.c_str(), nullptr);
}

std::vector<Row> MeasureAll(const std::vector<Subject>& subjects) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").string();
  RegisterAll(subjects);
  MedianKeeper medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  std::vector<Row> rows;
  for (const auto& subject : subjects) {
    const auto add = [&](std::string_view reader, double seconds, std::optional<double> peak) {
      rows.push_back({subject.document, subject.form, std::string(reader), seconds, peak});
    };
    for (const auto& reader : Readers()) {
      if (!Reads(reader, subject)) continue;
      add(reader.name, medians.SecondsOf(BenchmarkName(reader, subject)),
          PeakMemory(program, reader.name, subject.path));
    }
    if (const auto seconds = SecondsOfPlistlib(subject)) add("plistlib", *seconds, {});
  }
  return rows;
}

void PrintTable(const std::vector<Row>& rows) {
  double ours = 0;
  const Row* before = nullptr;
  for (const auto& row : rows) {
    if (before == nullptr || before->document != row.document || before->form != row.form) {
      std::printf("\n%s, %s\n  %-22s %10s %8s %10s\n", row.document.c_str(), row.form.c_str(),
                  "READER", "ms", "RATIO", "PEAK MB");
      ours = row.seconds;
    }
    std::printf("  %-22s %10.3f %8.2f", row.reader.c_str(), row.seconds * 1e3, row.seconds / ours);
    if (row.peakBytes) std::printf(" %10.1f", *row.peakBytes * 1e-6);
    std::printf("\n");
    before = &row;
  }
  for (const auto missing : MissingReaders()) {
    std::printf("\nleft out, as it is not installed: %.*s\n", static_cast<int>(missing.size()),
                missing.data());
  }
}

bool WriteJson(const std::vector<Row>& rows, const std::string& path) {
  auto json = nlohmann::ordered_json::array();
  double ours = 0;
  for (const auto& row : rows) {
    if (row.reader == Readers().front().name) ours = row.seconds;
    json.push_back({{"document", row.document},
                    {"form", row.form},
                    {"reader", row.reader},
                    {"seconds", row.seconds},
                    {"ratio", row.seconds / ours}});
    if (row.peakBytes) json.back()["peakBytes"] = *row.peakBytes;
  }
  std::ofstream file(path);
  file << json.dump(2) << "\n";
  return static_cast<bool>(file.flush());
}

// False when the command line is not understood. What Google Benchmark knows has been taken off.
bool ReadOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; i += 2) {
    const std::string_view name = argv[i];
    if (i + 1 == argc) return false;
    if (name == "--json") {
      options.jsonPath = argv[i + 1];
    } else if (name == "--megabytes") {
      options.megabytes.push_back(std::strtoul(argv[i + 1], nullptr, 10));
    } else {
      return false;
    }
  }
  if (options.megabytes.empty()) options.megabytes = {1, 20};
  return true;
}

int Main(int argc, char** argv) {
  if (argc == 4 && std::string_view(argv[1]) == "--peak") return PrintPeakMemory(argv[2], argv[3]);
  benchmark::Initialize(&argc, argv);
  Options options;
  if (!ReadOptions(argc, argv, options)) {
    std::fprintf(stderr, "usage: reading_bench [--json FILE] [--megabytes N]...\n");
    return EXIT_FAILURE;
  }
  const testing::TemporaryDirectory directory;
  const auto subjects = SubjectsOf(options, directory);
  const auto rows = MeasureAll(subjects);
  PrintTable(rows);
  const bool written = options.jsonPath.empty() || WriteJson(rows, options.jsonPath);
  return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace fernwick::bench

int main(int argc, char** argv) {
  return fernwick::bench::Main(argc, argv);
}
