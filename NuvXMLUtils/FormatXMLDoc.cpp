#include "NuvXMLUtils/FormatXMLDoc.hpp"

#include "NuvXMLUtils/Attributes.hpp"
#include "NuvXMLUtils/EncodingNames.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"
#include "NuvXMLUtils/XMLPrint.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace
{

using NuvXML::XMLPrint;
using NuvXML::XMLPrintTarget;
using xercesc_3_0::DOMNode;
using xercesc_3_0::XMLString;
using xercesc_3_0::XMLUni;

constexpr size_t TranscoderBlockSize = 16384;

// Choosing the encoding.

bool IsEmpty(const XMLCh* text) { return !text || !*text; }

struct Encoding
{
    const XMLCh* name;
    std::span<const unsigned char> byteOrderMark;
};

constexpr unsigned char MarkUTF8[] = {0xEF, 0xBB, 0xBF};
constexpr unsigned char MarkUTF16Little[] = {0xFF, 0xFE};
constexpr unsigned char MarkUTF16Big[] = {0xFE, 0xFF};

const XMLCh* NameOfUTF16Little()
{
    return xercesc_3_0::XMLRecognizer::nameForEncoding(xercesc_3_0::XMLRecognizer::UTF_16L,
                                                       xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
}

/// The encoding that the document of `node` declares, or null.
const XMLCh* DeclaredEncoding(const DOMNode& node)
{
    const xercesc_3_0::DOMDocument* const document = node.getNodeType() == DOMNode::DOCUMENT_NODE
                                                         ? static_cast<const xercesc_3_0::DOMDocument*>(&node)
                                                         : node.getOwnerDocument();
    return document ? document->getXmlEncoding() : nullptr;
}

const XMLCh* ChooseName(const XMLCh* given, const XMLCh* declared, bool preferGiven)
{
    const bool isDeclared = !IsEmpty(declared);
    if (given && (preferGiven || !isDeclared))
        return given;
    return isDeclared ? declared : XMLUni::fgUTF8EncodingString;
}

Encoding WithByteOrderMark(const XMLCh* name)
{
    const auto isOneOf = [name](std::initializer_list<const XMLCh*> names)
    {
        return std::any_of(names.begin(), names.end(),
                           [name](const XMLCh* other)
                           { return XMLString::compareIString(name, other) == 0; });
    };
    if (isOneOf({XMLUni::fgUTF8EncodingString, XMLUni::fgUTF8EncodingString2}))
        return {name, MarkUTF8};
    if (isOneOf({XMLUni::fgUTF16EncodingString, XMLUni::fgUTF16EncodingString2,
                 XMLUni::fgUTF16EncodingString3, XMLUni::fgUTF16EncodingString4}))
        return {NameOfUTF16Little(), MarkUTF16Little};
    if (isOneOf({XMLUni::fgUTF16BEncodingString, XMLUni::fgUTF16BEncodingString2}))
        return {name, MarkUTF16Big};
    if (isOneOf({XMLUni::fgUTF16LEncodingString, XMLUni::fgUTF16LEncodingString2}))
        return {name, MarkUTF16Little};
    return {name, {}};
}

// Printing.

/// Walks a tree and writes its nodes. The nodes that are open are kept on a stack of its own, so that the
/// depth of the tree is limited by memory only.
class NodePrinter
{
  public:
    explicit NodePrinter(XMLPrint& formatter)
        : print(formatter)
    {
    }

    void Print(const DOMNode& root)
    {
        for (const DOMNode* node = &root; node;)
        {
            const DOMNode* const child = Open(*node);
            if (child)
                parents.push_back(node);
            node = child ? child : NextAfter(*node);
        }
    }

  private:
    /// The node that follows `finished` in the walk, or null; closes the parents that end in between.
    const DOMNode* NextAfter(const DOMNode& finished)
    {
        const DOMNode* node = &finished;
        while (!parents.empty())
        {
            const DOMNode& parent = *parents.back();
            const bool isInDocument = parent.getNodeType() == DOMNode::DOCUMENT_NODE;
            if (isInDocument)
                print.Write(u'\n');
            if (const DOMNode* const sibling = node->getNextSibling())
                return sibling;
            if (!isInDocument)
                Close(parent);
            parents.pop_back();
            node = &parent;
        }
        return nullptr;
    }

    /// Writes the node, or the start of a node with children.
    /// @return the first child, or null when the node is finished
    const DOMNode* Open(const DOMNode& node)
    {
        switch (node.getNodeType())
        {
        case DOMNode::ELEMENT_NODE:
            return OpenElement(node);
        case DOMNode::DOCUMENT_NODE:
            return node.getFirstChild();
        case DOMNode::TEXT_NODE:
            WriteText(node, XMLPrint::TextEscapes);
            break;
        case DOMNode::CDATA_SECTION_NODE:
            print.Write(u"<![CDATA[");
            WriteText(node, XMLPrint::NoEscapes);
            print.Write(u"]]>");
            break;
        case DOMNode::COMMENT_NODE:
            print.Write(u"<!--");
            WriteText(node, XMLPrint::NoEscapes);
            print.Write(u"-->");
            break;
        case DOMNode::ENTITY_REFERENCE_NODE:
            WriteEntityReference(node);
            break;
        case DOMNode::PROCESSING_INSTRUCTION_NODE:
            WriteProcessingInstruction(static_cast<const xercesc_3_0::DOMProcessingInstruction&>(node));
            break;
        case DOMNode::ENTITY_NODE:
            WriteEntity(static_cast<const xercesc_3_0::DOMEntity&>(node));
            break;
        case DOMNode::DOCUMENT_TYPE_NODE:
            WriteDocumentType(static_cast<const xercesc_3_0::DOMDocumentType&>(node));
            break;
        default:
            break;
        }
        return nullptr;
    }

    const DOMNode* OpenElement(const DOMNode& element)
    {
        print.Write(XMLPrint::StartTagOpen);
        print.Write(element.getNodeName());
        if (const xercesc_3_0::DOMNamedNodeMap* const attributes = element.getAttributes())
        {
            NuvXML::FetchAttributes(*attributes);
            const XMLSize_t count = attributes->getLength();
            for (XMLSize_t i = 0; i < count; ++i)
                WriteAttribute(*attributes->item(i));
        }
        const DOMNode* const child = element.getFirstChild();
        print.Write(child ? XMLPrint::TagClose : XMLPrint::EmptyTagClose);
        return child;
    }

    void Close(const DOMNode& element)
    {
        print.Write(XMLPrint::EndTagOpen);
        print.Write(element.getNodeName());
        print.Write(XMLPrint::TagClose);
    }

    void WriteAttribute(const DOMNode& attribute)
    {
        print.Write(XMLPrint::AttributeSeparator);
        print.Write(attribute.getNodeName());
        print.Write(XMLPrint::ValueOpen);
        // The value of an attribute without children is empty.
        for (const DOMNode* child = attribute.getFirstChild(); child; child = child->getNextSibling())
        {
            if (child->getNodeType() == DOMNode::TEXT_NODE)
                WriteText(*child, XMLPrint::AttributeEscapes);
            else if (child->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE)
                WriteEntityReference(*child);
        }
        print.Write(XMLPrint::ValueClose);
    }

    void WriteText(const DOMNode& node, XMLPrint::EscapeMode mode)
    {
        const auto& text = static_cast<const xercesc_3_0::DOMCharacterData&>(node);
        print.Format(text.getData(), text.getLength(), mode);
    }

    void WriteEntityReference(const DOMNode& reference)
    {
        print.Write(u'&');
        print.Write(reference.getNodeName());
        print.Write(u';');
    }

    void WriteProcessingInstruction(const xercesc_3_0::DOMProcessingInstruction& instruction)
    {
        print.Write(u"<?");
        print.Write(instruction.getTarget());
        if (!IsEmpty(instruction.getData()))
        {
            print.Write(u' ');
            print.Write(instruction.getData());
        }
        print.Write(u"?>");
    }

    /// No blanks stand between the parts.
    void WriteEntity(const xercesc_3_0::DOMEntity& entity)
    {
        print.Write(u"<!ENTITY ");
        print.Write(entity.getNodeName());
        WriteQuoted(u"PUBLIC ", entity.getPublicId());
        WriteQuoted(u"SYSTEM ", entity.getSystemId());
        WriteQuoted(u"NDATA ", entity.getNotationName());
        print.Write(u">\n");
    }

    void WriteDocumentType(const xercesc_3_0::DOMDocumentType& type)
    {
        print.Write(u"<!DOCTYPE ");
        print.Write(type.getName());
        const bool isPublic = !IsEmpty(type.getPublicId());
        WriteQuoted(u" PUBLIC ", type.getPublicId());
        WriteQuoted(isPublic ? u" " : u" SYSTEM ", type.getSystemId());
        if (!IsEmpty(type.getInternalSubset()))
        {
            print.Write(u'[');
            print.Write(type.getInternalSubset());
            print.Write(u']');
        }
        print.Write(u'>');
    }

    /// Writes `prefix` and the quoted text, or nothing when the text is empty.
    void WriteQuoted(const char16_t* prefix, const XMLCh* text)
    {
        if (IsEmpty(text))
            return;
        print.Write(prefix);
        print.Write(u'"');
        print.Write(text);
        print.Write(u'"');
    }

    XMLPrint& print;
    std::vector<const DOMNode*> parents;
};

/// @return whether everything was written
bool Print(const DOMNode& node, Nuv::OChannel& channel, const Encoding& encoding)
{
    const auto transcoder = NuvXML::MakeDeclarableTranscoder(encoding.name, TranscoderBlockSize);
    if (!transcoder)
        return false;
    auto encoder = NuvXML::MakeStatelessTextEncoder(*transcoder);
    if (!encoder)
        return false;
    XMLPrintTarget print(std::move(encoder), channel);
    if (!print.IsReady())
        return false;
    print.WriteRaw(encoding.byteOrderMark.data(), encoding.byteOrderMark.size());
    const std::u16string declaration =
        std::u16string(u"<?xml version=\"1.0\" encoding=\"").append(NuvXML::NameToDeclare(*transcoder)) +
        u"\"?>";
    print.Write(declaration.c_str());
    if (encoding.byteOrderMark.empty() && !NuvXML::IsReadable(declaration, print.Unsent()))
        return false;
    print.Write(u'\n');
    NodePrinter(print).Print(node);
    print.Flush();
    return print.IsOk();
}

} // namespace

bool FormatXMLDoc(const DOMNode* node, Nuv::OChannel* channel, const XMLCh* encoding,
                  bool preferGivenEncoding)
{
    if (!node || !channel)
        return false;
    try
    {
        return NuvXML::WithOwnOutOfMemory(
            [&]
            {
                const XMLCh* const name = ChooseName(encoding, DeclaredEncoding(*node), preferGivenEncoding);
                return Print(*node, *channel, WithByteOrderMark(name));
            });
    }
    catch (const xercesc_3_0::XMLException&)
    {
        return false;
    }
    catch (const xercesc_3_0::DOMException&)
    {
        return false;
    }
}

bool FormatXMLDocUC(const DOMNode* node, Nuv::OChannel* channel)
{
    return FormatXMLDoc(node, channel, NameOfUTF16Little(), true);
}
