#include "value/xml/declaration.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick {
namespace {

struct DeclarationRow {
  std::string declaration;
  std::string encoding;
};

TEST(XmlDeclaration, AcceptsVersionEncodingAndStandaloneInThatOrder) {
  const DeclarationRow rows[] = {
      {"<?xml version=\"1.0\"?>", ""},
      {"<?xml version='1.0'?>", ""},
      {"<?xml version=\"1.1\"?>", ""},
      {"<?xml version=\"1.10\" ?>", ""},
      {"<?xml\n\tversion\r=\n'1.0'\t?>", ""},
      {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", "UTF-8"},
      {"<?xml version='1.0' encoding='utf-8' ?>", "utf-8"},
      {"<?xml version='1.0' encoding = \"ISO-8859-1\"?>", "ISO-8859-1"},
      {"<?xml version='1.0' encoding='a1._-Z'?>", "a1._-Z"},
      {"<?xml version='1.0' standalone='yes'?>", ""},
      {"<?xml version='1.0' standalone='no'?>", ""},
      {"<?xml version='1.0' encoding='UTF-8' standalone=\"yes\" ?>", "UTF-8"},
  };
  for (const auto& [text, encoding] : rows) {
    SCOPED_TRACE(text);
    const auto document = text + "\xFF<?xml";  // what follows is not read
    XmlDeclaration declaration;
    ParseFault fault;
    EXPECT_TRUE(HasXmlDeclaration(text));
    EXPECT_TRUE(ReadXmlDeclaration(document, declaration, fault));
    EXPECT_EQ(declaration.length, text.size());
    EXPECT_EQ(declaration.encoding, encoding);
    EXPECT_FALSE(fault.IsSet());
  }
}

TEST(XmlDeclaration, DocumentMayHaveNone) {
  for (const std::string text : {"", "<", "<plist/>", " <?xml version='1.0'?>", "<?xm", "<?XML ?>",
                                 "<?xml-stylesheet ?>", "<?xml2?>", "<!-- -->"}) {
    SCOPED_TRACE(text);
    XmlDeclaration declaration;
    ParseFault fault;
    EXPECT_FALSE(HasXmlDeclaration(text));
    EXPECT_TRUE(ReadXmlDeclaration(text, declaration, fault));
    EXPECT_EQ(declaration.length, 0u);
    EXPECT_EQ(declaration.encoding, "");
    EXPECT_FALSE(fault.IsSet());
  }
}

struct MalformedRow {
  std::string declaration;
  std::size_t offset;
};

TEST(XmlDeclaration, RejectsAnythingElseAtTheFault) {
  const MalformedRow rows[] = {
      {"<?xml", 5},
      {"<?xml?>", 5},
      {"<?xml ?>", 6},
      {"<?xml version", 13},
      {"<?xml version?>", 13},
      {"<?xml version=?>", 14},
      {"<?xml version=1.0?>", 14},
      {"<?xml version=x1.0x?>", 14},
      {"<?xml version='1.0", 14},
      {"<?xml version='1.0\"?>", 14},
      {"<?xml version=''?>", 14},
      {"<?xml version='1'?>", 14},
      {"<?xml version='1.'?>", 14},
      {"<?xml version='2.0'?>", 14},
      {"<?xml version='1.0a'?>", 14},
      {"<?xml version='1.a'?>", 14},
      {"<?xml version=' 1.0'?>", 14},
      {"<?xml Version='1.0'?>", 6},
      {"<?xml version='1.0'", 19},
      {"<?xml version='1.0'>", 19},
      {"<?xml version='1.0' ? >", 20},
      {"<?xml version='1.0'encoding='UTF-8'?>", 19},
      {"<?xml version='1.0' version='1.0'?>", 20},
      {"<?xml encoding='UTF-8'?>", 6},
      {"<?xml encoding='UTF-8' version='1.0'?>", 6},
      {"<?xml version='1.0' encoding?>", 28},
      {"<?xml version='1.0' encoding=''?>", 29},
      {"<?xml version='1.0' encoding='8bit'?>", 29},
      {"<?xml version='1.0' encoding=' UTF-8'?>", 29},
      {"<?xml version='1.0' encoding='UTF 8'?>", 29},
      {"<?xml version='1.0' encoding='UTF-8\xFF'?>", 29},
      {"<?xml version='1.0' encoding='UTF-8{'?>", 29},
      {"<?xml version='1.0' encoding=UTF-8?>", 29},
      {"<?xml version='1.0' encoding='UTF-8?>", 29},
      {"<?xml version='1.0' encoding='UTF-8' encoding='UTF-8'?>", 37},
      {"<?xml version='1.0' encoding='UTF-8'standalone='yes'?>", 36},
      {"<?xml version='1.0' standalone='maybe'?>", 31},
      {"<?xml version='1.0' standalone='YES'?>", 31},
      {"<?xml version='1.0' standalone=''?>", 31},
      {"<?xml version='1.0' standalone='yes' encoding='UTF-8'?>", 37},
      {"<?xml version='1.0' author='me'?>", 20},
  };
  for (const auto& [text, offset] : rows) {
    for (const char after : std::string_view(" ='\"?>a0")) {
      const auto memory = text + after;  // which must not be read
      SCOPED_TRACE(memory);
      const auto document = std::string_view(memory).substr(0, text.size());
      XmlDeclaration declaration;
      ParseFault fault;
      EXPECT_TRUE(HasXmlDeclaration(document));
      EXPECT_FALSE(ReadXmlDeclaration(document, declaration, fault));
      EXPECT_EQ(fault.Offset(), offset);
      EXPECT_EQ(fault.Message(), "the XML declaration is malformed");
    }
  }
}

}  // namespace
}  // namespace fernwick
