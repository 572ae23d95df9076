#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"

#include "NuvXMLUtils/testing/XMLMatchers.hpp"
#include "tests/NuvXMLUtils/ExactCompareOptions.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <limits>
#include <random>
#include <string>
#include <string_view>

namespace
{

using Nuv::UniString;
using NuvXML::DOMBuilder;
using xercesc_3_0::DOMNode;

/// Writes random objects: nested elements with attributes, values of all types, text and CDATA sections.
class Generator
{
  public:
    Generator(DOMBuilder& builder, unsigned int seed)
        : channel(builder)
        , random(seed)
    {
    }

    void WriteDocument()
    {
        channel.SetAutoTabsHint(Below(4) != 0);
        channel.SetReplaceCR(Below(2) != 0);
        channel.WriteStartDocument();
        WriteObject(0);
        channel.WriteEndDocument();
    }

  private:
    unsigned int Below(unsigned int bound) { return static_cast<unsigned int>(random()) % bound; }

    void WriteObject(int level)
    {
        channel.WriteStartElement(Name());
        if (Below(3) == 0)
            channel.WriteXMLVersionAttr(
                {static_cast<unsigned char>(random()), static_cast<unsigned char>(random())});
        for (unsigned int count = Below(4); count > 0; --count)
            channel.WriteXMLAttr(Name(), Text());
        if (Below(3) == 0)
            channel.WriteXMLAttr("number", Number<long long>());
        for (unsigned int count = Below(6); count > 0; --count)
            WriteField(level);
        channel.WriteEndElement();
    }

    void WriteField(int level)
    {
        switch (Below(8))
        {
        case 0:
            channel.WriteXML(Name(), Number<char>());
            channel.WriteXML(Name(), Number<unsigned short>());
            break;
        case 1:
            channel.WriteXML(Name(), Number<long>());
            channel.WriteXML(Name(), Number<unsigned long long>());
            break;
        case 2:
            channel.WriteXML(Name(), Nuv::Guid::Generate());
            channel.WriteXML(Name(), Below(2) == 0);
            break;
        case 3:
            channel.WriteXMLTextNode(Text());
            break;
        case 4:
            channel.WriteXMLCDATAString(Text());
            break;
        case 5:
            if (level < 8)
                WriteObject(level + 1);
            break;
        default:
            channel.WriteXML(Name(), Text());
        }
    }

    const char* Name()
    {
        static constexpr const char* Names[] = {
            "a",     "b",
            "value", "Name.with-all_kinds1",
            "_",     "a-name-that-is-longer-than-the-buffer-for-short-names-of-64-units-is"};
        return Names[Below(static_cast<unsigned int>(std::size(Names)))];
    }

    /// Often one of the extremes.
    template <class Integer>
    Integer Number()
    {
        switch (Below(4))
        {
        case 0:
            return std::numeric_limits<Integer>::min();
        case 1:
            return std::numeric_limits<Integer>::max();
        default:
            return static_cast<Integer>(random());
        }
    }

    /// Often empty; characters of every class of XML.
    UniString Text()
    {
        std::u16string text;
        for (unsigned int length = Below(12); length > 0; --length)
            AppendCharacter(text);
        return UniString(text);
    }

    void AppendCharacter(std::u16string& text)
    {
        switch (Below(9))
        {
        case 0:
            text += u"\t\n\r "[Below(4)];
            break;
        case 1:
            text += u"\r\n";
            break;
        case 2:
            text += u"<>&\"']"[Below(6)];
            break;
        case 3:
            text += u"]]>";
            break;
        case 4:
            text += static_cast<char16_t>(0x7F + Below(0x100)); // the controls above ASCII and Latin letters
            break;
        case 5:
            text += u"\u200B\u2028\uD7FF\uE000\uFEFF\uFFFD\u0085\u00A0"[Below(8)];
            break;
        case 6:
            AppendSupplementary(text);
            break;
        case 7:
            text += static_cast<char16_t>(0x20 + Below(0xD7E0));
            break;
        default:
            text += static_cast<char16_t>(0x20 + Below(0x5F));
        }
    }

    /// A pair of surrogates, half of the time from the ends of their ranges.
    void AppendSupplementary(std::u16string& text)
    {
        const unsigned int character = Below(2) == 0 ? Below(0x100000) : (Below(2) == 0 ? 0 : 0xFFFFF);
        text += static_cast<char16_t>(0xD800 + (character >> 10));
        text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    }

    DOMBuilder& channel;
    std::mt19937_64 random;
};

NuvXML::XercesPtr<xercesc_3_0::DOMDocument> Parse(const std::string& bytes)
{
    xercesc_3_0::XercesDOMParser parser;
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                                "memory");
    parser.setCreateCommentNodes(true);
    parser.parse(source);
    EXPECT_EQ(parser.getErrorCount(), 0u);
    return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(parser.adoptDocument());
}

