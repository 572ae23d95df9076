#include "NuvXMLUtils/FormatXMLDoc.hpp"

#include "NuvXMLUtils/testing/XMLMatchers.hpp"
#include "tests/NuvXMLUtils/ExactCompareOptions.hpp"
#include "tests/NuvXMLUtils/PlainPrinter.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <ostream>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;

Document DocumentOf(std::u16string_view text)
{
    Document document = NewDocument();
    document->getDocumentElement()->appendChild(document->createTextNode(std::u16string(text).c_str()));
    return document;
}

/// What stands between `<r>` and `</r>` when the text is printed.
std::string PrintText(std::u16string_view text, const char16_t* encoding)
{
    const std::string bytes = Print(*DocumentOf(text)->getDocumentElement(), encoding);
    const size_t start = bytes.find("<r>") + 3;
    return bytes.substr(start, bytes.size() - start - 4);
}

// Byte by byte.

/// Every node type, with characters of one to four bytes in UTF-8, of which Latin-1 has the first two.
constexpr char EveryNodeType[] =
    "<!DOCTYPE r [<!ENTITY e \"v\">]><!--\xC3\xA4\xE2\x82\xAC--><?p \xC3\xA4\xE2\x82\xAC?>"
    "<r a='&lt;&amp;&quot;&apos;&gt;\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80'>&e;&lt;&amp;]]&gt;"
    "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80<![CDATA[<\xC3\xA4]]><x/></r>";

