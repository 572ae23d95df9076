/// Input from the wild, each through CreateXMLIChannel with both values of its flag.

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

namespace
{

using Nuv::UniString;
using Channel = std::unique_ptr<Nuv::XMLIChannel>;

class BadInput : public testing::Test
{
  protected:
    IO::Location Write(std::string_view bytes) const { return IO::Location(scratch.Write("bad.xml", bytes)); }

    NuvTest::ScratchFolder scratch;
};

/// The file gives no channel, and whoever wants to know learns line and reason.
void ExpectToBeRefused(const IO::Location& file, unsigned int line, const UniString& reason)
{
    EXPECT_EQ(Channel(NuvXML::CreateXMLIChannel(file, false)), nullptr);
    UniString told;
    try
    {
        Channel(NuvXML::CreateXMLIChannel(file, true));
    }
    catch (const NuvXML::XMLIChannelException& exception)
    {
        told = exception.GetMessage();
    }
    EXPECT_EQ(told, UniString(u"NuvXML DOMReaderException"));
    NodeLocationInfo location;
    UniString message;
    EXPECT_EQ(
        ParseXMLDoc(file, ValidatingXMLParser::LineInfoParser::Val_Auto, true, nullptr, &location, &message),
        nullptr);
    EXPECT_EQ(location.lineNumber, line);
    EXPECT_EQ(message, reason);
}

TEST_F(BadInput, IsRefusedWhenTheFileIsMissing)
{
    const IO::Location missing(scratch.PathOf("missing.xml"));
    ExpectToBeRefused(missing, 0,
                      UniString(u"unable to open primary document entity '") + missing.ToURL() + u"'");
}

TEST_F(BadInput, IsRefusedWhenItIsAFolder)
{
    const IO::Location folder(scratch.PathOf(""));
    ExpectToBeRefused(folder, 0,
                      UniString(u"unable to open primary document entity '") + folder.ToURL() + u"'");
}

TEST_F(BadInput, IsRefusedWhenTheLocationIsEmpty)
{
    ExpectToBeRefused(IO::Location(), 0, u"unable to open primary document entity ''");
}

TEST_F(BadInput, IsRefusedWhenTheFileIsEmpty)
{
    ExpectToBeRefused(Write(""), 1, u"invalid document structure");
}

TEST_F(BadInput, IsRefusedWhenItHoldsOnlyWhiteSpace)
{
    ExpectToBeRefused(Write("\n\n"), 3, u"invalid document structure");
}

TEST_F(BadInput, IsRefusedWhenItIsNotXML)
{
    ExpectToBeRefused(Write("{\"json\": true}"), 1, u"invalid document structure");
    ExpectToBeRefused(Write(std::string(1000, '\0')), 1, u"invalid document structure");
}

TEST_F(BadInput, IsRefusedWhenItIsMalformed)
{
    ExpectToBeRefused(Write("<r>\n<a>\n</r>"), 3, u"expected end of tag 'a'");
    ExpectToBeRefused(Write("<r/>\n<r/>"), 2, u"comment or processing instruction expected");
    ExpectToBeRefused(Write("<r a='1'\na='2'/>"), 2, u"attribute 'a' is already specified for element 'r'");
    ExpectToBeRefused(Write("<r>\n&nothing;</r>"), 2, u"entity 'nothing' not found");
    ExpectToBeRefused(Write("<r>\x01</r>"), 1, u"invalid character 0x1");
}

TEST_F(BadInput, IsRefusedWhenItEndsTooEarly)
{
    const UniString reason(u"input ended before all started tags were ended; last tag started is 'a'");
    ExpectToBeRefused(Write("<r>\n<a>\ntext"), 3, reason);
}

TEST_F(BadInput, IsRefusedWhenItsEncodingIsUnknown)
{
    ExpectToBeRefused(Write("<?xml version='1.0' encoding='no-such-code'?>\n<r/>"), 1,
                      u"unable to create converter for 'NO-SUCH-CODE' encoding");
}

TEST_F(BadInput, IsRefusedWhenItsBytesAreNotOfItsEncoding)
{
    ExpectToBeRefused(Write("<?xml version='1.0' encoding='UTF-8'?>\n<r>\xC3(</r>"), 1,
                      u"invalid byte '(' at position 2 of a 2-byte sequence");
    ExpectToBeRefused(Write("<?xml version='1.0' encoding='US-ASCII'?><r>\xC3\xBC</r>"), 1,
                      u"char 0xC3 is not representable in 'US-ASCII' encoding");
}

TEST_F(BadInput, IsReadWithReplacementsWhereItsBytesMeanNothingInACodePage)
{
    const IO::Location file = Write("<?xml version='1.0' encoding='ISO-8859-8'?><r><v>a\xA1</v></r>");
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(NuvXML::CreateXMLIChannel(file, throwOnError));
        ASSERT_TRUE(channel);
        UniString value;
        EXPECT_EQ(channel->ReadXML("v", value), 0);
        EXPECT_EQ(value, UniString(u"a\uFFFD"));
    }
}

