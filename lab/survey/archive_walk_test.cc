#include "lab/survey/archive_walk.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lab/survey/selection.h"
#include "testing/archives.h"
#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::ArchiveMember;
using testing::ArchiveOf;
using Lines = std::vector<std::string>;

constexpr std::size_t Mebibyte = std::size_t{1} << 20;

class ArchiveFiles : public ::testing::Test {
 protected:
  // What is selected in a file of this name: "NAME=BYTES", "NAME!STATUS ERROR", each NAME without
  // the directory.
  Lines In(const std::string& name, const std::string& bytes, std::size_t maxSize = Mebibyte) {
    ArchiveWalk walk(directory_.Write(name, bytes), maxSize);
    Lines lines;
    while (const auto selected = walk.Next()) lines.push_back(LineOf(*selected));
    EXPECT_EQ(walk.Next(), std::nullopt);
    return lines;
  }

  std::string LineOf(const Selected& selected) const {
    const auto name = selected.path.substr(directory_.Path().size() + 1);
    if (selected.error.empty()) return name + "=" + *selected.memberBytes;
    return name + "!" + std::to_string(selected.errorStatus) + " " + selected.error;
  }

  testing::TemporaryDirectory directory_;
};

const std::vector<ArchiveMember> Two = {
    {"a.registry.plist", "A"}, {"readme", "text"}, {"x/b.registry.plist", "BB"}};

TEST_F(ArchiveFiles, AreReadInTheirOrderWhateverTheirForm) {
  const auto expected = [](const std::string& name) {
    return Lines{name + ":a.registry.plist=A", name + ":x/b.registry.plist=BB"};
  };
  EXPECT_EQ(In("a.tar", ArchiveOf(Two)), expected("a.tar"));
  EXPECT_EQ(In("a.tgz", ArchiveOf(Two, ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP)),
            expected("a.tgz"));
  EXPECT_EQ(In("a", ArchiveOf(Two, ARCHIVE_FORMAT_TAR_PAX_RESTRICTED, ARCHIVE_FILTER_XZ)),
            expected("a"));
  EXPECT_EQ(In("a.zst", ArchiveOf(Two, ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_ZSTD)),
            expected("a.zst"));
  EXPECT_EQ(In("a.zip", ArchiveOf(Two, ARCHIVE_FORMAT_ZIP)), expected("a.zip"));
}

TEST_F(ArchiveFiles, OfSeveralArchivesInOneAreReadToTheEnd) {
  const auto twice = ArchiveOf({{"a.registry.plist", "A"}}) + ArchiveOf(Two);
  EXPECT_EQ(In("a.tar", twice), (Lines{"a.tar:a.registry.plist=A", "a.tar:a.registry.plist=A",
                                       "a.tar:x/b.registry.plist=BB"}));
}

TEST_F(ArchiveFiles, WithoutARecordingAreEmpty) {
  EXPECT_EQ(In("a.tar", ArchiveOf({})), Lines{});
  EXPECT_EQ(In("a.zip", ArchiveOf({}, ARCHIVE_FORMAT_ZIP)), Lines{});
  EXPECT_EQ(In("a.tar", ArchiveOf({{"b.tar", ArchiveOf(Two)}})), Lines{});
}

// The names are texts; nothing is written anywhere.
TEST_F(ArchiveFiles, MayNameAnything) {
  const std::string name = std::string(200, 'x') + "\xFF.registry.plist";
  EXPECT_EQ(In("a.tar", ArchiveOf({{"/abs.registry.plist", "1"},
                                   {"../up.registry.plist", "2"},
                                   {"e\xCC\x81.registry.plist", "3"},
                                   {name, "4"}})),
            (Lines{"a.tar:/abs.registry.plist=1", "a.tar:../up.registry.plist=2",
                   "a.tar:e\xCC\x81.registry.plist=3", "a.tar:" + name + "=4"}));
}

TEST_F(ArchiveFiles, RefuseWhatIsNoRegularFile) {
  EXPECT_EQ(
      In("a.tar", ArchiveOf({{.name = "l.registry.plist", .type = AE_IFLNK, .link = "/etc/passwd"},
                             {"a.registry.plist", "A"},
                             {.name = "h.registry.plist", .link = "a.registry.plist"},
                             {.name = "f.registry.plist", .type = AE_IFIFO},
                             {.name = "d.registry.plist", .type = AE_IFDIR},
                             {"b.registry.plist", "B"}})),
      (Lines{"a.tar:l.registry.plist!66 a link, which is not followed in an archive",
             "a.tar:a.registry.plist=A",
             "a.tar:h.registry.plist!66 a link, which is not followed in an archive",
             "a.tar:f.registry.plist!66 not a regular file", "a.tar:b.registry.plist=B"}));
}

