// Characters of markup in CDATA sections, comments and instructions, in trees of the caller: written so that
// they come back, or refused.

#include "DOMBuilderSupport.hpp"

#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/NuvXMLDOMReader.hpp"

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <functional>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace BuilderTests;

using NewNode = std::function<DOMNode*(DOMDocument&)>;

NewNode CDATASection(const UniString& text)
{
    return [text](DOMDocument& document) { return document.createCDATASection(text.ToUTF16()); };
}

NewNode Comment(const UniString& text)
{
    return [text](DOMDocument& document) { return document.createComment(text.ToUTF16()); };
}

NewNode Instruction(const UniString& target, const UniString& data)
{
    return [target, data](DOMDocument& document)
    { return document.createProcessingInstruction(target.ToUTF16(), data.ToUTF16()); };
}

XercesPtr<DOMDocument> RootWith(const std::vector<NewNode>& children)
{
    XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    document->appendChild(root);
    for (const NewNode& child : children)
        root->appendChild(child(*document));
    return document;
}

/// What is exported of a tree of the caller, without the declaration.
std::string Exported(DOMDocument& document)
{
    DOMBuilder builder(&document, nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    return TextOf(builder);
}

void ExpectRefused(DOMDocument& document)
{
    DOMBuilder builder(&document, nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_THROW(builder.Export(), DOMLSException);
    Nuv::MemoryOChannel channel;
    EXPECT_THROW(builder.Export(channel), DOMLSException);
    EXPECT_EQ(channel.GetBytes(), "");
}

/// The document of exported text, as Xerces parses it.
XercesPtr<DOMDocument> Parsed(const std::string& bytes)
{
    xercesc_3_0::XercesDOMParser parser;
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                                "memory");
    parser.parse(source);
    EXPECT_EQ(parser.getErrorCount(), 0u) << bytes;
    return XercesPtr<DOMDocument>(parser.adoptDocument());
}

// Each kind of node.

TEST(ExportedMarkup, DividesACDATASectionOfTheCaller)
{
    const auto document = RootWith({CDATASection(u"a]]>b]]]>"), CDATASection(u"]]>"), CDATASection(u"]]")});
    EXPECT_EQ(
        Exported(*document),
        "<r><![CDATA[a]]]]><![CDATA[>b]]]]]><![CDATA[>]]><![CDATA[]]]]><![CDATA[>]]><![CDATA[]]]]></r>");
}

TEST(ExportedMarkup, RefusesCommentsThatXMLCannotHold)
{
    for (const char16_t* text : {u"--", u"-", u"a--b", u"a-", u"-->", u"a---", u"--a"})
        ExpectRefused(*RootWith({Comment(text)}));
}

TEST(ExportedMarkup, RefusesInstructionsThatXMLCannotHold)
{
    for (const char16_t* data : {u"?>", u"a?>b", u"?>?>"})
        ExpectRefused(*RootWith({Instruction(u"p", data)}));
    for (const char16_t* target : {u"xml", u"XML", u"Xml"})
        ExpectRefused(*RootWith({Instruction(target, u"version='1.0'")}));
}

TEST(ExportedMarkup, RefusesCharactersThatXMLCannotHoldInEveryNode)
{
    for (const UniString& text : UnwritableTexts)
        for (const NewNode& node : {CDATASection(text), Comment(text), Instruction(u"p", text)})
            ExpectRefused(*RootWith({node}));
}

TEST(ExportedMarkup, TakesWhatOnlyLooksLikeIt)
{
    const auto document =
        RootWith({Comment(u"-a- -b ?> ]]>"), Comment(u""), Instruction(u"xml-stylesheet", u"? > --"),
                  Instruction(u"p", u""), CDATASection(u"]] > -- ?>"), CDATASection(u"")});
    EXPECT_EQ(Exported(*document), "<r><!---a- -b ?> ]]>--><!----><?xml-stylesheet ? > --?><?p?>"
                                   "<![CDATA[]] > -- ?>]]><![CDATA[]]></r>");
}

TEST(ExportedMarkup, LooksAtNodesAroundTheRootElementToo)
{
    for (const NewNode& node : {Comment(u"a--b"), Instruction(u"p", u"a?>b"), Instruction(u"xml", u"")})
    {
        const auto before = RootWith({});
        before->insertBefore(node(*before), before->getDocumentElement());
        ExpectRefused(*before);
        const auto behind = RootWith({});
        behind->appendChild(node(*behind));
        ExpectRefused(*behind);
    }
}

TEST(ExportedMarkup, LeavesTheTreeAsItIs)
{
    for (const NewNode& last : {CDATASection(u"c]]>d"), Comment(u"--"), Instruction(u"p", u"?>")})
    {
        const auto document = RootWith({CDATASection(u"a]]>b"), Comment(u"c"), last});
        const XercesPtr<DOMDocument> copy(static_cast<DOMDocument*>(document->cloneNode(true)));
        const DOMNode* const section = document->getDocumentElement()->getFirstChild();
        DOMBuilder builder(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
        try
        {
            builder.Export();
        }
        catch (const DOMLSException&)
        {
        }
        EXPECT_TRUE(document->isEqualNode(copy.get()));
        EXPECT_EQ(document->getDocumentElement()->getFirstChild(), section);
    }
}

TEST(ExportedMarkup, IsPrintedAsItIsByFormatXMLDoc)
{
    const auto document = RootWith({CDATASection(u"a]]>b"), Comment(u"a--b"), Instruction(u"p", u"a?>b")});
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDoc(document->getDocumentElement(), &channel, nullptr, false));
    EXPECT_TRUE(channel.GetBytes().ends_with("<r><![CDATA[a]]>b]]><!--a--b--><?p a?>b?></r>"))
        << channel.GetBytes();
}

// Generated nodes.

/// One node of any of the three kinds, with text that is mostly markup.
struct AnyNode
{
    explicit AnyNode(std::mt19937& random)
        : type(std::vector{DOMNode::CDATA_SECTION_NODE, DOMNode::COMMENT_NODE,
                           DOMNode::PROCESSING_INSTRUCTION_NODE}[random() % 3])
    {
        constexpr std::u16string_view characters = u"]]]>>--?<![&;a \n\u00E4\uFFFD";
        std::u16string any;
        for (size_t length = random() % 12; length > 0; --length)
            any += characters[random() % characters.size()];
        // White space at the beginning of an instruction separates it from the target.
        text = UniString(type == DOMNode::PROCESSING_INSTRUCTION_NODE ? u"d" + any : any);
    }

    NewNode Make() const
    {
        return type == DOMNode::CDATA_SECTION_NODE ? CDATASection(text)
               : type == DOMNode::COMMENT_NODE     ? Comment(text)
                                                   : Instruction(u"p", text);
    }

    bool HasARightForm() const
    {
        const auto has = [this](std::u16string_view part)
        { return text.View().find(part) != std::u16string_view::npos; };
        return type == DOMNode::CDATA_SECTION_NODE ? true
               : type == DOMNode::COMMENT_NODE     ? !has(u"--") && !text.View().ends_with(u'-')
                                                   : !has(u"?>");
    }

    DOMNode::NodeType type;
    UniString text;
};

/// The text of the one node in the root element; of CDATA sections, all of it.
UniString OnlyText(const DOMDocument& document, DOMNode::NodeType type)
{
    UniString text;
    for (const DOMNode* node = document.getDocumentElement()->getFirstChild(); node;
         node = node->getNextSibling())
    {
        EXPECT_EQ(node->getNodeType(), type);
        text += node->getNodeValue();
    }
    return text;
}

TEST(ExportedMarkup, ComesBackOrIsRefusedInGeneratedNodes)
{
    std::mt19937 random(11);
    int refused = 0;
    for (int i = 0; i < 10'000; ++i)
    {
        const AnyNode node(random);
        const auto document = RootWith({node.Make()});
        if (!node.HasARightForm())
        {
            ++refused;
            ExpectRefused(*document);
            continue;
        }
        const std::string text = Exported(*document);
        ASSERT_EQ(OnlyText(*Parsed(text), node.type), node.text);
    }
    EXPECT_GT(refused, 300);
}

TEST(ExportedMarkup, IsReadAsOneTextFromGeneratedSections)
{
    std::mt19937 random(12);
    for (int i = 0; i < 3'000; ++i)
    {
        UniString written;
        for (size_t length = random() % 10; length > 0; --length)
            written += u"]]]>>a"[random() % 6];
        const auto document = RootWith({CDATASection(written)});
        const std::string text = Exported(*document);
        NuvXML::DOMReader reader(reinterpret_cast<const unsigned char*>(text.data()),
                                 static_cast<unsigned int>(text.size()));
        UniString read(u"untouched");
        ASSERT_EQ(reader.ReadXMLCDATAString(read), 0);
        ASSERT_EQ(read, written);
    }
}

} // namespace
