#include "lab/survey/frames.h"

#include <gtest/gtest.h>

#include <vector>

namespace fernwick::lab {
namespace {

// The frames that come out when the bytes come in pieces of this size.
std::vector<Frame> ReadInPieces(const std::string& bytes, std::size_t size) {
  FrameReader reader;
  std::vector<Frame> frames;
  for (std::size_t at = 0; at < bytes.size(); at += size) {
    reader.Append(std::string_view(bytes).substr(at, size));
    while (auto frame = reader.Next()) frames.push_back(*std::move(frame));
  }
  return frames;
}

TEST(Frames, ArriveWholeInPiecesOfAnySize) {
  const std::vector<Frame> sent = {{'a', "one"}, {'b', ""}, {'c', std::string(3, '\0') + "\n"}};
  std::string bytes;
  for (const auto& [kind, text] : sent) bytes += Framed(kind, text);
  for (std::size_t size = 1; size <= bytes.size(); ++size) {
    EXPECT_TRUE(ReadInPieces(bytes, size) == sent) << size;
  }
}

TEST(Frames, OfWhichSomethingIsMissingDoNotArrive) {
  const auto frame = Framed('a', "one");
  for (std::size_t size = 0; size < frame.size(); ++size) {
    FrameReader reader;
    reader.Append(std::string_view(frame).substr(0, size));
    EXPECT_EQ(reader.Next(), std::nullopt) << size;
  }
}

}  // namespace
}  // namespace fernwick::lab
