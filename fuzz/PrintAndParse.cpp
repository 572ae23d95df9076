// A document without document type that parses: its print parses too, and from then on nothing changes any
// more.

#include "NuvXMLUtils/FormatXMLDoc.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

namespace
{

using namespace xercesc_3_0;

/// Null for text that is not well-formed.
NuvXML::XercesPtr<DOMDocument> Parse(const void* bytes, std::size_t size)
{
    XercesDOMParser parser;
    parser.setLoadExternalDTD(false);
    parser.setDisableDefaultEntityResolution(true);
    try
    {
        parser.parse(MemBufInputSource(static_cast<const XMLByte*>(bytes), size, "source"));
    }
    catch (const XMLException&)
    {
        return nullptr;
    }
    catch (const DOMException&)
    {
        return nullptr;
    }
    return NuvXML::XercesPtr<DOMDocument>(parser.getErrorCount() == 0 ? parser.adoptDocument() : nullptr);
}

std::string Print(const DOMDocument& document, const char16_t* encoding)
{
    Nuv::MemoryOChannel channel;
    if (!FormatXMLDoc(&document, &channel, encoding, true))
        std::abort();
    return channel.GetBytes();
}

std::string ParseAndPrint(const std::string& bytes, const char16_t* encoding)
{
    const auto document = Parse(bytes.data(), bytes.size());
    if (!document)
        std::abort();
    return Print(*document, encoding);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    constexpr const char16_t* Encodings[] = {u"UTF-8", u"UTF-16LE", u"UTF-16BE", u"GB18030"};
    if (size == 0)
        return 0;
    const char16_t* const encoding = Encodings[bytes[0] % std::size(Encodings)];
    const auto document = Parse(bytes + 1, size - 1);
    // The printer writes XML 1.0, which lacks some characters of XML 1.1.
    if (!document || document->getDoctype() ||
        XMLString::equals(document->getXmlVersion(), XMLUni::fgVersion1_1))
        return 0;
    Print(*document, u"US-ASCII");
    // White space in attributes and carriage returns may change once.
    const std::string printed = ParseAndPrint(Print(*document, encoding), encoding);
    if (ParseAndPrint(printed, encoding) != printed)
        std::abort();
    return 0;
}
