#include "NuvXMLUtils/SAXWriters.hpp"

#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/FormatterText.hpp"

#include <xercesc/internal/VecAttributesImpl.hpp>
#include <xercesc/sax/AttributeList.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <string_view>
#include <utility>

namespace NuvXML
{
namespace
{

using namespace std::string_view_literals;
using xercesc_3_0::XMLFormatter;

void FormatDeclaration(XMLFormatter& formatter)
{
    formatter << u"<?xml version=\"1.0\" encoding=\"" << formatter.getEncodingName() << u"\"?>\n";
}

void BeginMarkup(XMLFormatter& formatter, FormatterText& text)
{
    text.BeginEvent();
    formatter << XMLFormatter::NoEscapes;
}

void WriteWhitespace(FormatterText& text, const XMLCh* chars, XMLSize_t length)
{
    text.BeginEvent();
    text.Write(std::u16string_view(chars, length));
    text.EndEvent();
}

void WriteExpandedName(FormatterText& text, const XMLCh* uri, const XMLCh* localname)
{
    if (uri && *uri)
    {
        text.Write(uri);
        text.Write(u":"sv);
    }
    text.Write(localname);
}

void WriteAttributeValue(FormatterText& text, const XMLCh* value)
{
    text.Write(u"=\""sv);
    text.WriteValue(value);
    text.Write(u"\""sv);
}

void WriteInstruction(XMLFormatter& formatter, FormatterText& text, const XMLCh* target, const XMLCh* data)
{
    BeginMarkup(formatter, text);
    text.Write(u"<?"sv);
    text.Write(target);
    if (data)
    {
        text.Write(u" "sv);
        text.Write(data);
    }
    text.Write(u"?>"sv);
    text.EndEvent();
}

} // namespace

// SAXWriter

SAXWriter::SAXWriter(XMLFormatter& target)
    : formatter(&target)
    , text(std::make_unique<FormatterText>(target))
{
    FormatDeclaration(*formatter);
}

SAXWriter::~SAXWriter() = default;

void SAXWriter::characters(const XMLCh* chars, XMLSize_t length) { text->WriteCharacters(chars, length); }

void SAXWriter::endDocument()
{
    text->BeginEvent();
    text->EndEvent();
    locator = nullptr;
}

void SAXWriter::endElement(const XMLCh* name)
{
    BeginMarkup(*formatter, *text);
    text->Write(u"</"sv);
    text->Write(name);
    text->Write(u">"sv);
    text->EndEvent();
}

void SAXWriter::ignorableWhitespace(const XMLCh* chars, XMLSize_t length)
{
    WriteWhitespace(*text, chars, length);
}

void SAXWriter::processingInstruction(const XMLCh* target, const XMLCh* data)
{
    WriteInstruction(*formatter, *text, target, data);
}

void SAXWriter::resetDocument() {}

void SAXWriter::setDocumentLocator(const xercesc_3_0::Locator* newLocator) { locator = newLocator; }

void SAXWriter::startDocument() {}

void SAXWriter::startElement(const XMLCh* name, xercesc_3_0::AttributeList& attributes)
{
    BeginMarkup(*formatter, *text);
    text->Write(u"<"sv);
    text->Write(name);
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i)
    {
        text->Write(u" "sv);
        text->Write(attributes.getName(i));
        WriteAttributeValue(*text, attributes.getValue(i));
    }
    text->Write(u">"sv);
    text->EndEvent();
}

// SAX2Writer

SAX2Writer::SAX2Writer(XMLFormatter& target, bool expand)
    : expandNamespaces(expand)
    , formatter(&target)
    , text(std::make_unique<FormatterText>(target))
{
    FormatDeclaration(*formatter);
}

SAX2Writer::~SAX2Writer() = default;

void SAX2Writer::WriteName(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname)
{
    if (expandNamespaces)
        WriteExpandedName(*text, uri, localname);
    else
        text->Write(qname);
}

void SAX2Writer::characters(const XMLCh* chars, XMLSize_t length) { text->WriteCharacters(chars, length); }

void SAX2Writer::endDocument()
{
    text->BeginEvent();
    text->EndEvent();
    locator = nullptr;
}

void SAX2Writer::endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname)
{
    BeginMarkup(*formatter, *text);
    text->Write(u"</"sv);
    WriteName(uri, localname, qname);
    text->Write(u">"sv);
    text->EndEvent();
}

void SAX2Writer::ignorableWhitespace(const XMLCh* chars, XMLSize_t length)
{
    WriteWhitespace(*text, chars, length);
}

void SAX2Writer::processingInstruction(const XMLCh* target, const XMLCh* data)
{
    WriteInstruction(*formatter, *text, target, data);
}

void SAX2Writer::setDocumentLocator(const xercesc_3_0::Locator* newLocator) { locator = newLocator; }

void SAX2Writer::startDocument() {}

void SAX2Writer::startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                              const xercesc_3_0::Attributes& attributes)
{
    BeginMarkup(*formatter, *text);
    text->Write(u"<"sv);
    WriteName(uri, localname, qname);
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i)
    {
        text->Write(u" "sv);
        if (expandNamespaces)
            WriteExpandedName(*text, attributes.getURI(i), attributes.getLocalName(i));
        else
            text->Write(attributes.getQName(i));
        WriteAttributeValue(*text, attributes.getValue(i));
    }
    text->Write(u">"sv);
    text->EndEvent();
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
