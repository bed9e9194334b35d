#include "value/xml/base64.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

struct Base64Row {
  std::string text;
  std::string bytes;
};

const Base64Row CanonicalRows[] = {
    {"", ""},
    {"Zg==", "f"},
    {"Zm8=", "fo"},
    {"Zm9v", "foo"},
    {"Zm9vYg==", "foob"},
    {"Zm9vYmE=", "fooba"},
    {"Zm9vYmFy", "foobar"},
    {"AA==", {"\0", 1}},
    {"AAAA", {"\0\0\0", 3}},
    {"////", "\xFF\xFF\xFF"},
    {"+/+/", "\xFB\xFF\xBF"},
    {"gAE=", "\x80\x01"},
};

TEST(Base64, EncodesOnOneLineWithPadding) {
  for (const auto& [text, bytes] : CanonicalRows) EXPECT_EQ(EncodeBase64(bytes), text);
}

TEST(Base64, DecodesWhatItEncodes) {
  for (const auto& [text, bytes] : CanonicalRows) EXPECT_EQ(DecodeBase64(text), bytes) << text;
}

TEST(Base64, EveryByteAtEveryPositionOfAGroupReadsBack) {
  for (std::size_t place = 0; place < 6; ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string bytes(6, 'x');
      bytes[place] = static_cast<char>(byte);
      EXPECT_EQ(DecodeBase64(EncodeBase64(bytes)), bytes);
    }
  }
}

TEST(Base64, LongDataStaysOnOneLine) {
  EXPECT_EQ(EncodeBase64(std::string(300, '\0')), std::string(400, 'A'));
}

TEST(Base64, EncodesNothingAfterTheBytes) {
  const std::string_view longer = "\xFF\xFF\xFF\xFF\xFF\xFF";
  EXPECT_EQ(EncodeBase64(longer.substr(0, 4)), "/////w==");
  EXPECT_EQ(EncodeBase64(longer.substr(0, 5)), "//////8=");
}

TEST(Base64, WhiteSpaceMayBeAnywhere) {
  for (const std::string text : {" Zm8=", "Zm8= ", "Z m 8 =", "Zm\n8=", "Zm8\r\n\t=", "Zm8=\n\t"}) {
    EXPECT_EQ(DecodeBase64(text), "fo") << ::testing::PrintToString(text);
  }
  EXPECT_EQ(DecodeBase64("Zg= ="), "f");
  EXPECT_EQ(DecodeBase64(" \t\r\n"), "");
}

TEST(Base64, ABlankAnywhereInALongTextChangesNothing) {
  const std::string text = "Zm9vYmFyYmF6Zm9v";
  for (std::size_t at = 0; at <= text.size(); ++at) {
    EXPECT_EQ(DecodeBase64(text.substr(0, at) + " " + text.substr(at)), "foobarbazfoo") << at;
  }
}

TEST(Base64, ASignThatIsNotADigitIsRefusedAtEveryPosition) {
  const std::string text = "Zm9vYmFy";
  for (std::size_t at = 0; at < text.size(); ++at) {
    EXPECT_EQ(DecodeBase64(text.substr(0, at) + "!" + text.substr(at + 1)), std::nullopt) << at;
  }
}

TEST(Base64, ReadsNothingAfterTheText) {
  for (const std::string_view memory : {"Zm9vYmFy", "Zm9vYmFy ", "Zm9v Zm9v "}) {
    EXPECT_EQ(DecodeBase64(memory.substr(0, 4)), "foo");
    for (const std::size_t size : {1u, 2u, 3u, 6u, 7u}) {
      EXPECT_EQ(DecodeBase64(memory.substr(0, size)), std::nullopt) << memory << size;
    }
  }
}

TEST(Base64, BitsThatThePaddingLeavesOverAreIgnored) {
  EXPECT_EQ(DecodeBase64("Zh=="), "f");
  EXPECT_EQ(DecodeBase64("Zm9="), "fo");
}

TEST(Base64, RejectsAnythingElse) {
  const std::string rows[] = {
      "Z",         // groups that are cut short, without padding
      "Zg",        //
      "Zm8",       //
      "Zm9vY",     //
      "Z===",      // one digit is no byte
      "Zg=",       // padding too short
      "Zg===",     // too long
      "Zm8==",     //
      "Zm9v=",     // where none is due
      "Zm9v====",  //
      "=",         //
      "====",      //
      "=Zm8",      // before the digits
      "Zg==Zg==",  // between groups
      "Z=g=",      //
      "Zm8=x",     // something after it
      "Zm-v",      // of another alphabet
      "Zm_v",      //
      "Zm9v.",     //
      "Zm9v!",
      "Zm\vv",  // white space that XML does not know
      "Zm\fv",    {"Zm9v\0", 5}, "Zm9\xC3\xA4", "Zm9\xFF",
  };
  for (const auto& text : rows) {
    EXPECT_EQ(DecodeBase64(text), std::nullopt) << ::testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace fernwick
