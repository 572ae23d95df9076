#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"

#include "InputOutput/ErrorCodes.hpp"
#include "InputOutput/FileSystem.hpp"
#include "InputOutput/Folder.hpp"
#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/ChannelCursor.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"
#include "NuvXMLUtils/ReplaceFile.hpp"

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSException.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/dom/DOMLSSerializerFilter.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLChar.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace NuvXML
{
namespace
{

using xercesc_3_0::DOMLSException;

constexpr char SourceFile[] = "NuvXMLDOMBuilder";

constexpr XMLCh EncodingName[] = u"UTF-8";

constexpr XMLCh LineFeed[] = u"\n";

/// Null when Xerces is not running.
xercesc_3_0::DOMDocument* CreateDocument()
{
    auto* implementation = xercesc_3_0::DOMImplementation::getImplementation();
    if (!implementation)
        return nullptr;
    return WithOwnOutOfMemory(
        [&]
        {
            return implementation->createDocument(nullptr, nullptr, nullptr,
                                                  xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
        });
}

xercesc_3_0::DOMDocument* CreateDocumentOrThrow(const char* message)
{
    auto* document = CreateDocument();
    if (!document)
        throw DOMBuilderException(message, SourceFile, __LINE__);
    return document;
}

IO::Location ScratchLocation()
{
    IO::Location location;
    IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, location);
    IO::Name name;
    IO::Folder(location).GenerateUnusedName(u"Scratch_", name);
    name.AppendExtension(u"xml");
    location.AppendToLocal(name);
    return location;
}

/// The empty text when the conversion fails.
template <class Integer>
Nuv::UniString TextOf(Integer value)
{
    Nuv::UniChar buffer[256];
    buffer[0] = u'\0';
    Nuv::valuetostr(value, buffer, std::size(buffer));
    return Nuv::UniString(buffer);
}

Nuv::UniString TextOf(unsigned char value) { return TextOf(static_cast<unsigned int>(value)); }

/// The signed code of the character, whether `char` is signed or not.
Nuv::UniString TextOf(char value) { return TextOf(static_cast<int>(static_cast<signed char>(value))); }

/// CR LF and CR become LF.
std::u16string WithLineFeeds(std::u16string_view text)
{
    std::u16string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        const bool isCR = text[i] == u'\r';
        result += isCR ? u'\n' : text[i];
        if (isCR && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
    }
    return result;
}

bool IsXMLText(std::u16string_view text)
{
    using xercesc_3_0::XMLChar1_0;
    for (size_t i = 0; i < text.size(); ++i)
    {
        if (XMLChar1_0::isXMLChar(text[i]))
            continue;
        if (i + 1 == text.size() || !XMLChar1_0::isXMLChar(text[i], text[i + 1]))
            return false;
        ++i;
    }
    return true;
}

/// Whether a comment can hold the text.
bool IsCommentText(std::u16string_view text)
{
    return text.find(u"--") == text.npos && !text.ends_with(u'-');
}

/// Whether an instruction can have the target and the data.
bool IsInstruction(std::u16string_view target, std::u16string_view data)
{
    return !Nuv::EqualIgnoringCase(target, u"xml") && data.find(u"?>") == data.npos;
}

/// Lets everything through but the nodes that the serializer gets wrong. It writes comments and instructions
/// without looking at the markup in them. In CDATA sections it drops "]]>" and does not look at the
/// characters: it makes text that does not parse, or never returns.
class NodeGuard : public xercesc_3_0::DOMLSSerializerFilter
{
  public:
    /// @param serializerTarget where the serializer writes to; it keeps nothing back
    explicit NodeGuard(xercesc_3_0::XMLFormatTarget& serializerTarget)
        : target(serializerTarget)
    {
    }

    FilterAction acceptNode(const xercesc_3_0::DOMNode* node) const override
    {
        const std::u16string_view text = node->getNodeValue();
        switch (node->getNodeType())
        {
        case xercesc_3_0::DOMNode::CDATA_SECTION_NODE:
            Demand(IsXMLText(text));
            WriteCDATASections(text);
            return FILTER_REJECT; // it is written
        case xercesc_3_0::DOMNode::COMMENT_NODE:
            Demand(IsCommentText(text));
            return FILTER_ACCEPT;
        default:
            Demand(IsInstruction(node->getNodeName(), text));
            return FILTER_ACCEPT;
        }
    }

    ShowType getWhatToShow() const override
    {
        using xercesc_3_0::DOMNodeFilter;
        return DOMNodeFilter::SHOW_CDATA_SECTION | DOMNodeFilter::SHOW_COMMENT |
               DOMNodeFilter::SHOW_PROCESSING_INSTRUCTION;
    }

  private:
    /// @throws DOMLSException when there is no right form
    static void Demand(bool isWritable)
    {
        if (!isWritable)
            throw DOMLSException(DOMLSException::SERIALIZE_ERR, 0,
                                 xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
    }

    /// One section, or several, divided between "]]" and ">".
    void WriteCDATASections(std::u16string_view text) const
    {
        const std::string bytes = Nuv::UniString(text).ToUTF8();
        std::string_view rest = bytes;
        Write("<![CDATA[");
        for (size_t end = 0; (end = rest.find("]]>")) != rest.npos; rest.remove_prefix(end + 2))
        {
            Write(rest.substr(0, end + 2));
            Write("]]><![CDATA[");
        }
        Write(rest);
        Write("]]>");
    }

    void Write(std::string_view bytes) const
    {
        target.writeChars(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), nullptr);
    }

    xercesc_3_0::XMLFormatTarget& target;
};

void Serialise(const xercesc_3_0::DOMDocument& document, xercesc_3_0::XMLFormatTarget& target)
{
    auto* memoryManager = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    auto* implementation = xercesc_3_0::DOMImplementation::getImplementation();
    const XercesPtr<xercesc_3_0::DOMLSOutput> output(implementation->createLSOutput(memoryManager));
    output->setEncoding(EncodingName);
    output->setByteStream(&target);
    NodeGuard guard(target);
    const XercesPtr<xercesc_3_0::DOMLSSerializer> serializer(
        implementation->createLSSerializer(memoryManager));
    serializer->setFilter(&guard);
    if (!serializer->write(&document, output.get()))
        throw DOMLSException(DOMLSException::SERIALIZE_ERR, 0, memoryManager);
}

} // namespace

NUVXML_DEFINE_EXCEPTION(DOMBuilderException)

DOMBuilder::DOMBuilder()
    : location(ScratchLocation())
    , document(CreateDocumentOrThrow("Xerces is not running."))
    , ownsDocument(true)
    , writeOnDestroy(false)
{
}

DOMBuilder::DOMBuilder(const IO::Location& file)
    : location(file)
    , document(CreateDocumentOrThrow("Creating document failed."))
    , actualNode(document->getDocumentElement())
    , ownsDocument(true)
    , writeOnDestroy(true)
{
}

DOMBuilder::DOMBuilder(xercesc_3_0::DOMDocument* builtDocument, xercesc_3_0::DOMElement* element,
                       OwnershipType ownership, int tabs)
    : document(builtDocument)
    , actualNode(element)
    , depth(tabs)
    , ownsDocument(ownership == TakeDocumentOver)
    , writeOnDestroy(ownership == TakeDocumentOver)
{
    if (ownsDocument && document->getDocumentURI())
        location.Set(document->getDocumentURI());
}

DOMBuilder::~DOMBuilder()
{
    try
    {
        if (writeOnDestroy && !isSaved && !isDiscarded)
            WriteFile();
    }
    catch (...)
    {
        // A destructor has nobody to tell.
    }
    if (ownsDocument)
        document->release();
}

DOMBuilder* DOMBuilder::Create(const Nuv::UniString&, const Nuv::UniString&) { return new DOMBuilder; }

void DOMBuilder::SetXMLShemaVersion(const Nuv::ClassVersion& version) { schemaVersion = version; }

void DOMBuilder::GetXMLShemaVersion(Nuv::ClassVersion& version) { version = schemaVersion; }

bool DOMBuilder::GetLocation(IO::Location& out)
{
    out = location;
    return !location.IsEmpty();
}

int DOMBuilder::WriteStartDocument() { return Nuv::Success; }

int DOMBuilder::WriteEndDocument()
{
    if (autoTabs)
        Append(document, CreateText(LineFeed));
    return Nuv::Success;
}

int DOMBuilder::WriteStartElement(const char* name)
{
    if (IsRootClosed())
        return Nuv::Failure;
    xercesc_3_0::DOMElement* element = CreateElement(name);
    if (actualNode)
    {
        WriteNewLineAndTabs(static_cast<unsigned int>(depth));
        Append(ActualNode(), element);
    }
    else
    {
        xercesc_3_0::DOMText* lineFeed = autoTabs ? CreateText(LineFeed) : nullptr;
        Append(document, element);
        if (lineFeed)
            document->insertBefore(lineFeed, element);
    }
    ++depth;
    elementIsEmpty = true;
    actualNode = element;
    return Nuv::Success;
}

int DOMBuilder::WriteEndElement()
{
    if (!actualNode || IsRootClosed())
        return Nuv::Failure;
    const int newDepth = depth > 0 ? depth - 1 : depth;
    if (!elementIsEmpty)
        WriteNewLineAndTabs(static_cast<unsigned int>(newDepth));
    depth = newDepth;
    elementIsEmpty = false;
    actualNode = AsCursor(ActualNode()->getParentNode());
    return Nuv::Success;
}

int DOMBuilder::WriteXML(const char* name, const Nuv::Guid& value)
{
    return WriteXML(name, value.ToUniString());
}

int DOMBuilder::WriteXML(const char* name, const Nuv::UniString& value)
{
    if (!actualNode)
        return Nuv::Failure;
    xercesc_3_0::DOMElement* element = CreateElement(name);
    const XMLCh* text = value.ToUTF16();
    std::u16string normalised;
    if (replaceCR && value.View().find(u'\r') != std::u16string_view::npos)
    {
        normalised = WithLineFeeds(text);
        text = normalised.c_str();
    }
    xercesc_3_0::DOMText* content = *text ? CreateText(text) : nullptr;
    AppendToOpenElement(element);
    if (content)
        Append(element, content);
    return Nuv::Success;
}

int DOMBuilder::WriteXML(const char* name, unsigned long long value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, long long value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, unsigned long value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, long value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, unsigned int value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, int value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, unsigned short value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, short value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, unsigned char value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXML(const char* name, char value) { return WriteXML(name, TextOf(value)); }

int DOMBuilder::WriteXMLTextNode(const Nuv::UniString& text)
{
    if (!actualNode)
        return Nuv::Failure;
    AppendToOpenElement(CreateText(text.ToUTF16()));
    return Nuv::Success;
}

int DOMBuilder::WriteXMLCDATAString(const Nuv::UniString& text)
{
    if (!actualNode)
        return Nuv::Failure;
    AppendToOpenElement(CreateCDATASection(text.ToUTF16()));
    return Nuv::Success;
}

int DOMBuilder::WriteXMLVersionAttr(const Nuv::ClassVersion& version)
{
    const int status = WriteXMLAttr("Mv", version.majorNumber);
    return status != Nuv::Success ? status : WriteXMLAttr("Sv", version.minorNumber);
}

int DOMBuilder::WriteXMLAttr(const char* name, const Nuv::Guid& value)
{
    return WriteXMLAttr(name, value.ToUniString());
}

int DOMBuilder::WriteXMLAttr(const char* name, const Nuv::UniString& value)
{
    if (!HasOpenElement())
        return Nuv::Failure;
    try
    {
        WithOwnOutOfMemory([&] { actualNode->setAttribute(NameText(name), value.ToUTF16()); });
    }
    catch (const std::bad_alloc&)
    {
        isSaved = false; // there may be an empty attribute
        throw;
    }
    isSaved = false;
    return Nuv::Success;
}

int DOMBuilder::WriteXMLAttr(const char* name, unsigned long long value)
{
    return WriteXMLAttr(name, TextOf(value));
}

int DOMBuilder::WriteXMLAttr(const char* name, long long value) { return WriteXMLAttr(name, TextOf(value)); }

int DOMBuilder::WriteXMLAttr(const char* name, unsigned int value)
{
    return WriteXMLAttr(name, TextOf(value));
}

int DOMBuilder::WriteXMLAttr(const char* name, int value) { return WriteXMLAttr(name, TextOf(value)); }

int DOMBuilder::WriteXMLAttr(const char* name, unsigned short value)
{
    return WriteXMLAttr(name, TextOf(value));
}

int DOMBuilder::WriteXMLAttr(const char* name, short value) { return WriteXMLAttr(name, TextOf(value)); }

int DOMBuilder::WriteXMLAttr(const char* name, unsigned char value)
{
    return WriteXMLAttr(name, TextOf(value));
}

int DOMBuilder::WriteXMLAttr(const char* name, char value) { return WriteXMLAttr(name, TextOf(value)); }

void DOMBuilder::AddMessage(const Nuv::UniString& text)
{
    messages.push_back({text, static_cast<int>(messageLine)});
}

int DOMBuilder::GetNumberOfMessage() { return static_cast<int>(messages.size()); }

void DOMBuilder::GetMessage(int index, Nuv::UniString& text, int& line)
{
    if (index < 0 || index >= GetNumberOfMessage())
        return;
    const Message& message = messages[static_cast<size_t>(index)];
    text = message.text;
    line = message.line;
}

DOMBuilder::ErrorStatus DOMBuilder::GetErrorStatus() { return NoError; }

void DOMBuilder::ClearErrorStatus() {}

void DOMBuilder::SetAutoTabsHint(bool on) { autoTabs = on; }

void DOMBuilder::SetReplaceCR(bool on) { replaceCR = on; }

bool DOMBuilder::GetReplaceCR() { return replaceCR; }

Nuv::UniString DOMBuilder::Export()
{
    Nuv::UniString text;
    ExportInternal([&](const char* bytes, size_t length)
                   { text = Nuv::UniString::FromUTF8(std::string_view(bytes, length)); });
    return text;
}

void DOMBuilder::Export(Nuv::OChannel& channel)
{
    ExportInternal([&](const char* bytes, size_t length) { channel.Write(bytes, length); });
}

xercesc_3_0::DOMDocument* DOMBuilder::GetDOMDocument() { return document; }

xercesc_3_0::DOMElement* DOMBuilder::GetActualNode() { return actualNode; }

void DOMBuilder::WriteNewLineAndTabs(unsigned int tabs)
{
    if (!autoTabs)
        return;
    // A depth below zero counts as zero.
    const size_t count = tabs > static_cast<unsigned int>(std::numeric_limits<int>::max()) ? 0 : tabs;
    XMLCh shortText[64];
    std::u16string longText;
    XMLCh* text = shortText;
    if (count + 2 > std::size(shortText))
    {
        longText.resize(count + 1);
        text = longText.data();
    }
    text[0] = u'\n';
    std::fill_n(text + 1, count, u'\t');
    text[count + 1] = u'\0';
    Append(ActualNode(), CreateText(text));
}

xercesc_3_0::DOMNode* DOMBuilder::ActualNode() const { return actualNode; }

bool DOMBuilder::HasOpenElement() const
{
    return actualNode && ActualNode()->getNodeType() == xercesc_3_0::DOMNode::ELEMENT_NODE;
}

bool DOMBuilder::IsRootClosed() const
{
    return actualNode && ActualNode()->getNodeType() == xercesc_3_0::DOMNode::DOCUMENT_NODE;
}

xercesc_3_0::DOMElement* DOMBuilder::CreateElement(const char* name)
{
    return WithOwnOutOfMemory([&] { return document->createElement(NameText(name)); });
}

xercesc_3_0::DOMText* DOMBuilder::CreateText(const XMLCh* text)
{
    return WithOwnOutOfMemory([&] { return document->createTextNode(text); });
}

xercesc_3_0::DOMCDATASection* DOMBuilder::CreateCDATASection(const XMLCh* text)
{
    return WithOwnOutOfMemory([&] { return document->createCDATASection(text); });
}

void DOMBuilder::Append(xercesc_3_0::DOMNode* parent, xercesc_3_0::DOMNode* child)
{
    WithOwnOutOfMemory([&] { parent->appendChild(child); });
    isSaved = false;
}

/// The node begins a new line.
void DOMBuilder::AppendToOpenElement(xercesc_3_0::DOMNode* node)
{
    WriteNewLineAndTabs(static_cast<unsigned int>(depth));
    elementIsEmpty = false;
    Append(ActualNode(), node);
}

template <class Sink>
void DOMBuilder::ExportInternal(Sink sink)
{
    WithOwnOutOfMemory(
        [&]
        {
            xercesc_3_0::MemBufFormatTarget target(1023, xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
            if (document)
                Serialise(*document, target);
            sink(reinterpret_cast<const char*>(target.getRawBuffer()), static_cast<size_t>(target.getLen()));
        });
}

/// Serialises before it touches the file system.
/// @return 0 or a code of ErrorCodes.hpp
int DOMBuilder::WriteFile()
{
    int code = IO::NoError;
    ExportInternal([&](const char* bytes, size_t length)
                   { code = ReplaceFile(location, std::string_view(bytes, length)); });
    return code;
}

/// @return why the document is not saved; empty when it is
Nuv::UniString DOMBuilder::Save()
{
    if (isDiscarded)
        return u"The document has been discarded.";
    if (!writeOnDestroy || location.IsEmpty())
        return u"The channel has no file of its own.";
    if (const int code = WriteFile(); code != IO::NoError)
        return Nuv::UniString(u"Writing XML file failed: ") + location.ToLogText() + u": " +
               TextOfWritingError(code);
    isSaved = true;
    return {};
}

void DOMBuilder::Discard() { isDiscarded = true; }

} // namespace NuvXML
