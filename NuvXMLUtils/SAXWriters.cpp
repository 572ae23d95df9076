#include "NuvXMLUtils/SAXWriters.hpp"

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/Surrogates.hpp"

#include <xercesc/internal/VecAttributesImpl.hpp>
#include <xercesc/sax/AttributeList.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUTF16Transcoder.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

using xercesc_3_0::XMLFormatter;

// Text through a formatter.

/// Where the next half of a surrogate pair stands whose other half is missing, or `end`.
const XMLCh* FindHalf(const XMLCh* text, const XMLCh* end)
{
    for (; text != end; ++text)
        if (IsSurrogate(*text))
        {
            if (!IsPairAt(text, end))
                return text;
            ++text;
        }
    return end;
}

void FormatHalf(XMLFormatter& formatter, XMLCh half)
{
    if (dynamic_cast<const xercesc_3_0::XMLUTF16Transcoder*>(formatter.getTranscoder()))
    {
        formatter.formatBuf(&half, 1, XMLFormatter::NoEscapes);
        return;
    }
    constexpr XMLSize_t MaxDigits = 4;
    XMLCh digits[MaxDigits + 1];
    xercesc_3_0::XMLString::binToText(static_cast<unsigned>(half), digits, MaxDigits, 16,
                                      xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
    std::u16string reference = u"&#x";
    reference.append(digits).append(u";");
    formatter.formatBuf(reference.c_str(), reference.length(), XMLFormatter::NoEscapes);
}

void Format(XMLFormatter& formatter, const XMLCh* text, XMLSize_t length,
            XMLFormatter::EscapeFlags escapes = XMLFormatter::DefaultEscape)
{
    const XMLCh* const end = text + length;
    while (text != end)
    {
        const XMLCh* const half = FindHalf(text, end);
        if (half != text)
            formatter.formatBuf(text, static_cast<XMLSize_t>(half - text), escapes,
                                XMLFormatter::DefaultUnRep);
        if (half == end)
            return;
        FormatHalf(formatter, *half);
        text = half + 1;
    }
}

void Format(XMLFormatter& formatter, const XMLCh* text)
{
    if (text)
        Format(formatter, text, std::char_traits<XMLCh>::length(text));
}

// Half a pair between two calls of `characters`.

/// Writes the half that waits for its other one in vain.
void FormatHeld(XMLFormatter& formatter, XMLCh& heldHalf)
{
    if (heldHalf != 0)
        FormatHalf(formatter, std::exchange(heldHalf, XMLCh(0)));
}

void FormatCharacters(XMLFormatter& formatter, XMLCh& heldHalf, const XMLCh* chars, XMLSize_t length)
{
    if (length == 0)
        return;
    if (heldHalf != 0 && IsTrailSurrogate(*chars))
    {
        const XMLCh pair[] = {std::exchange(heldHalf, XMLCh(0)), *chars, 0};
        formatter.formatBuf(pair, 2, XMLFormatter::CharEscapes, XMLFormatter::DefaultUnRep);
        ++chars;
        --length;
    }
    FormatHeld(formatter, heldHalf);
    if (length != 0 && IsLeadSurrogate(chars[length - 1]))
        heldHalf = chars[--length];
    Format(formatter, chars, length, XMLFormatter::CharEscapes);
}

// Markup.

void FormatDeclaration(XMLFormatter& formatter)
{
    formatter << u"<?xml version=\"1.0\" encoding=\"" << formatter.getEncodingName() << u"\"?>\n";
}

template <class WriteName>
void FormatAttribute(XMLFormatter& formatter, WriteName writeName, const XMLCh* value)
{
    formatter << XMLFormatter::NoEscapes << u" ";
    writeName();
    formatter << u"=\"" << XMLFormatter::AttrEscapes;
    Format(formatter, value);
    formatter << XMLFormatter::NoEscapes << u"\"";
}

void FormatInstruction(XMLFormatter& formatter, const XMLCh* target, const XMLCh* data)
{
    formatter << XMLFormatter::NoEscapes << u"<?";
    Format(formatter, target);
    if (data)
    {
        formatter << u" ";
        Format(formatter, data);
    }
    formatter << XMLFormatter::NoEscapes << u"?>";
}

} // namespace

