// The freestanding parser on its own: its limits, the error latch, reading
// no byte beyond the length given, and the protocol's parameter checks and
// pool failures.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "../emu/EmuTestSupport.h"
#include "XmlTestSupport.h"
#include "xml/TarnXmlProtocol.h"
#include "xml/XmlSaxParser.h"

namespace xml_test {
namespace {

class XmlSaxParserTest : public emu_test::EmuTest {
 protected:
  ~XmlSaxParserTest() override {
    TarnXmlFreeAllParsers();
    EXPECT_EQ("", Fw().Memory().LeakReport());
  }

  // Parses Document in one call from a heap copy of exactly its size, so
  // that AddressSanitizer sees any read past the end.
  EFI_STATUS ParseExact(XML_SAX_PARSER *Parser, const std::string &Document,
                        BOOLEAN IsFinal) {
    std::unique_ptr<UINT8[]> Copy(new UINT8[Document.size() + 1]);
    std::memcpy(Copy.get(), Document.data(), Document.size());
    return XmlSaxParse(Parser, Copy.get(), Document.size(), IsFinal);
  }

  static std::string Nested(size_t Depth) {
    std::string Open, Close;
    for (size_t I = 0; I < Depth; I++) {
      Open += "<e>";
      Close += "</e>";
    }
    return Open + Close;
  }