/// Line ends in CDATA sections, where they cannot be escaped, as a parser reads them.
std::u16string AsParsed(const XMLCh* cdata)
{
    UniString text(cdata);
    text.ReplaceAll(UniString(u"\r\n"), UniString(u"\n"));
    text.ReplaceAll(UniString(u"\r"), UniString(u"\n"));
    return std::u16string(text.View());
}

/// Whether the section goes on with the text of the one before it, which was divided in "]]>".
bool GoesOnWithTheLast(const DOMNode& section)
{
    const DOMNode* const last = section.getPreviousSibling();
    return last && last->getNodeType() == DOMNode::CDATA_SECTION_NODE &&
           std::u16string_view(last->getNodeValue()).ends_with(u"]]") && *section.getNodeValue() == u'>';
}

/// Everything that a tree holds, in document order, as one text in which no two trees look alike. Text nodes
/// that touch are one text, and empty ones none; white space around the root element is left out, as parsers
/// leave it out.
void Describe(const DOMNode& parent, std::u16string& out)
{
    bool inText = false;
    for (const DOMNode* node = parent.getFirstChild(); node; node = node->getNextSibling())
    {
        const bool isText = node->getNodeType() == DOMNode::TEXT_NODE;
        if (isText && (parent.getNodeType() == DOMNode::DOCUMENT_NODE || !*node->getNodeValue()))
            continue;
        if (isText && !inText)
            out += u"\x01text ";
        inText = isText;
        if (isText)
            out += node->getNodeValue();
        else if (node->getNodeType() == DOMNode::CDATA_SECTION_NODE)
            out += (GoesOnWithTheLast(*node) ? u""
                                             : u"\x01"
                                               u"cdata ") +
                   AsParsed(node->getNodeValue());
        else
        {
            out += u"\x01"
                   u"element " +
                   std::u16string(node->getNodeName());
            const xercesc_3_0::DOMNamedNodeMap* attributes = node->getAttributes();
            for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
                out += u"\x01"
                       u"attribute " +
                       std::u16string(attributes->item(i)->getNodeName()) + u"=" +
                       attributes->item(i)->getNodeValue();
            Describe(*node, out);
            out += u"\x01"
                   u"end";
        }
    }
}

std::u16string Described(const DOMNode& document)
{
    std::u16string text;
    Describe(document, text);
    return text;
}

TEST(DOMBuilderRoundTrip, GivesTheTreeThatWasBuilt)
{
    for (unsigned int seed = 1; seed <= 500; ++seed)
    {
        DOMBuilder builder;
        Generator(builder, seed).WriteDocument();
        Nuv::MemoryOChannel channel;
        builder.Export(channel);
        const auto parsed = Parse(channel.GetBytes());
        ASSERT_TRUE(parsed);
        ASSERT_TRUE(Described(*parsed) == Described(*builder.GetDOMDocument())) << "seed " << seed << '\n'
                                                                                << channel.GetBytes();
    }
}

TEST(DOMBuilderRoundTrip, ExportsTheSameTextAfterItWasParsed)
{
    for (unsigned int seed = 501; seed <= 600; ++seed)
    {
        DOMBuilder builder;
        Generator(builder, seed).WriteDocument();
        const std::string text = builder.Export().ToUTF8();
        const auto parsed = Parse(text);
        DOMBuilder again(parsed.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
        const std::string second = again.Export().ToUTF8();
        ASSERT_THAT(second, NuvXML::EqualsXML(text, NuvTest::ExactCompareOptions())) << "seed " << seed;
        ASSERT_TRUE(Described(*Parse(second)) == Described(*parsed)) << "seed " << seed;
    }
}

TEST(DOMBuilderRoundTrip, KeepsEveryCharacterOfXML)
{
    std::u16string text = u"\t\n\r";
    for (unsigned int unit = 0x20; unit <= 0xFFFD; ++unit)
    {
        if (unit < 0xD800 || unit > 0xDFFF)
            text += static_cast<char16_t>(unit);
    }
    for (unsigned int unit = 0xD800; unit <= 0xDBFF; ++unit)
        text.append({static_cast<char16_t>(unit), u'\xDC00', static_cast<char16_t>(unit), u'\xDFFF'});
    DOMBuilder builder;
    builder.SetReplaceCR(false);
    builder.WriteStartElement("r");
    builder.WriteXMLAttr("a", UniString(text));
    builder.WriteXML("v", UniString(text));
    builder.WriteXMLCDATAString(UniString(text));
    Nuv::MemoryOChannel channel;
    builder.Export(channel);
    EXPECT_TRUE(Described(*Parse(channel.GetBytes())) == Described(*builder.GetDOMDocument()));
}

} // namespace
