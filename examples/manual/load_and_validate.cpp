// Loads a schema, then documents that are right, wrong in two ways, and missing; finds lines; shows what
// becomes of entity references.

#include "NuvXMLUtils/LoadDocument.hpp"

#include <xercesc/dom/DOMElement.hpp>

#include <iostream>
#include <string_view>

namespace
{

using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;
using Scheme = xercesc_3_0::AbstractDOMParser;

/// What a call that loads gives when it fails.
struct Fault
{
    NodeLocationInfo place;
    Nuv::UniString reason;
};

void Tell(const char* what, const Fault& fault)
{
    std::cout << what << ", line " << fault.place.lineNumber << ": " << fault.reason << '\n';
}

/// A parser that validates is made once and parses many documents.
void Parse(ValidatingXMLParser& parser, std::string_view text)
{
    Fault fault;
    const Document document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                         static_cast<unsigned int>(text.size()), Scheme::Val_Never, true,
                                         Nuv::UniString(u"memory"), nullptr, &fault.place, &fault.reason));
    if (!document)
        Tell("A text", fault);
}

void ShowLines(ValidatingXMLParser& parser)
{
    NodeLocations lines;
    const Document document(
        parser.Parse(IO::Location(u"walls.xml"), Scheme::Val_Never, true, &lines, nullptr, nullptr));
    const auto* wall = document->getDocumentElement()->getFirstElementChild();
    for (; wall; wall = wall->getNextElementSibling())
        std::cout << Nuv::UniString(wall->getAttribute(u"name")) << " begins on line "
                  << lines.Find(wall)->lineNumber << '\n';
}

void ShowEntityReference(bool areNodes)
{
    const NuvXML::Loaded wall = NuvXML::LoadDocument(
        "<!DOCTYPE Wall [<!ENTITY kind 'brick'>]><Wall>&kind; wall</Wall>", {.entityReferences = areNodes});
    const auto* child = wall.document->getDocumentElement()->getFirstChild();
    std::cout << "The first child is " << Nuv::UniString(child->getNodeName()) << " of the text "
              << Nuv::UniString(child->getTextContent()) << '\n';
}

} // namespace

int main()
{
    ValidatingXMLParser parser;
    Fault fault;
    if (!parser.LoadSchema(IO::Location(u"none.xsd"), &fault.place, &fault.reason))
        Tell("A schema", fault);
    if (!parser.LoadSchema(IO::Location(u"walls.xsd"), &fault.place, &fault.reason))
        return 1;
    ShowLines(parser);
    Parse(parser, "<Walls>\n  <Wall name='West'>\n    <Height>-1</Height>\n  </Wall>\n</Walls>");
    Parse(parser, "<Walls>\n  <Wall name='West'>\n</Walls>");
    ShowEntityReference(true);
    ShowEntityReference(false);
}