  static std::string ManyAttributes(size_t Count) {
    std::string Tag = "<r";
    for (size_t I = 0; I < Count; I++) {
      Tag += " a" + std::to_string(I) + "='v'";
    }
    return Tag + "/>";
  }
};

TEST_F(XmlSaxParserTest, LimitsAreInclusiveAndExceedingOneIsAnError) {
  struct {
    const char *Name;
    std::string Within;
    std::string Beyond;
  } const kCases[] = {
      {"depth", Nested(XML_SAX_MAX_DEPTH), Nested(XML_SAX_MAX_DEPTH + 1)},
      {"attributes", ManyAttributes(XML_SAX_MAX_ATTRIBUTES),
       ManyAttributes(XML_SAX_MAX_ATTRIBUTES + 1)},
      {"attribute text", "<r a='" + std::string(XML_SAX_ATTRIBUTE_CHARS - 4, 'v') + "'/>",
       "<r a='" + std::string(XML_SAX_ATTRIBUTE_CHARS, 'v') + "'/>"},
      {"end tag name",
       "<" + std::string(XML_SAX_END_NAME_CHARS - 1, 'n') + "></" +
           std::string(XML_SAX_END_NAME_CHARS - 1, 'n') + ">",
       "<" + std::string(XML_SAX_END_NAME_CHARS, 'n') + "></" +
           std::string(XML_SAX_END_NAME_CHARS, 'n') + ">"},
  };
  for (const auto &C : kCases) {
    SCOPED_TRACE(C.Name);
    XML_SAX_PARSER *Parser = XmlSaxCreate();
    ASSERT_NE(nullptr, Parser);
    EXPECT_EQ(EFI_SUCCESS, ParseExact(Parser, C.Within, TRUE));
    XmlSaxFree(Parser);
    Parser = XmlSaxCreate();
    EXPECT_EQ(EFI_PROTOCOL_ERROR, ParseExact(Parser, C.Beyond, TRUE));
    XmlSaxFree(Parser);
  }
}

TEST_F(XmlSaxParserTest, AnErrorStopsAtTheOffendingByteAndStays) {
  XML_SAX_PARSER *Parser = XmlSaxCreate();
  ASSERT_NE(nullptr, Parser);
  EXPECT_EQ(~0ULL, XmlSaxErrorOffset(Parser));
  EXPECT_EQ(EFI_SUCCESS, ParseExact(Parser, "<r><a>", FALSE));
  EXPECT_EQ(EFI_PROTOCOL_ERROR, ParseExact(Parser, "</b>ignored", FALSE));
  EXPECT_EQ(9u, XmlSaxErrorOffset(Parser));  // the '>' closing "</b"
  EXPECT_EQ(EFI_PROTOCOL_ERROR, ParseExact(Parser, "</a></r>", TRUE));
  EXPECT_EQ(9u, XmlSaxErrorOffset(Parser));
  XmlSaxFree(Parser);
}

TEST_F(XmlSaxParserTest, FinishedDocumentRefusesMoreInput) {
  XML_SAX_PARSER *Parser = XmlSaxCreate();
  EXPECT_EQ(EFI_SUCCESS, ParseExact(Parser, "<r/>", TRUE));
  EXPECT_EQ(EFI_PROTOCOL_ERROR, ParseExact(Parser, "", TRUE));
  XmlSaxFree(Parser);
}

TEST_F(XmlSaxParserTest, EveryPrefixOfADocumentIsReadWithoutOverreading) {
  const std::string Document = ReadSourceFile("raidcfg/data/raid.xml");
  ASSERT_FALSE(Document.empty());
  for (size_t Cut = 0; Cut < Document.size(); Cut += 97) {
    XML_SAX_PARSER *Parser = XmlSaxCreate();
    ASSERT_NE(nullptr, Parser);
    EXPECT_EQ(EFI_SUCCESS, ParseExact(Parser, Document.substr(0, Cut), FALSE));
    EXPECT_EQ(EFI_PROTOCOL_ERROR, ParseExact(Parser, "", TRUE)) << Cut;
    XmlSaxFree(Parser);
  }
}

TEST_F(XmlSaxParserTest, NullArgumentsAreRefused) {
  EXPECT_EQ(EFI_INVALID_PARAMETER, XmlSaxParse(nullptr, nullptr, 0, TRUE));
  XML_SAX_PARSER *Parser = XmlSaxCreate();
  EXPECT_EQ(EFI_INVALID_PARAMETER, XmlSaxParse(Parser, nullptr, 1, FALSE));
  XmlSaxFree(Parser);
  XmlSaxFree(nullptr);
}

TEST_F(XmlSaxParserTest, ProtocolAcceptsOnlyUtf8InAnyCase) {
  EFI_TARNXML_PROTOCOL *Xml = TarnXmlProtocolInterface();
  for (const CHAR16 *Name : {u"UTF-8", u"utf-8", u"Utf-8"}) {
    TARNXML_PARSER *Parser = Xml->ParserCreate(Name);
    EXPECT_NE(nullptr, Parser);
    Xml->ParserFree(Parser);
  }
  for (const CHAR16 *Name : {u"UTF-16", u"UTF-8 ", u"UTF8", u"", (const CHAR16 *)nullptr}) {
    EXPECT_EQ(nullptr, Xml->ParserCreate(Name));
  }
  EXPECT_EQ(0u, TarnXmlLiveParsers());
}

TEST_F(XmlSaxParserTest, ProtocolRefusesUnknownParsersAndOversizedLengths) {
  EFI_TARNXML_PROTOCOL *Xml = TarnXmlProtocolInterface();
  UINT64 Foreign[8] = {};
  auto *Unknown = reinterpret_cast<TARNXML_PARSER *>(Foreign);
  EXPECT_EQ(nullptr, Xml->GetBuffer(Unknown, 16));
  EXPECT_EQ(EFI_INVALID_PARAMETER, Xml->ParseBuffer(Unknown, 0, TRUE));
  Xml->SetElementHandler(Unknown, nullptr, nullptr);
  Xml->ParserFree(Unknown);

  TARNXML_PARSER *Parser = Xml->ParserCreate(u"UTF-8");
  ASSERT_NE(nullptr, Parser);
  EXPECT_EQ(EFI_INVALID_PARAMETER, Xml->ParseBuffer(Parser, 1, FALSE));  // no buffer yet
  EXPECT_EQ(nullptr, Xml->GetBuffer(Parser, 0));
  EXPECT_EQ(nullptr, Xml->GetBuffer(Parser, TARNXML_MAX_BUFFER_SIZE + 1));
  auto *Buffer = static_cast<char *>(Xml->GetBuffer(Parser, 8));
  ASSERT_NE(nullptr, Buffer);
  std::memcpy(Buffer, "<r/>", 4);
  EXPECT_EQ(EFI_INVALID_PARAMETER, Xml->ParseBuffer(Parser, 9, FALSE));
  EXPECT_EQ(EFI_SUCCESS, Xml->ParseBuffer(Parser, 4, TRUE));
  Xml->ParserFree(Parser);
  // A freed parser is unknown from then on.
  EXPECT_EQ(nullptr, Xml->GetBuffer(Parser, 8));
}

TEST_F(XmlSaxParserTest, PoolFailuresGiveNullAndLeakNothing) {
  EFI_TARNXML_PROTOCOL *Xml = TarnXmlProtocolInterface();
  for (UINT64 Nth : {1, 2}) {
    Fw().Memory().FailNthAllocation(Nth);
    EXPECT_EQ(nullptr, Xml->ParserCreate(u"UTF-8")) << Nth;
    Fw().Memory().ClearFaults();
  }
  TARNXML_PARSER *Parser = Xml->ParserCreate(u"UTF-8");
  ASSERT_NE(nullptr, Parser);
  ASSERT_NE(nullptr, Xml->GetBuffer(Parser, 4));
  Fw().Memory().FailNthAllocation(1);
  EXPECT_EQ(nullptr, Xml->GetBuffer(Parser, 4096));
  Fw().Memory().ClearFaults();
  // The old buffer is still there for a call of its own size.
  EXPECT_EQ(EFI_SUCCESS, Xml->ParseBuffer(Parser, 0, FALSE));
  Xml->ParserFree(Parser);
}

}  // namespace
}  // namespace xml_test