constexpr std::u16string_view EveryNodeTypeInUTF16 =
    u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<!DOCTYPE r[<!ENTITY e "
    u"\"v\">]>\n<!--\u00E4\u20AC-->\n"
    u"<?p \u00E4\u20AC?>\n<r "
    u"a=\"&lt;&amp;&quot;&apos;>\u00E4\u20AC\U0001F600\">&e;&lt;&amp;]]&gt;\u00E4\u20AC"
    u"\U0001F600<![CDATA[<\u00E4]]><x/></r>\n";

TEST(FormatXMLDocEncodings, WritesEveryNodeTypeInUTF8)
{
    EXPECT_EQ(Print(*Parse(EveryNodeType), u"UTF-8"),
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
              "<!--\xC3\xA4\xE2\x82\xAC-->\n<?p \xC3\xA4\xE2\x82\xAC?>\n"
              "<r a=\"&lt;&amp;&quot;&apos;>\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\">&e;&lt;&amp;]]&gt;"
              "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80<![CDATA[<\xC3\xA4]]><x/></r>\n");
}

TEST(FormatXMLDocEncodings, WritesEveryNodeTypeInUTF16)
{
    EXPECT_EQ(Print(*Parse(EveryNodeType), u"UTF-16LE"), LittleEndian(EveryNodeTypeInUTF16));
    EXPECT_EQ(Print(*Parse(EveryNodeType), u"UTF-16BE"), BigEndian(EveryNodeTypeInUTF16));
}

TEST(FormatXMLDocEncodings, WritesEveryNodeTypeInLatin1)
{
    EXPECT_EQ(Print(*Parse(EveryNodeType), u"ISO-8859-1"),
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
              "<!--\xE4&#x20AC;-->\n<?p \xE4&#x20AC;?>\n"
              "<r a=\"&lt;&amp;&quot;&apos;>\xE4&#x20AC;&#x1F600;\">&e;&lt;&amp;]]&gt;\xE4&#x20AC;&#x1F600;"
              "<![CDATA[<\xE4]]><x/></r>\n");
}

TEST(FormatXMLDocEncodings, WritesEveryNodeTypeInASCII)
{
    EXPECT_EQ(
        Print(*Parse(EveryNodeType), u"US-ASCII"),
        "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
        "<!--&#xE4;&#x20AC;-->\n<?p &#xE4;&#x20AC;?>\n"
        "<r a=\"&lt;&amp;&quot;&apos;>&#xE4;&#x20AC;&#x1F600;\">&e;&lt;&amp;]]&gt;&#xE4;&#x20AC;&#x1F600;"
        "<![CDATA[<&#xE4;]]><x/></r>\n");
}

TEST(FormatXMLDocEncodings, WritesEveryNodeTypeInWindows1252)
{
    EXPECT_EQ(Print(*Parse(EveryNodeType), u"windows-1252"),
              "<?xml version=\"1.0\" encoding=\"WINDOWS-1252\"?>\n<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
              "<!--\xE4\x80-->\n<?p \xE4\x80?>\n"
              "<r a=\"&lt;&amp;&quot;&apos;>\xE4\x80&#x1F600;\">&e;&lt;&amp;]]&gt;\xE4\x80&#x1F600;"
              "<![CDATA[<\xE4]]><x/></r>\n");
}

TEST(FormatXMLDocEncodings, WritesReferencesInNames)
{
    const Document document = NewDocument();
    DOMElement* const element = document->createElement(u"\u00E4\u212B");
    element->setAttribute(u"\u00E4", u"1");
    element->appendChild(document->createEntityReference(u"\u212B"));
    EXPECT_EQ(Print(*element, u"US-ASCII"), "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n"
                                            "<&#xE4;&#x212B; &#xE4;=\"1\">&&#x212B;;</&#xE4;&#x212B;>");
}

// Half pairs.

TEST(FormatXMLDocEncodings, WritesHalfAPairAsItIsInUTF16)
{
    EXPECT_EQ(Print(*DocumentOf(u"\xD83D<\xDE00\xDE00\xD83D")->getDocumentElement(), u"UTF-16LE"),
              LittleEndian(
                  u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<r>\xD83D&lt;\xDE00\xDE00\xD83D</r>"));
}

TEST(FormatXMLDocEncodings, WritesHalfAPairAsAReferenceElsewhere)
{
    for (const char16_t* const encoding :
         {u"UTF-8", u"ISO-8859-1", u"US-ASCII", u"windows-1252", u"KOI8-R", u"GB18030"})
        EXPECT_EQ(PrintText(u"\xD83D<\xDE00\xDE00\xD83D"
                            u"a\xD83D",
                            encoding),
                  "&#xD83D;&lt;&#xDE00;&#xDE00;&#xD83D;a&#xD83D;");
}

// Characters that a converter would change.

TEST(FormatXMLDocEncodings, NeverWritesACharacterThatWouldComeBackAsAnother)
{
    EXPECT_EQ(PrintText(u"\uFF1Cx\uFF06\u201D", u"windows-1252"), "&#xFF1C;x&#xFF06;\x94");
    EXPECT_EQ(PrintText(u"\uFF1Cx\uFF06\u201D", u"cp1252"), "&#xFF1C;x&#xFF06;\x94");
}

TEST(FormatXMLDocEncodings, NeverDropsACharacterThatAConverterIgnores)
{
    for (const char16_t* const encoding : {u"KOI8-R", u"ISO-8859-2", u"Shift_JIS", u"windows-1251"})
        EXPECT_EQ(PrintText(u"a\u200B\u00AD\u2060z", encoding).substr(0, 9), "a&#x200B;");
    EXPECT_EQ(PrintText(u"\u00E4\u0416\U0001F600", u"KOI8-R"), "&#xE4;\xF6&#x1F600;");
}

// Blocks.

struct Sample
{
    const char16_t* encoding;
    std::string pair;
};

TEST(FormatXMLDocEncodings, WritesPairsAndEscapesAcrossTheBordersOfItsBlocks)
{
    const Sample samples[] = {{u"UTF-8", "\xF0\x9F\x98\x80"},   {u"ISO-8859-1", "&#x1F600;"},
                              {u"US-ASCII", "&#x1F600;"},       {u"windows-1252", "&#x1F600;"},
                              {u"GB18030", "\x94\x39\xFC\x36"}, {u"KOI8-R", "&#x1F600;"}};
    for (const size_t border : {0x1000u, 0x4000u, 0x10000u - 48u})
        for (size_t length = border - 20; length < border + 20; ++length)
            for (const Sample& sample : samples)
                ASSERT_TRUE(
                    PrintText(std::u16string(length, u'a') + u"\U0001F600<]]>\U0001F600b", sample.encoding) ==
                    std::string(length, 'a') + sample.pair + "&lt;]]&gt;" + sample.pair + "b")
                    << Nuv::UniString(sample.encoding) << " " << length;
}

TEST(FormatXMLDocEncodings, WritesLongTextsOfLongCharacters)
{
    std::u16string text;
    std::string expected;
    for (size_t i = 0; i < 50'000; ++i)
    {
        text += i % 3 == 0 ? u"\u20AC" : i % 3 == 1 ? u"\U0001F600" : u"\u00E4&";
        expected += i % 3 == 0 ? "\xE2\x82\xAC" : i % 3 == 1 ? "\xF0\x9F\x98\x80" : "\xC3\xA4&amp;";
    }
    EXPECT_TRUE(PrintText(text, u"UTF-8") == expected);
}

// Every character of every encoding.

struct Encoding
{
    const char16_t* name;
    const char16_t* declaredName;
    std::string mark;
    bool isUTF16 = false;

    friend std::ostream& operator<<(std::ostream& stream, const Encoding& encoding)
    {
        return stream << Nuv::UniString(encoding.name);
    }
};

class FormatXMLDocInEncoding : public testing::TestWithParam<Encoding>
{
};

INSTANTIATE_TEST_SUITE_P(
    Encodings, FormatXMLDocInEncoding,
    testing::Values(
        Encoding{u"UTF-8", u"UTF-8", "\xEF\xBB\xBF"}, Encoding{u"UTF-16LE", u"UTF-16", "\xFF\xFE", true},
        Encoding{u"UTF-16BE", u"UTF-16", "\xFE\xFF", true}, Encoding{u"ISO-8859-1", u"ISO-8859-1", ""},
        Encoding{u"US-ASCII", u"US-ASCII", ""}, Encoding{u"windows-1252", u"WINDOWS-1252", ""},
        Encoding{u"KOI8-R", u"KOI8-R", ""}, Encoding{u"windows-1251", u"windows-1251", ""},
        Encoding{u"Shift_JIS", u"Shift_JIS", ""}, Encoding{u"EUC-JP", u"EUC-JP", ""},
        Encoding{u"Big5-HKSCS", u"Big5-HKSCS", ""}, Encoding{u"GB18030", u"GB18030", ""},
        Encoding{u"ISO-10646-UCS-4", u"ISO-10646-UCS-4", ""}, Encoding{u"UCS-4BE", u"UCS-4BE", ""},
        Encoding{u"UCS-4LE", u"UCS-4LE", ""}, Encoding{u"IBM1140", u"IBM1140", ""},
        Encoding{u"EBCDIC-CP-US", u"EBCDIC-CP-US", ""}, Encoding{u"ibm-37", u"ibm-37", ""}),
    [](const auto& parameter) { return std::to_string(parameter.index) + "th"; });

/// All characters that XML has, some of them with their neighbours, in texts of several thousand.
std::vector<std::u16string> AllCharacters()
{
    std::vector<std::u16string> texts(1);
    const auto append = [&texts](char32_t first, char32_t last)
    {
        for (char32_t character = first; character <= last; ++character)
        {
            if (texts.back().size() > 8000)
                texts.emplace_back();
            if (character >= 0x10000)
                texts.back() += static_cast<char16_t>(0xD7C0 + (character >> 10));
            texts.back() +=
                static_cast<char16_t>(character >= 0x10000 ? 0xDC00 + (character & 0x3FF) : character);
        }
    };
    append(0x9, 0xA);
    append(0x20, 0xFFFD);
    append(0x10000, 0x10400);
    append(0x1F5F0, 0x1F610);
    append(0x20000, 0x20100);
    append(0x10FF00, 0x10FFFD);
    return texts;
}

TEST_P(FormatXMLDocInEncoding, WritesEveryCharacterAsThePlainWayDoes)
{
    const Encoding& encoding = GetParam();
    PlainPrinter plain(encoding.name, encoding.isUTF16);
    const Document document = NewDocument();
    DOMElement& root = *document->getDocumentElement();
    for (const std::u16string& text : AllCharacters())
    {
        DOMElement* const element = document->createElement(u"e");
        element->setAttribute(u"a", text.c_str());
        element->appendChild(document->createTextNode(text.c_str()));
        root.appendChild(element);
    }
    EXPECT_TRUE(Print(*document, encoding.name) ==
                encoding.mark + plain.Print(*document, encoding.declaredName));
}

TEST_P(FormatXMLDocInEncoding, WritesGeneratedDocumentsAsThePlainWayDoes)
{
    const Encoding& encoding = GetParam();
    PlainPrinter plain(encoding.name, encoding.isUTF16);
    for (unsigned seed = 0; seed < 60; ++seed)
    {
        const Document document = DocumentGenerator(seed).Make();
        ASSERT_EQ(Print(*document, encoding.name),
                  encoding.mark + plain.Print(*document, encoding.declaredName))
            << "seed " << seed;
    }
}

TEST_P(FormatXMLDocInEncoding, WritesTextThatParsesToAnEqualTree)
{
    for (unsigned seed = 0; seed < 200; ++seed)
    {
        const Document document = DocumentGenerator(seed).Make();
        const std::string bytes = Print(*document, GetParam().name);
        ASSERT_THAT(bytes, NuvXML::EqualsXML(Print(*document), ExactCompareOptions())) << "seed " << seed;
        ASSERT_TRUE(Parse(bytes)->isEqualNode(document.get())) << "seed " << seed << "\n" << bytes;
    }
}

TEST_P(FormatXMLDocInEncoding, WritesATypeDatabaseThatParsesToAnEqualTree)
{
    // Xerces' parser puts further blanks into the comments of an internal subset each time it reads them.
    const auto parse = [](std::string_view bytes)
    {
        Document document = Parse(bytes);
        document->removeChild(document->getDoctype())->release();
        return document;
    };
    const std::string text = ReadTypeDatabase();
    EXPECT_TRUE(parse(Print(*Parse(text), GetParam().name))->isEqualNode(parse(text).get()));
}

} // namespace