TEST_F(BadInput, IsReadWhenItDeclaresUTF16AndIsNot)
{
    // Xerces believes the bytes.
    const IO::Location file = Write("<?xml version='1.0' encoding='UTF-16'?>\n<r><v>\xC3\xBC</v></r>");
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(NuvXML::CreateXMLIChannel(file, throwOnError));
        ASSERT_TRUE(channel);
        UniString value;
        EXPECT_EQ(channel->ReadXML("v", value), 0);
        EXPECT_EQ(value, UniString(u"\u00FC"));
    }
}

TEST_F(BadInput, IsRefusedWhenItEndsInTheMiddleOfACharacter)
{
    ExpectToBeRefused(Write("<r>\n\xE2\x82"), 2,
                      u"input ended before all started tags were ended; last tag started is 'r'");
    ExpectToBeRefused(Write("<r/>\n<!--\xF0\x9F\x98"), 2, u"unterminated comment");
    ExpectToBeRefused(Write(std::string_view("\xFF\xFE<\0r\0/\0>", 9)), 1, u"unterminated start tag 'r'");
}

TEST_F(BadInput, IsReadWhenOnlyACharacterBehindTheRootElementIsCutOff)
{
    // Xerces drops it; nothing that could be read is missing.
    const IO::Location file = Write("<r><v>12</v></r>\n\xE2\x82");
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(NuvXML::CreateXMLIChannel(file, throwOnError));
        ASSERT_TRUE(channel);
        int value = 0;
        EXPECT_EQ(channel->ReadXML("v", value), 0);
        EXPECT_EQ(value, 12);
    }
}

TEST_F(BadInput, IsRefusedWhenItsEntitiesContainThemselves)
{
    ExpectToBeRefused(Write("<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e '&f;'><!ENTITY f '&e;'>]>\n<r>&e;</r>"),
                      2, u"recursive entity expansion 'e'");
}

TEST_F(BadInput, IsReadHoweverDeepItIsNested)
{
    constexpr int Depth = 100'000;
    std::string text;
    for (int i = 0; i < Depth; ++i)
        text += "<e>";
    text += "<v>12</v>";
    for (int i = 0; i < Depth; ++i)
        text += "</e>";
    const IO::Location file = Write(text);
    for (const bool throwOnError : {false, true})
    {
        const Channel channel(NuvXML::CreateXMLIChannel(file, throwOnError));
        ASSERT_TRUE(channel);
        for (int i = 1; i < Depth; ++i)
            ASSERT_EQ(channel->ReadStartElement("e"), 0);
        int value = 0;
        EXPECT_EQ(channel->ReadXML("v", value), 0);
        EXPECT_EQ(value, 12);
        while (channel->ReadToken(0) == 0)
            ;
    }
}

} // namespace
