#include "NuvXMLUtils/NuvXMLDOMReader.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/Attributes.hpp"
#include "NuvXMLUtils/ChannelCursor.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMException.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

using xercesc_3_0::DOMNode;

constexpr char SourceFile[] = "NuvXMLDOMReader";

/// What ReadStartElement returns when there is nothing to read from.
constexpr int NoActualNode = 2;

std::u16string_view NameOf(const DOMNode* node) { return node->getNodeName(); }

/// The node itself or the next of its siblings that is an element, or null.
xercesc_3_0::DOMElement* ElementFrom(DOMNode* node)
{
    while (node && node->getNodeType() != DOMNode::ELEMENT_NODE)
        node = node->getNextSibling();
    return AsCursor(node);
}

Nuv::UniString TextWith(const char16_t* before, const char* name, const char16_t* after = u"")
{
    Nuv::UniString text(before);
    text += Nuv::UniString(name);
    text += after;
    return text;
}

bool IsCDATASection(const DOMNode* node)
{
    return node && node->getNodeType() == DOMNode::CDATA_SECTION_NODE;
}

/// Whether the text of the node goes on in the next one: "]]>" had to be divided between CDATA sections.
bool IsDividedBehind(const DOMNode& node)
{
    const DOMNode* next = node.getNextSibling();
    return IsCDATASection(&node) && IsCDATASection(next) &&
           std::u16string_view(node.getNodeValue()).ends_with(u"]]") && *next->getNodeValue() == u'>';
}

/// The value of the node, and of those behind it in which its text goes on.
Nuv::UniString TextFrom(const DOMNode& first)
{
    Nuv::UniString text(first.getNodeValue());
    for (const DOMNode* node = &first; IsDividedBehind(*node);)
    {
        node = node->getNextSibling();
        text += node->getNodeValue();
    }
    return text;
}

/// Exactly `size` bytes: the text, then zeros.
void FillBuffer(const Nuv::UniString& text, char* buffer, unsigned int size)
{
    const Nuv::String bytes = text.ToString();
    const size_t copied = std::min<size_t>(bytes.size(), size);
    std::fill_n(std::copy_n(bytes.data(), copied, buffer), size - copied, '\0');
}

/// @throws Nuv::OutOfMemoryException when that is why there is no document
xercesc_3_0::DOMDocument* CheckedForMemory(xercesc_3_0::DOMDocument* document,
                                           const ValidatingXMLParser& parser)
{
    if (!document && parser.RanOutOfMemory())
        throw Nuv::OutOfMemoryException();
    return document;
}

} // namespace

NUVXML_DEFINE_EXCEPTION(DOMReaderException)

/// Takes the reader back to where it was, unless it is to stay where it has got to.
class DOMReader::CursorScope
{
  public:
    explicit CursorScope(DOMReader& owner)
        : reader(owner)
        , savedNode(owner.actualNode)
        , savedType(owner.tokenType)
    {
    }
    CursorScope(const CursorScope&) = delete;
    CursorScope& operator=(const CursorScope&) = delete;
    ~CursorScope()
    {
        if (isKept)
            return;
        reader.actualNode = savedNode;
        reader.tokenType = savedType;
    }

    /// Whether the reader stands where it stood at first.
    bool IsBack() const { return reader.actualNode == savedNode && reader.tokenType == savedType; }

    /// The reader stays where it is.
    int Keep()
    {
        isKept = true;
        return Nuv::Success;
    }

    /// The reader goes to `node` and stays there.
    int KeepAt(DOMNode* node, Nuv::XMLTokenType type)
    {
        reader.actualNode = AsCursor(node);
        reader.tokenType = type;
        return Keep();
    }

  private:
    DOMReader& reader;
    xercesc_3_0::DOMElement* savedNode;
    Nuv::XMLTokenType savedType;
    bool isKept = false;
};