// Sets bits of the flags of the only member of a zip file, in both its headers.
std::string WithZipFlags(std::string bytes, char low, char high) {
  const auto directory = bytes.find("PK\1\2");
  for (const auto flags : {std::size_t{6}, directory + 8}) {
    bytes[flags] = static_cast<char>(bytes[flags] | low);
    bytes[flags + 1] = static_cast<char>(bytes[flags + 1] | high);
  }
  return bytes;
}

TEST_F(ArchiveFiles, RefuseEncryptedMembersAndNamesThatAreNotUtf8) {
  const auto zip = [](const std::string& name) {
    return ArchiveOf({{name, "A"}}, ARCHIVE_FORMAT_ZIP);
  };
  EXPECT_EQ(In("a.zip", WithZipFlags(zip("a.registry.plist"), 1, 0)),
            Lines{"a.zip:a.registry.plist!66 it is encrypted"});
  EXPECT_EQ(In("a.zip", WithZipFlags(zip("a\xFF.registry.plist"), 0, 8)),
            Lines{"a.zip:member 1!65 its name is not UTF-8"});
}

TEST_F(ArchiveFiles, RefuseMembersThatAreTooLarge) {
  const std::string large(2 * Mebibyte, 'x');
  const std::vector<ArchiveMember> members = {
      {"a.registry.plist", large}, {"readme", large}, {"b.registry.plist", "B"}};
  for (const int filter : {ARCHIVE_FILTER_NONE, ARCHIVE_FILTER_GZIP}) {
    EXPECT_EQ(
        In("a.tar", ArchiveOf(members, ARCHIVE_FORMAT_TAR_GNUTAR, filter)),
        (Lines{"a.tar:a.registry.plist!66 it is larger than 1 MiB", "a.tar:b.registry.plist=B"}));
  }
}

// A zip file of which the sizes are after the data, so that only reading finds how large it is.
TEST_F(ArchiveFiles, RefuseMembersThatAreLargerThanTheySay) {
  auto zip =
      ArchiveOf({{"a.registry.plist", std::string(2 * Mebibyte, 'x')}, {"b.registry.plist", "B"}},
                ARCHIVE_FORMAT_ZIP);
  const auto directory = zip.find("PK\1\2");
  for (const auto offset : {std::size_t{22}, directory + 24}) zip.replace(offset, 4, 4, '\1');
  for (const auto offset : {std::size_t{22}, directory + 24}) zip.replace(offset + 3, 1, 1, '\0');
  for (const auto offset : {std::size_t{22}, directory + 24}) zip.replace(offset + 2, 1, 1, '\0');
  const auto lines = In("a.zip", zip);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("a.zip:a.registry.plist!6")) << lines[0];
  EXPECT_EQ(lines[1], "a.zip:b.registry.plist=B");
}

TEST_F(ArchiveFiles, ThatAreTruncatedEndWithAnErrorOfTheirOwn) {
  const auto whole = ArchiveOf(
      {{"a.registry.plist", std::string(600, 'a')}, {"b.registry.plist", std::string(600, 'b')}});
  const std::size_t member = 512 + 1024;
  const auto first = "a.tar:a.registry.plist=" + std::string(600, 'a');
  const std::string noEnd = "a.tar!65 the archive lacks its end: it was truncated";
  EXPECT_EQ(In("a.tar", whole.substr(0, member)), (Lines{first, noEnd}));
  EXPECT_EQ(In("a.tar", whole.substr(0, member + 700)),
            (Lines{first, "a.tar!65 Truncated tar archive"}));
  for (std::size_t size = 0; size < 2 * member; size += 100) {
    const auto lines = In("a.tar", whole.substr(0, size));
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.back().starts_with("a.tar!65 ")) << size;
    EXPECT_EQ(lines.size(), size < member ? 1u : 2u) << size;
  }
}

// What cannot be compressed.
std::string Noise(std::size_t size) {
  std::string noise;
  for (std::uint32_t i = 1; noise.size() < size; i = i * 1'664'525 + 1'013'904'223) {
    noise += static_cast<char>(i >> 24);
  }
  return noise;
}

