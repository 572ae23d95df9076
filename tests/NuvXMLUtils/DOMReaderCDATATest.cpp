#include "DOMReaderSupport.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMCDATASectionImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMTextImpl.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace
{

using namespace ReaderTests;

constexpr int Failed = -7003;

// CDATA sections.

TEST(DOMReaderCDATA, IsTheFirstSectionInTheActualNode)
{
    TextReader reader("<r>text<!--c--><a><![CDATA[inner]]></a><![CDATA[ <first> ]]><![CDATA[second]]></r>");
    UniString value;
    EXPECT_EQ(reader.ReadXMLCDATAString(value), 0);
    EXPECT_EQ(value, UniString(u" <first> "));
    EXPECT_EQ(PlaceOf(reader), "<r");
}

TEST(DOMReaderCDATA, IsJoinedWhereItsEndHadToBeDividedAndOnlyThere)
{
    for (const auto& [sections, expected] : {std::pair("<![CDATA[a]]]]><![CDATA[>b]]>", u"a]]>b"),
                                             {"<![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]>", u"]]>]]>"},
                                             {"<![CDATA[a]]]]><![CDATA[b]]>", u"a]]"},
                                             {"<![CDATA[a]]]><![CDATA[>b]]>", u"a]"},
                                             {"<![CDATA[a]]><![CDATA[b]]>", u"a"},
                                             {"<![CDATA[a]]]]><![CDATA[]]><![CDATA[>b]]>", u"a]]"},
                                             {"<![CDATA[a]]]]> <![CDATA[>b]]>", u"a]]"},
                                             {"<![CDATA[a]]]]><!----><![CDATA[>b]]>", u"a]]"},
                                             {"<![CDATA[a]]]]>><![CDATA[>b]]>", u"a]]"}})
    {
        TextReader reader("<r><v>" + std::string(sections) + "</v></r>");
        UniString value;
        EXPECT_EQ(reader.ReadXML("v", value), 0);
        EXPECT_EQ(value, UniString(expected)) << sections;
        reader.ReadStartElement("v");
        EXPECT_EQ(reader.ReadXMLCDATAString(value), 0);
        EXPECT_EQ(value, UniString(expected)) << sections;
    }
}

TEST(DOMReaderCDATA, FailsWithoutAMessageWhereThereIsNone)
{
    TextReader reader("<r>text<a/></r>");
    UniString value(u"untouched");
    EXPECT_EQ(reader.ReadXMLCDATAString(value), Failed);
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadXMLCDATAString(value), Failed) << "no child at all";
    EXPECT_EQ(value, UniString(u"untouched"));
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(PlaceOf(reader), "<a");
}

/// A node of another implementation of the DOM, which cannot give its value.
template <class Node>
class WithoutValue : public Node
{
  public:
    explicit WithoutValue(xercesc_3_0::DOMDocument* document)
        : Node(document, u"value")
    {
    }
    const XMLCh* getNodeValue() const override { throw xercesc_3_0::DOMException(); }
};

/// A document `<r><v>` with one such node in `v`.
template <class Node>
NuvXML::XercesPtr<xercesc_3_0::DOMDocument> DocumentWithoutValue()
{
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr));
    auto* element = document->createElement(u"v");
    document->getDocumentElement()->appendChild(element);
    element->appendChild(new (document.get()) WithoutValue<Node>(document.get()));
    return document;
}

TEST(DOMReaderText, FailsInFrontOfANodeThatCannotGiveItsValue)
{
    const auto document = DocumentWithoutValue<xercesc_3_0::DOMTextImpl>();
    DOMReader reader(document->getDocumentElement());
    UniString value(u"untouched");
    EXPECT_EQ(reader.ReadXML("v", value), Failed);
    EXPECT_EQ(value, UniString(u"untouched"));
    EXPECT_EQ(PlaceOf(reader), "<r");
}