const DOMReader::TextForm DOMReader::ElementForm{&DOMReader::ReadXML,
                                                 u"Value should be number, but is not. In tag: "};
const DOMReader::TextForm DOMReader::AttributeForm{
    &DOMReader::ReadXMLAttr, u"Attribute should be number, but is not. AttributeName: "};

DOMReader::DOMReader(const unsigned char* buffer, unsigned int size)
    : DOMReader()
{
    ValidatingXMLParser parser;
    AdoptDocument(CheckedForMemory(parser.Parse(buffer, size, ValidatingXMLParser::LineInfoParser::Val_Auto,
                                                true, Nuv::UniString(u"DOMReaderCreationFromMemory"), nullptr,
                                                nullptr, nullptr),
                                   parser));
    if (!document)
        throw DOMReaderException("Parsing XML from memory failed.", SourceFile, __LINE__);
}

DOMReader::DOMReader(const IO::Location& file)
    : DOMReader()
{
    ValidatingXMLParser parser;
    AdoptDocument(CheckedForMemory(
        parser.Parse(file, ValidatingXMLParser::LineInfoParser::Val_Auto, true, nullptr, nullptr, nullptr),
        parser));
    if (!document)
        throw DOMReaderException(Nuv::UniString(u"Parsing XML file failed: ") + file.ToLogText(), SourceFile,
                                 __LINE__);
}

DOMReader::DOMReader(xercesc_3_0::DOMElement* element)
    : actualNode(element)
{
}

DOMReader::DOMReader(const DOMReader&) = default;

DOMReader& DOMReader::operator=(const DOMReader&) = default;

DOMReader::ErrorStatus DOMReader::GetErrorStatus() { return errorStatus; }

void DOMReader::ClearErrorStatus() { errorStatus = NoError; }

DOMReader::~DOMReader()
{
    if (document)
        document->release();
}

DOMReader* DOMReader::Create(const Nuv::UniString&, const Nuv::UniString&) { return new DOMReader; }

void DOMReader::SetXMLShemaVersion(const Nuv::ClassVersion& version)
{
    xmlShemaVersion = static_cast<unsigned short>(version.majorNumber | version.minorNumber << 8);
}

void DOMReader::GetXMLShemaVersion(Nuv::ClassVersion& version)
{
    version.majorNumber = static_cast<unsigned char>(xmlShemaVersion & 0xFF);
    version.minorNumber = static_cast<unsigned char>(xmlShemaVersion >> 8);
}

bool DOMReader::GetLocation(IO::Location& location)
{
    if (!CanRead())
        return false;
    DOMNode* node = ActualNode();
    while (node && node->getNodeType() != DOMNode::DOCUMENT_NODE)
        node = node->getParentNode();
    if (!node)
        return false;
    location.Set(static_cast<xercesc_3_0::DOMDocument*>(node)->getDocumentURI());
    return true;
}

Nuv::XMLTokenType DOMReader::GetTokenType() { return CanRead() ? tokenType : Nuv::XMLNoToken; }

Nuv::XMLTokenType DOMReader::GetNextTokenType()
{
    const CursorScope cursor(*this);
    return ReadToken() == Nuv::Success ? GetTokenType() : Nuv::XMLNoToken;
}

Nuv::XMLTokenType DOMReader::GetTokenTypeName(Nuv::UniString& name)
{
    const Nuv::XMLTokenType type = GetTokenType();
    if (type != Nuv::XMLNoToken)
        name = NameOf(ActualNode());
    return type;
}

Nuv::XMLTokenType DOMReader::GetNextTokenTypeName(Nuv::UniString& name)
{
    const CursorScope cursor(*this);
    if (ReadToken() == Nuv::Success)
        return GetTokenTypeName(name);
    name = Nuv::UniString();
    return Nuv::XMLNoToken;
}