// SAXWriter

SAXWriter::SAXWriter(XMLFormatter& target)
    : formatter(&target)
{
    FormatDeclaration(*formatter);
}

SAXWriter::~SAXWriter() = default;

void SAXWriter::characters(const XMLCh* chars, XMLSize_t length)
{
    FormatCharacters(*formatter, heldHalf, chars, length);
}

void SAXWriter::endDocument()
{
    FormatHeld(*formatter, heldHalf);
    locator = nullptr;
}

void SAXWriter::endElement(const XMLCh* name)
{
    FormatHeld(*formatter, heldHalf);
    *formatter << XMLFormatter::NoEscapes << u"</";
    Format(*formatter, name);
    *formatter << u">";
}

void SAXWriter::ignorableWhitespace(const XMLCh* chars, XMLSize_t length)
{
    FormatHeld(*formatter, heldHalf);
    Format(*formatter, chars, length, XMLFormatter::NoEscapes);
}

void SAXWriter::processingInstruction(const XMLCh* target, const XMLCh* data)
{
    FormatHeld(*formatter, heldHalf);
    FormatInstruction(*formatter, target, data);
}

void SAXWriter::resetDocument() {}

void SAXWriter::setDocumentLocator(const xercesc_3_0::Locator* newLocator) { locator = newLocator; }

void SAXWriter::startDocument() {}

void SAXWriter::startElement(const XMLCh* name, xercesc_3_0::AttributeList& attributes)
{
    FormatHeld(*formatter, heldHalf);
    *formatter << XMLFormatter::NoEscapes << u"<";
    Format(*formatter, name);
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i)
        FormatAttribute(
            *formatter, [&] { Format(*formatter, attributes.getName(i)); }, attributes.getValue(i));
    *formatter << u">";
}

// SAX2Writer

SAX2Writer::SAX2Writer(XMLFormatter& target, bool expand)
    : expandNamespaces(expand)
    , formatter(&target)
{
    FormatDeclaration(*formatter);
}

SAX2Writer::~SAX2Writer() = default;

void SAX2Writer::WriteName(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname)
{
    if (!expandNamespaces)
        return Format(*formatter, qname);
    if (uri && *uri)
    {
        Format(*formatter, uri);
        *formatter << u":";
    }
    Format(*formatter, localname);
}

void SAX2Writer::characters(const XMLCh* chars, XMLSize_t length)
{
    FormatCharacters(*formatter, heldHalf, chars, length);
}

void SAX2Writer::endDocument()
{
    FormatHeld(*formatter, heldHalf);
    locator = nullptr;
}

void SAX2Writer::endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname)
{
    FormatHeld(*formatter, heldHalf);
    *formatter << XMLFormatter::NoEscapes << u"</";
    WriteName(uri, localname, qname);
    *formatter << u">";
}

void SAX2Writer::ignorableWhitespace(const XMLCh* chars, XMLSize_t length)
{
    FormatHeld(*formatter, heldHalf);
    Format(*formatter, chars, length, XMLFormatter::NoEscapes);
}

void SAX2Writer::processingInstruction(const XMLCh* target, const XMLCh* data)
{
    FormatHeld(*formatter, heldHalf);
    FormatInstruction(*formatter, target, data);
}

void SAX2Writer::setDocumentLocator(const xercesc_3_0::Locator* newLocator) { locator = newLocator; }

void SAX2Writer::startDocument() {}

