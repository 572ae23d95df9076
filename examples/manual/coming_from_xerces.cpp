// The same work by Xerces' own interface and by this library, side by side, and what loading the library has
// done to the process.

#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>

#include <clocale>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

constexpr std::string_view Damaged = "<Wall>\n  <Height>275</Heigth>\n</Wall>";
constexpr std::string_view Wall = "<Wall><Name>Süd</Name></Wall>";
constexpr std::string_view OtherWall = "<Wall><Name>Nord</Name></Wall>";
constexpr std::string_view Laughs = "<!DOCTYPE r [<!ENTITY a 'ha'><!ENTITY b '&a;&a;&a;&a;'>]><r>&b;</r>";

namespace WithXerces
{

//! [xerces load]
/// XercesDOMParser goes on after an error, and says nothing of it, unless a handler throws.
class ThrowingHandler : public xercesc::HandlerBase
{
  public:
    void error(const xercesc::SAXParseException& exception) override { throw exception; }
    void fatalError(const xercesc::SAXParseException& exception) override { throw exception; }
};

xercesc::DOMDocument* Load(std::string_view text, xercesc::SecurityManager* limits = nullptr)
{
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                            "sample");
    xercesc::XercesDOMParser parser;
    ThrowingHandler handler;
    parser.setErrorHandler(&handler);
    parser.setSecurityManager(limits);
    try
    {
        parser.parse(source);
        return parser.adoptDocument();
    }
    catch (const xercesc::SAXParseException& exception)
    {
        char* reason = xercesc::XMLString::transcode(exception.getMessage());
        std::cout << "  line " << exception.getLineNumber() << ": " << reason << '\n';
        xercesc::XMLString::release(&reason);
        return nullptr;
    }
}
//! [xerces load]

//! [xerces print]
std::string Print(const xercesc::DOMDocument* document)
{
    xercesc::DOMImplementation* const factory = xercesc::DOMImplementation::getImplementation();
    xercesc::MemBufFormatTarget target;
    xercesc::DOMLSOutput* const output = factory->createLSOutput();
    output->setEncoding(u"US-ASCII");
    output->setByteStream(&target);
    xercesc::DOMLSSerializer* const serializer = factory->createLSSerializer();
    serializer->write(document, output);
    serializer->release();
    output->release();
    return {reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()};
}
//! [xerces print]

void Work()
{
    Load(Damaged);

    xercesc::SecurityManager limits;
    limits.setEntityExpansionLimit(3);
    Load(Laughs, &limits);

    xercesc::DOMDocument* const left = Load(Wall);
    xercesc::DOMDocument* const right = Load(OtherWall);
    std::cout << Print(left) << '\n';
    std::cout << (left->isEqualNode(right) ? "  equal\n" : "  not equal\n"); // and where?
    left->release();
    right->release();
}

} // namespace WithXerces

namespace WithNuvXMLUtils
{

//! [load]
NuvXML::XercesPtr<xercesc_3_0::DOMDocument> Load(std::string_view text, const ParserLimits& limits = {})
{
    NuvXML::Loaded loaded = NuvXML::LoadDocument(text, {.limits = limits});
    if (!loaded)
        std::cout << "  line " << loaded.place.lineNumber << ": " << loaded.reason << '\n';
    return std::move(loaded.document);
}
//! [load]

//! [print]
std::string Print(const xercesc_3_0::DOMDocument* document)
{
    Nuv::MemoryOChannel channel;
    FormatXMLDoc(document, &channel, u"US-ASCII", true);
    return channel.GetBytes();
}
//! [print]

//! [compare]
void Compare(const xercesc_3_0::DOMDocument* left, const xercesc_3_0::DOMDocument* right)
{
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::XMLCompareStrictOrder comparator;
    try
    {
        NuvXML::DoXMLCompare(left, right, &comparator, &filter, NuvXML::StrictOrderAutoValueCompareOptions());
        std::cout << "  equal\n";
    }
    catch (const NuvXML::XMLCompareException& difference)
    {
        std::cout << "  " << difference.GetText() << '\n';
    }
}
//! [compare]

void Work()
{
    Load(Damaged);

    ParserLimits limits; // or ParserLimits::ForUntrustedInput(), which sets them all
    limits.maxEntityExpansions = 3;
    Load(Laughs, limits);

    const auto left = Load(Wall);
    const auto right = Load(OtherWall);
    std::cout << Print(left.get());
    Compare(left.get(), right.get());
}

} // namespace WithNuvXMLUtils

//! [line numbers]
/// A parser of yours keeps its settings and overrides. Only its base class changes.
class OwnParser : public ValidatingXMLParser::LineInfoParser
{
  public:
    OwnParser() { setDoNamespaces(true); }
};

void ShowLine()
{
    OwnParser parser;
    NodeLocations lines;
    parser.SetNodeLocations(&lines);
    const std::string text = "<Wall\n  name='South'\n/>";
    parser.parse(xercesc_3_0::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                u"sample"));
    std::cout << "The start tag ends on line "
              << lines.Find(parser.getDocument()->getDocumentElement())->lineNumber << '\n';
}
//! [line numbers]

//! [process]
void ShowTheProcess()
{
    // Nobody has called XMLPlatformUtils::Initialize. A pair of calls does not stop Xerces.
    xercesc::XMLPlatformUtils::Initialize();
    xercesc::XMLPlatformUtils::Terminate();
    std::cout << "Xerces " << (xercesc::DOMImplementation::getImplementation() ? "runs" : "is down") << '\n';

    try
    {
        std::get_new_handler()(); // what a failing new calls
    }
    catch (const std::bad_alloc& exception)
    {
        const auto* own = dynamic_cast<const Nuv::NuvException*>(&exception);
        std::cout << "A failing new throws a std::bad_alloc: " << (own ? own->GetName() : "another") << '\n';
    }

    // As in every program that has not set it.
    const char* const locale = std::setlocale(LC_ALL, nullptr); // NOLINT(concurrency-mt-unsafe): one thread
    std::cout << "The C locale is " << locale << '\n';

    static_assert(std::is_same_v<xercesc_3_0::DOMDocument, xercesc::DOMDocument>);
}
//! [process]

int main()
{
    std::cout << "Xerces:\n";
    WithXerces::Work();
    std::cout << "NuvXMLUtils:\n";
    WithNuvXMLUtils::Work();
    ShowLine();
    ShowTheProcess();
}