Nuv::XMLTokenType DOMReader::GetNextStartTokenName(Nuv::UniString& name)
{
    const CursorScope cursor(*this);
    if (ReadToken(Nuv::XMLStartElement) == Nuv::Success)
        return GetTokenTypeName(name);
    name = Nuv::UniString();
    return Nuv::XMLNoToken;
}

int DOMReader::ReadStartElement(const char* name)
{
    if (!actualNode || errorStatus != NoError)
        return NoActualNode;
    CursorScope cursor(*this);
    const NameText text(name);
    const std::u16string_view wanted(text);
    xercesc_3_0::DOMElement* const first =
        tokenType == Nuv::XMLStartElement ? GetFirstElementChild() : GetNextCandidate();
    for (xercesc_3_0::DOMElement* candidate = first; candidate;)
    {
        if (!name || NameOf(candidate) == wanted)
            return cursor.KeepAt(candidate, Nuv::XMLStartElement);
        actualNode = candidate;
        candidate = GetNextCandidate();
        if (candidate == first)
            break;
    }
    errorStatus = NoError;
    return Nuv::Failure;
}

int DOMReader::ReadEndElement(const char* name)
{
    if (!CanRead() || !name)
        return Nuv::Failure;
    CursorScope cursor(*this);
    const NameText text(name);
    const std::u16string_view wanted(text);
    DOMNode* node = ActualNode();
    while (node && NameOf(node) != wanted)
        node = node->getParentNode();
    return node ? cursor.KeepAt(node, Nuv::XMLEndElement) : Nuv::Failure;
}

int DOMReader::ReadToken(unsigned int mask)
{
    int status = ReadToken();
    while (mask != 0 && status == Nuv::Success && (tokenType & mask) == 0)
        status = ReadToken();
    return status;
}