void SAX2Writer::startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                              const xercesc_3_0::Attributes& attributes)
{
    FormatHeld(*formatter, heldHalf);
    *formatter << XMLFormatter::NoEscapes << u"<";
    WriteName(uri, localname, qname);
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i)
        FormatAttribute(
            *formatter,
            [&] { WriteName(attributes.getURI(i), attributes.getLocalName(i), attributes.getQName(i)); },
            attributes.getValue(i));
    *formatter << u">";
}

void SAX2Writer::startPrefixMapping(const XMLCh*, const XMLCh*) {}

void SAX2Writer::endPrefixMapping(const XMLCh*) {}

void SAX2Writer::skippedEntity(const XMLCh*) {}

// NuvSAX2Writer::Attrs

NuvSAX2Writer::Attrs::Attrs()
{
    constexpr size_t InitialCapacity = 4;
    attributes.reserve(InitialCapacity);
}

NuvSAX2Writer::Attrs::~Attrs() = default;

void NuvSAX2Writer::Attrs::Add(const Nuv::UniString& name, const Nuv::UniString& value)
{
    constexpr unsigned NoURI = 0;
    xercesc_3_0::MemoryManager* const manager = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
    attributes.push_back(std::unique_ptr<xercesc_3_0::XMLAttr>(new (manager) xercesc_3_0::XMLAttr(
        NoURI, name.ToUTF16(), xercesc_3_0::XMLUni::fgZeroLenString, value.ToUTF16(),
        xercesc_3_0::XMLAttDef::CData, true, manager, nullptr, false)));
}

XMLSize_t NuvSAX2Writer::Attrs::getLength() const { return attributes.size(); }

const XMLCh* NuvSAX2Writer::Attrs::getURI(XMLSize_t) const { return xercesc_3_0::XMLUni::fgZeroLenString; }

const XMLCh* NuvSAX2Writer::Attrs::getLocalName(XMLSize_t index) const
{
    return attributes[index]->getName();
}

const XMLCh* NuvSAX2Writer::Attrs::getQName(XMLSize_t index) const { return attributes[index]->getName(); }

const XMLCh* NuvSAX2Writer::Attrs::getType(XMLSize_t index) const
{
    return xercesc_3_0::XMLAttDef::getAttTypeString(attributes[index]->getType());
}

const XMLCh* NuvSAX2Writer::Attrs::getValue(XMLSize_t index) const { return attributes[index]->getValue(); }

bool NuvSAX2Writer::Attrs::getIndex(const XMLCh*, const XMLCh*, XMLSize_t& index) const
{
    index = ~XMLSize_t(0);
    return false;
}

int NuvSAX2Writer::Attrs::getIndex(const XMLCh*, const XMLCh*) const { return -1; }

bool NuvSAX2Writer::Attrs::getIndex(const XMLCh*, XMLSize_t& index) const
{
    index = ~XMLSize_t(0);
    return false;
}

int NuvSAX2Writer::Attrs::getIndex(const XMLCh*) const { return -1; }

const XMLCh* NuvSAX2Writer::Attrs::getType(const XMLCh*, const XMLCh*) const { return nullptr; }

const XMLCh* NuvSAX2Writer::Attrs::getType(const XMLCh*) const { return nullptr; }

const XMLCh* NuvSAX2Writer::Attrs::getValue(const XMLCh*, const XMLCh*) const { return nullptr; }

const XMLCh* NuvSAX2Writer::Attrs::getValue(const XMLCh*) const { return nullptr; }

// NuvSAX2Writer

namespace
{

template <class Target, class Channel>
std::unique_ptr<xercesc_3_0::XMLFormatTarget> MakeTarget(Channel& channel)
{
    return std::unique_ptr<xercesc_3_0::XMLFormatTarget>(new (xercesc_3_0::XMLPlatformUtils::fgMemoryManager)
                                                             Target(channel));
}

} // namespace

NuvSAX2Writer::NuvSAX2Writer(Nuv::OChannel& channel)
    : NuvSAX2Writer(MakeTarget<OChannelXMLFormatTarget>(channel))
{
}