TEST(DOMReaderCDATA, FailsInFrontOfASectionThatCannotGiveItsValue)
{
    const auto document = DocumentWithoutValue<xercesc_3_0::DOMCDATASectionImpl>();
    DOMReader reader(document->getDocumentElement());
    EXPECT_EQ(reader.ReadStartElement("v"), 0);
    UniString value(u"untouched");
    EXPECT_EQ(reader.ReadXMLCDATAString(value), Failed);
    EXPECT_EQ(value, UniString(u"untouched"));
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(PlaceOf(reader), "<v");
}

TEST(DOMReaderCDATA, LeavesTheErrorStatusOfAReaderWithoutANode)
{
    TextReader maker("<r/>");
    const std::unique_ptr<DOMReader> reader(maker.Create(UniString(), UniString()));
    UniString value(u"untouched");
    EXPECT_EQ(reader->ReadXMLCDATAString(value), Failed);
    char buffer[8];
    EXPECT_EQ(reader->ReadXMLCDATAString(buffer, sizeof buffer), Failed);
    EXPECT_EQ(reader->ReadXMLCDATAHexToBin(buffer, sizeof buffer), Failed);
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
    EXPECT_EQ(value, UniString(u"untouched"));
}

TEST(DOMReaderCDATA, IsReadThroughTheInheritedForms)
{
    TextReader reader("<r><a><![CDATA[4142ff]]></a><b><![CDATA[text]]></b></r>");
    char buffer[] = "??????";
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadXMLCDATAHexToBin(buffer, 4), 0);
    EXPECT_EQ(std::string_view(buffer, 5), std::string_view("AB\xFF\0?", 5));
    char* bytes = nullptr;
    EXPECT_EQ(reader.ReadXMLCDATAHexToBin(&bytes), 0);
    const std::unique_ptr<char[]> owned(bytes);
    EXPECT_STREQ(bytes, "AB\xFF");
    reader.ReadEndElement("a");
    reader.ReadStartElement("b");
    EXPECT_EQ(reader.ReadXMLCDATAString(buffer, 5), 0);
    EXPECT_STREQ(buffer, "text");
}

// Versions.

TEST(DOMReaderVersion, IsMajorAndMinorNumberAndLeavesTheRest)
{
    TextReader reader("<r Mv='3' Sv='1'><a Mv='200' Sv='255'/></r>");
    ClassVersion version{9, 9, 7};
    EXPECT_EQ(reader.ReadXMLVersionAttr(version), 0);
    EXPECT_EQ(version.majorNumber, 3);
    EXPECT_EQ(version.minorNumber, 1);
    EXPECT_EQ(version.buildNumber, 7);
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadXMLVersionAttr(version), 0);
    EXPECT_EQ(version.majorNumber, 200);
    EXPECT_EQ(version.minorNumber, 255);
}

TEST(DOMReaderVersion, FailsWithTheMessageOfTheFirstAttributeThatFails)
{
    const auto expectMessage = [](std::string_view text, const UniString& message)
    {
        TextReader reader(text);
        ClassVersion version{9, 8, 7};
        EXPECT_EQ(reader.ReadXMLVersionAttr(version), Failed);
        EXPECT_EQ(MessagesOf(reader), Array<UniString>{message});
        EXPECT_EQ(version.majorNumber, 9);
        EXPECT_EQ(version.minorNumber, 8);
    };
    expectMessage("<r/>", u"Missing Attribute: Mv");
    expectMessage("<r Sv='1'/>", u"Missing Attribute: Mv");
    expectMessage("<r Mv='3'/>", u"Missing Attribute: Sv");
    expectMessage("<r Mv='x' Sv='y'/>", u"Attribute should be number, but is not. AttributeName: Mv");
    expectMessage("<r Mv='3' Sv=''/>", u"Attribute should be number, but is not. AttributeName: Sv");
}

TEST(DOMReaderVersion, LeavesTheErrorStatusOfAReaderWithoutANode)
{
    TextReader maker("<r/>");
    const std::unique_ptr<DOMReader> reader(maker.Create(UniString(), UniString()));
    ClassVersion version;
    EXPECT_EQ(reader->ReadXMLVersionAttr(version), Failed);
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NoError);
    EXPECT_EQ(reader->GetNumberOfMessage(), 0);
}

} // namespace