int DOMReader::ReadXML(const char* name, Nuv::Guid& value) { return ReadGuid(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, Nuv::UniString& value)
{
    if (!CanRead())
        return Nuv::Failure;
    CursorScope cursor(*this);
    if (const int status = ReadStartElement(name); status != Nuv::Success)
    {
        AddMessage(TextWith(u"Start element for ", name, u" tag not found"));
        return status;
    }
    Nuv::UniString text;
    try
    {
        const DOMNode* child = ActualNode()->getFirstChild();
        text = child ? TextFrom(*child) : Nuv::UniString();
    }
    catch (const xercesc_3_0::DOMException&)
    {
        return Nuv::Failure;
    }
    if (const int status = ReadEndElement(name); status != Nuv::Success)
        return status;
    value = std::move(text);
    return cursor.Keep();
}

int DOMReader::ReadXML(const char* name, char* buffer, unsigned int size)
{
    Nuv::UniString text;
    if (const int status = ReadXML(name, text); status != Nuv::Success)
        return status;
    if (text.GetLength() > size)
        return Nuv::Failure;
    FillBuffer(text, buffer, text.IsEmpty() ? std::min(size, 1u) : size);
    return Nuv::Success;
}

int DOMReader::ReadXML(const char* name, double& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, float& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, unsigned long long& value)
{
    return ReadNumber(ElementForm, name, value);
}

int DOMReader::ReadXML(const char* name, long long& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, unsigned long& value)
{
    return ReadNumber(ElementForm, name, value);
}

int DOMReader::ReadXML(const char* name, long& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, unsigned int& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, int& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, unsigned short& value)
{
    return ReadNumber(ElementForm, name, value);
}

int DOMReader::ReadXML(const char* name, short& value) { return ReadNumber(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, bool& value) { return ReadBool(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, char& value) { return ReadCharacter(ElementForm, name, value); }

int DOMReader::ReadXML(const char* name, unsigned char& value)
{
    return ReadCharacter(ElementForm, name, value);
}

int DOMReader::ReadXMLCDATAString(Nuv::UniString& value)
{
    if (!actualNode || errorStatus != NoError)
        return Nuv::Failure;
    const DOMNode* child = ActualNode()->getFirstChild();
    while (child && !IsCDATASection(child))
        child = child->getNextSibling();
    if (!child)
        return Nuv::Failure;
    try
    {
        value = TextFrom(*child);
        return Nuv::Success;
    }
    catch (const xercesc_3_0::DOMException&)
    {
        return Nuv::Failure;
    }
}

int DOMReader::ReadXMLVersionAttr(Nuv::ClassVersion& version)
{
    if (!actualNode || errorStatus != NoError)
        return Nuv::Failure;
    char majorNumber = 0;
    char minorNumber = 0;
    if (const int status = ReadXMLAttr("Mv", majorNumber); status != Nuv::Success)
        return status;
    if (const int status = ReadXMLAttr("Sv", minorNumber); status != Nuv::Success)
        return status;
    version.majorNumber = static_cast<unsigned char>(majorNumber);
    version.minorNumber = static_cast<unsigned char>(minorNumber);
    return Nuv::Success;
}

int DOMReader::ReadXMLAttr(const char* name, Nuv::Guid& value)
{
    return ReadGuid(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, Nuv::UniString& value)
{
    if (!CanRead())
        return Nuv::Failure;
    const bool isElement = ActualNode()->getNodeType() == DOMNode::ELEMENT_NODE;
    const xercesc_3_0::DOMAttr* attribute =
        isElement ? actualNode->getAttributeNode(NameText(name)) : nullptr;
    if (!attribute)
    {
        AddMessage(TextWith(u"Missing Attribute: ", name));
        return Nuv::Failure;
    }
    value = ValueOf(*attribute);
    return Nuv::Success;
}

int DOMReader::ReadXMLAttr(const char* name, unsigned long long& value)
{
    return ReadNumber(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, long long& value)
{
    return ReadNumber(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, unsigned int& value)
{
    return ReadNumber(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, int& value) { return ReadNumber(AttributeForm, name, value); }

int DOMReader::ReadXMLAttr(const char* name, char* buffer, unsigned int size)
{
    Nuv::UniString text;
    if (const int status = ReadXMLAttr(name, text); status != Nuv::Success)
        return status;
    FillBuffer(text, buffer, size);
    return Nuv::Success;
}

int DOMReader::ReadXMLAttr(const char* name, double& value) { return ReadNumber(AttributeForm, name, value); }

int DOMReader::ReadXMLAttr(const char* name, float& value) { return ReadNumber(AttributeForm, name, value); }

int DOMReader::ReadXMLAttr(const char* name, unsigned short& value)
{
    return ReadNumber(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, short& value) { return ReadNumber(AttributeForm, name, value); }

int DOMReader::ReadXMLAttr(const char* name, bool& value) { return ReadBool(AttributeForm, name, value); }

int DOMReader::ReadXMLAttr(const char* name, char& value)
{
    return ReadCharacter(AttributeForm, name, value);
}

int DOMReader::ReadXMLAttr(const char* name, unsigned char& value)
{
    return ReadCharacter(AttributeForm, name, value);
}

Nuv::PlatformSign DOMReader::GetChannelPlatform() { return platform; }

void DOMReader::SetChannelPlatform(Nuv::PlatformSign sign) { platform = sign; }

void DOMReader::AddMessage(const Nuv::UniString& text) { messages.push_back(text); }

int DOMReader::GetNumberOfMessage()
{
    messagesRead = true;
    return static_cast<int>(messages.size());
}

void DOMReader::GetMessage(int index, Nuv::UniString& text, int& code)
{
    messagesRead = true;
    if (static_cast<unsigned int>(index) >= messages.size())
        return;
    text = messages[static_cast<size_t>(index)];
    code = 0;
}

xercesc_3_0::DOMElement* DOMReader::GetActualNode() { return actualNode; }

xercesc_3_0::DOMElement* DOMReader::GetFirstElementChild()
{
    return ElementFrom(ActualNode()->getFirstChild());
}

xercesc_3_0::DOMElement* DOMReader::GetNextElementSibling()
{
    return ElementFrom(ActualNode()->getNextSibling());
}

int DOMReader::ReadToken()
{
    if (!CanRead())
        return Nuv::Failure;
    CursorScope cursor(*this);
    if (tokenType != Nuv::XMLEndElement)
    {
        DOMNode* child = GetFirstElementChild();
        return child ? cursor.KeepAt(child, Nuv::XMLStartElement)
                     : cursor.KeepAt(ActualNode(), Nuv::XMLEndElement);
    }
    if (DOMNode* sibling = GetNextElementSibling())
        return cursor.KeepAt(sibling, Nuv::XMLStartElement);
    if (DOMNode* parent = ActualNode()->getParentNode())
        return cursor.KeepAt(parent, Nuv::XMLEndElement);
    AddMessage(u"End of XML reached, token with the specified name was not found");
    return Nuv::Failure;
}

int DOMReader::ReadTokenWithName(const Nuv::UniString& name, Nuv::XMLTokenType type)
{
    CursorScope cursor(*this);
    int status = CanRead() ? Nuv::Success : Nuv::Failure;
    while (status == Nuv::Success)
    {
        if (tokenType == type && NameOf(ActualNode()) == name.View())
            return cursor.Keep();
        status = ReadToken();
        if (cursor.IsBack())
            status = Nuv::Failure;
    }
    AddMessage(Nuv::UniString(u"Token with specified name was not found: ") + name);
    return status;
}

/// The root element's start becomes the reader's place.
void DOMReader::AdoptDocument(xercesc_3_0::DOMDocument* parsed)
{
    document = parsed;
    if (document)
        actualNode = document->getDocumentElement();
}

/// Without an actual node, or in error, the error status tells that an operation was attempted.
bool DOMReader::CanRead()
{
    if (actualNode && errorStatus == NoError)
        return true;
    errorStatus = NothingToRead;
    return false;
}

xercesc_3_0::DOMNode* DOMReader::ActualNode() const { return actualNode; }

/// The next sibling of the actual node; behind the last, the first one, which may be the actual node itself.
xercesc_3_0::DOMElement* DOMReader::GetNextCandidate()
{
    if (xercesc_3_0::DOMElement* sibling = GetNextElementSibling())
        return sibling;
    const DOMNode* parent = ActualNode()->getParentNode();
    return parent ? ElementFrom(parent->getFirstChild()) : nullptr;
}

template <class T>
int DOMReader::ReadNumber(const TextForm& form, const char* name, T& value)
{
    Nuv::UniString text;
    if (const int status = (this->*form.read)(name, text); status != Nuv::Success)
        return status;
    if (Nuv::strtovalue(text.View(), value))
        return Nuv::Success;
    AddMessage(TextWith(form.notANumber, name));
    return Nuv::Failure;
}

template <class Character>
int DOMReader::ReadCharacter(const TextForm& form, const char* name, Character& value)
{
    int code = 0;
    const int status = ReadNumber(form, name, code);
    if (status == Nuv::Success)
        value = static_cast<Character>(code & 0xFF);
    return status;
}

int DOMReader::ReadBool(const TextForm& form, const char* name, bool& value)
{
    Nuv::UniString text;
    if (const int status = (this->*form.read)(name, text); status != Nuv::Success)
        return status;
    text.ToLower();
    const auto isOneOf = [word = text.View()](auto... words) { return ((word == words) || ...); };
    if (isOneOf(u"false", u"0", u"no"))
        value = false;
    else if (isOneOf(u"true", u"1", u"yes"))
        value = true;
    else
        return Nuv::Failure;
    return Nuv::Success;
}

int DOMReader::ReadGuid(const TextForm& form, const char* name, Nuv::Guid& value)
{
    Nuv::UniString text;
    if (const int status = (this->*form.read)(name, text); status != Nuv::Success)
        return status;
    return value.ConvertFromString(text);
}

} // namespace NuvXML