NuvSAX2Writer::NuvSAX2Writer(Nuv::OBinaryChannel& channel)
    : NuvSAX2Writer(MakeTarget<OBinaryChannelXMLFormatTarget>(channel))
{
}

NuvSAX2Writer::NuvSAX2Writer(std::unique_ptr<xercesc_3_0::XMLFormatTarget> formatTarget)
    : target(std::move(formatTarget))
    , formatter(xercesc_3_0::XMLUni::fgUTF8EncodingString, target.get(), XMLFormatter::NoEscapes,
                XMLFormatter::UnRep_CharRef, xercesc_3_0::XMLPlatformUtils::fgMemoryManager)
    , writer(formatter, false)
{
}

NuvSAX2Writer::~NuvSAX2Writer() = default;

void NuvSAX2Writer::StartDocument() { startDocument(); }

void NuvSAX2Writer::EndDocument() { endDocument(); }

void NuvSAX2Writer::StartElement(const Nuv::UniString& name)
{
    StartElement(name, xercesc_3_0::VecAttributesImpl());
}

void NuvSAX2Writer::StartElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes)
{
    if (lastWasStart)
        Characters(u"\n");
    writeTabs();
    startElement(xercesc_3_0::XMLUni::fgZeroLenString, name.ToUTF16(), name.ToUTF16(), attributes);
    ++depth;
    lastWasStart = true;
}

void NuvSAX2Writer::EndElement(const Nuv::UniString& name)
{
    --depth;
    if (!lastWasStart)
        writeTabs();
    endElement(xercesc_3_0::XMLUni::fgZeroLenString, name.ToUTF16(), name.ToUTF16());
    lastWasStart = false;
    Characters(u"\n");
}

void NuvSAX2Writer::Characters(const Nuv::UniString& text) { characters(text.ToUTF16(), text.GetLength()); }

void NuvSAX2Writer::SimpleElement(const Nuv::UniString& name, const Nuv::UniString& text)
{
    StartElement(name);
    Characters(text);
    EndElement(name);
}

void NuvSAX2Writer::SimpleElement(const Nuv::UniString& name, const xercesc_3_0::Attributes& attributes,
                                  const Nuv::UniString& text)
{
    StartElement(name, attributes);
    Characters(text);
    EndElement(name);
}

void NuvSAX2Writer::characters(const XMLCh* chars, XMLSize_t length) { writer.characters(chars, length); }

void NuvSAX2Writer::endDocument() { writer.endDocument(); }

void NuvSAX2Writer::endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname)
{
    writer.endElement(uri, localname, qname);
}

void NuvSAX2Writer::ignorableWhitespace(const XMLCh* chars, XMLSize_t length)
{
    writer.ignorableWhitespace(chars, length);
}

void NuvSAX2Writer::processingInstruction(const XMLCh* instructionTarget, const XMLCh* data)
{
    writer.processingInstruction(instructionTarget, data);
}

void NuvSAX2Writer::setDocumentLocator(const xercesc_3_0::Locator* locator)
{
    writer.setDocumentLocator(locator);
}

void NuvSAX2Writer::startDocument() { writer.startDocument(); }

void NuvSAX2Writer::startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                                 const xercesc_3_0::Attributes& attributes)
{
    writer.startElement(uri, localname, qname, attributes);
}

void NuvSAX2Writer::startPrefixMapping(const XMLCh* prefix, const XMLCh* uri)
{
    writer.startPrefixMapping(prefix, uri);
}

void NuvSAX2Writer::endPrefixMapping(const XMLCh* prefix) { writer.endPrefixMapping(prefix); }

void NuvSAX2Writer::skippedEntity(const XMLCh* name) { writer.skippedEntity(name); }

void NuvSAX2Writer::writeTabs()
{
    for (int i = 0; i < depth; ++i)
        Characters(u"  ");
}

} // namespace NuvXML
