#include "bench/readers.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "value/property_list_reader.h"

#ifdef FERNWICK_BENCH_LIBPLIST
#include <plist/plist.h>
#endif
#ifdef FERNWICK_BENCH_EXPAT
#include <expat.h>
#endif
#ifdef FERNWICK_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

namespace fernwick::bench {
namespace {

// The processor time of this thread, in seconds: other work of the computer disturbs it less than
// the time of day.
double Now() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void Require(bool read, const char* reader) {
  if (read) return;
  std::fprintf(stderr, "reading_bench: %s cannot read a document\n", reader);
  std::exit(EXIT_FAILURE);
}

double Ours(std::string file) {
  const double start = Now();
  const auto reading = ReadPropertyList(std::move(file));
  const double end = Now();
  Require(bool(reading.list), "fernwick");
  return end - start;
}

// Searches every "<": a lower bound for the cost of reading XML.
double Memchr(std::string file) {
  const double start = Now();
  const char* at = file.data();
  const char* end = at + file.size();
  std::size_t found = 0;
  while ((at = static_cast<const char*>(
              std::memchr(at, '<', static_cast<std::size_t>(end - at)))) != nullptr) {
    ++found;
    ++at;
  }
  const double finish = Now();
  Require(found > 0, "memchr");
  return finish - start;
}

#ifdef FERNWICK_BENCH_LIBPLIST
double Libplist(std::string file) {
  plist_t value = nullptr;
  const double start = Now();
  plist_from_memory(file.data(), static_cast<std::uint32_t>(file.size()), &value);
  const double end = Now();
  Require(value != nullptr, "libplist");
  plist_free(value);
  return end - start;
}
#endif

#ifdef FERNWICK_BENCH_EXPAT
double Expat(std::string file) {
  const double start = Now();
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetElementHandler(
      parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
  XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
  const auto status = XML_Parse(parser, file.data(), static_cast<int>(file.size()), 1);
  const double end = Now();
  Require(status == XML_STATUS_OK, "expat");
  XML_ParserFree(parser);
  return end - start;
}
#endif

#ifdef FERNWICK_BENCH_PUGIXML
double Pugixml(std::string file) {
  const double start = Now();
  pugi::xml_document document;
  const auto result = document.load_buffer_inplace(file.data(), file.size());
  const double end = Now();
  Require(static_cast<bool>(result), "pugixml");
  return end - start;
}
#endif

constexpr Reader AllReaders[] = {
    {"fernwick", true, true, Ours},
#ifdef FERNWICK_BENCH_LIBPLIST
    {"libplist", true, true, Libplist},
#endif
#ifdef FERNWICK_BENCH_EXPAT
    {"expat, empty handlers", true, false, Expat},
#endif
#ifdef FERNWICK_BENCH_PUGIXML
    {"pugixml, in place", true, false, Pugixml},
#endif
    {"memchr scan for <", true, false, Memchr},
};

constexpr std::string_view Missing[] = {
#ifndef FERNWICK_BENCH_LIBPLIST
    "libplist (libplist-dev)",
#endif
#ifndef FERNWICK_BENCH_EXPAT
    "expat (libexpat1-dev)",
#endif
#ifndef FERNWICK_BENCH_PUGIXML
    "pugixml (libpugixml-dev)",
#endif
    "",  // an array has an element
};

}  // namespace

std::span<const Reader> Readers() {
  return AllReaders;
}

std::span<const std::string_view> MissingReaders() {
  return std::span(Missing).first(std::size(Missing) - 1);
}

}  // namespace fernwick::bench