TEST_F(ArchiveFiles, ThatAreTruncatedAndCompressedAreAnError) {
  const auto whole = ArchiveOf({{"a.registry.plist", "A"}, {"noise", Noise(300'000)}},
                               ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_GZIP);
  const auto lines = In("a.tgz", whole.substr(0, 200'000));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "a.tgz:a.registry.plist=A");
  EXPECT_EQ(lines[1], "a.tgz!65 unexpected end of file");
}

// A bit that is wrong may leave the contents as they are.
TEST_F(ArchiveFiles, ThatAreDamagedAndCompressedAreAnErrorUnlessTheContentsAreTheSame) {
  for (const int filter : {ARCHIVE_FILTER_GZIP, ARCHIVE_FILTER_XZ}) {
    const auto whole = ArchiveOf(Two, ARCHIVE_FORMAT_TAR_GNUTAR, filter);
    const auto undamaged = In("a.tgz", whole);
    std::size_t errors = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
      auto damaged = whole;
      damaged[i] ^= 0x10;
      const auto lines = In("a.tgz", damaged);
      ASSERT_FALSE(lines.empty());
      const bool isError = lines.back().starts_with("a.tgz!65 ");
      EXPECT_TRUE(isError || lines == undamaged) << filter << " " << i;
      errors += isError ? 1 : 0;
    }
    EXPECT_GT(errors, whole.size() * 4 / 5) << filter;
  }
}

TEST_F(ArchiveFiles, ThatAreDamagedEndThere) {
  auto tar = ArchiveOf({{"a.registry.plist", "A"}, {"b.registry.plist", "B"}});
  tar[1024 + 150] = 'x';  // in the checksum of the second header
  EXPECT_EQ(In("a.tar", tar), (Lines{"a.tar:a.registry.plist=A", "a.tar!65 Damaged tar archive"}));
  EXPECT_EQ(In("a.tar", "no archive"), Lines{"a.tar!65 Unrecognized archive format"});
  EXPECT_EQ(In("a.tgz", ArchiveOf({}, ARCHIVE_FORMAT_ZIP).substr(0, 21)),
            Lines{"a.tgz!65 Unrecognized archive format"});
}

TEST_F(ArchiveFiles, GoOnAfterADamagedMemberOfAZipFile) {
  auto zip =
      ArchiveOf({{"a.registry.plist", Noise(5000)}, {"b.registry.plist", "B"}}, ARCHIVE_FORMAT_ZIP);
  zip[2500] ^= 0x55;
  const auto lines = In("a.zip", zip);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("a.zip:a.registry.plist!65 ")) << lines[0];
  EXPECT_EQ(lines[0].find('\n'), std::string::npos);
  EXPECT_EQ(lines[1], "a.zip:b.registry.plist=B");
}

// Each layer would multiply what the file expands to.
TEST_F(ArchiveFiles, AreNotDecompressedTwice) {
  const auto once = ArchiveOf(Two, ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_GZIP);
  std::string twice;
  archive* written = archive_write_new();
  archive_write_set_format_raw(written);
  archive_write_add_filter_gzip(written);
  archive_write_open(written, &twice, nullptr, testing::AppendArchiveBytes, nullptr);
  testing::WriteArchiveMember(written, {"x", once});
  archive_write_free(written);
  EXPECT_EQ(In("a.tgz", twice), Lines{"a.tgz!65 Unrecognized archive format"});
}

// An archive of zeros with a recording before them.
std::string Bomb(std::size_t mebibytes) {
  std::string text;
  archive* written = archive_write_new();
  archive_write_set_format(written, ARCHIVE_FORMAT_TAR_GNUTAR);
  archive_write_add_filter_zstd(written);
  archive_write_set_bytes_in_last_block(written, 1);
  archive_write_open(written, &text, nullptr, testing::AppendArchiveBytes, nullptr);
  testing::WriteArchiveMember(written, {"a.registry.plist", "A"});
  archive_entry* entry = archive_entry_new();
  archive_entry_set_pathname(entry, "zeros");
  archive_entry_set_filetype(entry, AE_IFREG);
  archive_entry_set_size(entry, static_cast<la_int64_t>(mebibytes * Mebibyte));
  archive_write_header(written, entry);
  const std::string zeros(Mebibyte, '\0');
  for (std::size_t i = 0; i < mebibytes; ++i) {
    archive_write_data(written, zeros.data(), zeros.size());
  }
  archive_entry_free(entry);
  archive_write_free(written);
  return text;
}

TEST_F(ArchiveFiles, ThatExpandToTooMuchEndThere) {
  EXPECT_EQ(In("a.tar.zst", Bomb(500)), Lines{"a.tar.zst:a.registry.plist=A"});
  EXPECT_EQ(In("a.tar.zst", Bomb(1200)),
            (Lines{"a.tar.zst:a.registry.plist=A",
                   "a.tar.zst!66 it expands to more than 1 GiB plus 1000 times its size"}));
}

TEST_F(ArchiveFiles, ThatCannotBeOpenedSayWhy) {
  ArchiveWalk none(directory_.Path() + "/none.tar", 1);
  EXPECT_EQ(LineOf(*none.Next()), "none.tar!66 No such file or directory");
  ArchiveWalk walk(directory_.Write("a.tar", ArchiveOf(Two)), 1);
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit nothing = {0, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &nothing), 0);
  const auto selected = walk.Next();
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(LineOf(*selected), "a.tar!71 Too many open files");
  EXPECT_EQ(walk.Next(), std::nullopt);
}

TEST_F(ArchiveFiles, AreRecognisedBySuffixOrContents) {
  const auto is = [&](const std::string& name, const std::string& bytes) {
    return IsArchive(directory_.Write(name, bytes));
  };
  for (const auto* name :
       {"a.tar", "a.tar.gz", "a.tgz", "a.tar.xz", "a.txz", "a.tar.zst", "a.tzst", "a.zip"}) {
    EXPECT_TRUE(is(name, "")) << name;
  }
  const auto tar = ArchiveOf(Two);
  EXPECT_TRUE(is("tar", tar));
  EXPECT_TRUE(is("zip", ArchiveOf(Two, ARCHIVE_FORMAT_ZIP)));
  EXPECT_TRUE(is("empty-zip", ArchiveOf({}, ARCHIVE_FORMAT_ZIP)));
  for (const int filter : {ARCHIVE_FILTER_GZIP, ARCHIVE_FILTER_XZ, ARCHIVE_FILTER_ZSTD}) {
    EXPECT_TRUE(is("compressed", ArchiveOf(Two, ARCHIVE_FORMAT_TAR_GNUTAR, filter)));
  }
  EXPECT_FALSE(is("a.registry.plist", tar));
  EXPECT_FALSE(is("a.plist", "<plist/>"));
  EXPECT_FALSE(is("empty", ""));
  EXPECT_FALSE(IsArchive(directory_.Path() + "/none.tar"));
  std::filesystem::create_directory(directory_.Path() + "/directory.tar");
  EXPECT_FALSE(IsArchive(directory_.Path() + "/directory.tar"));
}

TEST_F(ArchiveFiles, AreSelectedAmongOthers) {
  const auto named = directory_.Write("named", ArchiveOf(Two));
  const auto zip = directory_.Write("d/b.zip", ArchiveOf(Two, ARCHIVE_FORMAT_ZIP));
  const auto plain = directory_.Write("d/c.registry.plist", "");
  directory_.Write("d/text", ArchiveOf(Two));
  const auto damaged = directory_.Write("damaged.tar", "x");
  testing::StandardInputPipe input;
  input.Write(named + "\n" + plain + "\n");
  input.End();
  Selection selection({named, directory_.Path() + "/d", damaged, "-"});
  Lines paths;
  while (const auto selected = selection.Next()) {
    EXPECT_EQ(selected->index, paths.size());
    EXPECT_EQ(selected->isNamed, selected->path == damaged);
    paths.push_back(selected->path);
  }
  EXPECT_EQ(paths, (Lines{named + ":a.registry.plist", named + ":x/b.registry.plist",
                          zip + ":a.registry.plist", zip + ":x/b.registry.plist", plain, damaged,
                          named + ":a.registry.plist", named + ":x/b.registry.plist", plain}));
  EXPECT_EQ(CountSelected({directory_.Path() + "/d"}), std::nullopt);
  EXPECT_EQ(CountSelected({named}), std::nullopt);
  EXPECT_EQ(CountSelected({plain}), 1u);
}

}  // namespace
}  // namespace fernwick::lab
