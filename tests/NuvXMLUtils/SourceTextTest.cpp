#include "NuvXMLUtils/SourceText.hpp"

#include "NuvXMLUtils/LoadDocument.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace
{

using NuvXML::SourceText;

/// A line of a document.
std::string LineOf(const std::string& bytes, unsigned int number)
{
    const auto document = NuvXML::LoadDocument(bytes).document;
    return document ? SourceText(bytes, *document).Line(number).ToUTF8() : "not well formed";
}

TEST(SourceText, GivesALineWithoutTheWhiteSpaceAtItsEnds)
{
    EXPECT_EQ(LineOf("<a>\n  <b/> \n</a>", 1), "<a>");
    EXPECT_EQ(LineOf("<a>\n  <b/> \n</a>", 2), "<b/>");
    EXPECT_EQ(LineOf("<a>\n  <b/> \n</a>", 3), "</a>");
}

TEST(SourceText, CountsLinesAsXMLDoes)
{
    for (const char* end : {"\n", "\r\n", "\r"})
    {
        const std::string bytes = std::string("<a>") + end + end + "<b/></a>" + end;
        EXPECT_EQ(LineOf(bytes, 2), "");
        EXPECT_EQ(LineOf(bytes, 3), "<b/></a>");
    }
}

TEST(SourceText, HasNoOtherLines)
{
    EXPECT_EQ(LineOf("<a/>", 0), "");
    EXPECT_EQ(LineOf("<a/>", 2), "");
}

TEST(SourceText, DecodesWhatTheDocumentDeclares)
{
    EXPECT_EQ(LineOf("<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE9</a>", 2), "<a>\xC3\xA9</a>");
    EXPECT_EQ(LineOf("\xEF\xBB\xBF<a>\xC3\xA9</a>", 1), "<a>\xC3\xA9</a>");
}

TEST(SourceText, DecodesAMainframeCodePage)
{
    EXPECT_EQ(LineOf("\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7F\xF1\x4B\xF0\x7F\x40"
                     "\x85\x95\x83\x96\x84\x89\x95\x87\x7E\x7F\xC9\xC2\xD4\xF0\xF3\xF7\x7F\x6F\x6E"
                     "\x25\x4C\x81\x6E\x51\x4C\x61\x81\x6E",
                     2),
              "<a>\xC3\xA9</a>");
}

TEST(SourceText, KnowsTheByteOrderOfUTF16)
{
    for (const char16_t* text :
         {u"\uFEFF<a>\n\u00E9</a>", u"<?xml version='1.0' encoding='UTF-16'?><a>\n\u00E9</a>"})
    {
        std::string little;
        std::string big;
        for (const char16_t unit : std::u16string_view(text))
        {
            little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
            big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
        }
        EXPECT_EQ(LineOf(little, 2), "\xC3\xA9</a>");
        EXPECT_EQ(LineOf(big, 2), "\xC3\xA9</a>");
    }
}

TEST(SourceText, TakesNoLongerForALongLine)
{
    const std::string bytes = "<a>" + std::string(10'000'000, 'b') + "</a>";
    const auto document = NuvXML::LoadDocument(bytes).document;
    const SourceText source(bytes, *document);
    for (int i = 0; i < 100'000; ++i)
        ASSERT_EQ(source.Line(1).GetLength(), SourceText::MaxLineLength + 4);
}

TEST(SourceText, TakesAnEncodingThatIsKnown)
{
    EXPECT_EQ(SourceText("\xE9", u"ISO-8859-1").Line(1).ToUTF8(), "\xC3\xA9");
    EXPECT_EQ(SourceText("text", u"no such encoding").Line(1).ToUTF8(), "");
}

TEST(SourceText, CutsALongLineBehindAWholeCharacter)
{
    const std::string longest(SourceText::MaxLineLength, 'x');
    EXPECT_EQ(SourceText(longest, u"UTF-8").Line(1).ToUTF8(), longest);
    EXPECT_EQ(SourceText(longest + "y", u"UTF-8").Line(1).ToUTF8(), longest + " ...");
    const std::string shorter = longest.substr(1);
    EXPECT_EQ(SourceText(shorter + "\xF0\x9F\x98\x80", u"UTF-8").Line(1).ToUTF8(), shorter + " ...");
}

} // namespace
