// The XML parser protocol: element events in CHAR16, chunked input,
// malformed documents.
#include <cstring>
#include <string>
#include <vector>

#include "EmuTestSupport.h"
#include "emu/TextConversion.h"
#include "emu/XmlParser.h"

namespace emu_test {
namespace {

// What the callbacks saw, as text: "<name a=v b=w>" and "</name>".
std::vector<std::string> gEvents;

VOID EFIAPI OnStart(VOID *UserData, const CHAR16 *Name,
                    const CHAR16 **Attributes) {
  std::string Event = "<" + emu::ToUtf8(Name);
  for (const CHAR16 **Item = Attributes; *Item != nullptr; Item += 2) {
    Event += " " + emu::ToUtf8(Item[0]) + "=" + emu::ToUtf8(Item[1]);
  }
  gEvents.push_back(Event + ">" + (UserData == nullptr ? "" : "!"));
}

VOID EFIAPI OnEnd(VOID *UserData, const CHAR16 *Name) {
  gEvents.push_back("</" + emu::ToUtf8(Name) + ">");
}

class XmlParserTest : public EmuTest {
 protected:
  XmlParserTest() : Xml_(Fw()) {
    gEvents.clear();
    EFI_TARNXML_PROTOCOL *Located = nullptr;
    EXPECT_EQ(EFI_SUCCESS,
              gBS->LocateProtocol(&gEfiTarnXmlProtocolGuid, nullptr,
                                  reinterpret_cast<VOID **>(&Located)));
    Protocol_ = Located;
  }

  // Feeds Text in chunks of ChunkSize through GetBuffer/ParseBuffer the way
  // a module reads a file, ending with a final empty call.
  std::vector<EFI_STATUS> Feed(TARNXML_PARSER *Parser, const std::string &Text,
                               UINTN ChunkSize) {
    std::vector<EFI_STATUS> Results;
    UINTN Offset = 0;
    while (true) {
      auto *Buffer = static_cast<char *>(Protocol_->GetBuffer(Parser, ChunkSize));
      const UINTN Length = std::min<UINTN>(ChunkSize, Text.size() - Offset);
      std::memcpy(Buffer, Text.data() + Offset, Length);
      Offset += Length;
      Results.push_back(Protocol_->ParseBuffer(Parser, Length, Length == 0));
      if (Length == 0) {
        return Results;
      }
    }
  }

  emu::XmlParser Xml_;
  EFI_TARNXML_PROTOCOL *Protocol_ = nullptr;
};

TEST_F(XmlParserTest, StartAndEndEventsCarryAttributesInDocumentOrder) {
  TARNXML_PARSER *Parser = Protocol_->ParserCreate(u"UTF-8");
  ASSERT_NE(nullptr, Parser);
  Protocol_->SetElementHandler(Parser, OnStart, OnEnd);
  const std::string Document =
      "<?xml version=\"1.0\"?>\r\n<pcidb>\r\n"
      "  <storage id=\"LSI3108\" vendorid=\"0x1000\" deviceid=\"005D\" "
      "devname=\"RAID Ctrl \xC3\xA9\"/>\r\n"
      "</pcidb>\r\n";
  // Chunks of 7 bytes split names, attributes and a UTF-8 sequence.
  for (EFI_STATUS Status : Feed(Parser, Document, 7)) {
    EXPECT_EQ(EFI_SUCCESS, Status);
  }
  EXPECT_EQ((std::vector<std::string>{
                "<pcidb>",
                "<storage id=LSI3108 vendorid=0x1000 deviceid=005D "
                "devname=RAID Ctrl \xC3\xA9>",
                "</storage>", "</pcidb>"}),
            gEvents);
  Protocol_->ParserFree(Parser);
  EXPECT_EQ(0u, Xml_.LiveParsers());
}

TEST_F(XmlParserTest, MalformedDocumentFailsThenAndOnEveryLaterCall) {
  TARNXML_PARSER *Parser = Protocol_->ParserCreate(u"UTF-8");
  ASSERT_NE(nullptr, Parser);
  Protocol_->SetElementHandler(Parser, OnStart, nullptr);
  const auto Results = Feed(Parser, "<a><b></a>", 64);
  ASSERT_EQ(2u, Results.size());
  EXPECT_EQ(EFI_PROTOCOL_ERROR, Results[0]);
  EXPECT_EQ(EFI_PROTOCOL_ERROR, Results[1]);
  EXPECT_NE("", Xml_.LastError());
  EXPECT_EQ((std::vector<std::string>{"<a>", "<b>"}), gEvents);
  Protocol_->ParserFree(Parser);
}

TEST_F(XmlParserTest, EmptyOrTruncatedDocumentIsAnError) {
  for (const char *Text : {"", "<root><open>"}) {
    TARNXML_PARSER *Parser = Protocol_->ParserCreate(u"UTF-8");
    const auto Results = Feed(Parser, Text, 8192);
    EXPECT_EQ(EFI_PROTOCOL_ERROR, Results.back()) << Text;
    Protocol_->ParserFree(Parser);
  }
}

TEST_F(XmlParserTest, CreationFailsForOtherEncodingsAndWhenInjected) {
  EXPECT_EQ(nullptr, Protocol_->ParserCreate(u"UTF-16"));
  EXPECT_EQ(nullptr, Protocol_->ParserCreate(nullptr));
  TARNXML_PARSER *Lower = Protocol_->ParserCreate(u"utf-8");
  EXPECT_NE(nullptr, Lower);
  Protocol_->ParserFree(Lower);
  Xml_.SetFailParserCreate(true);
  EXPECT_EQ(nullptr, Protocol_->ParserCreate(u"UTF-8"));
  Xml_.SetFailParserCreate(false);
  EXPECT_EQ(1u, Xml_.ParsersCreated());
}

TEST_F(XmlParserTest, LengthBeyondTheBufferIsRefused) {
  TARNXML_PARSER *Parser = Protocol_->ParserCreate(u"UTF-8");
  ASSERT_NE(nullptr, Protocol_->GetBuffer(Parser, 16));
  EXPECT_EQ(EFI_INVALID_PARAMETER, Protocol_->ParseBuffer(Parser, 17, FALSE));
  Protocol_->ParserFree(Parser);
  // A freed parser is not followed.
  EXPECT_EQ(EFI_INVALID_PARAMETER, Protocol_->ParseBuffer(Parser, 0, TRUE));
}

}  // namespace
}  // namespace emu_test
