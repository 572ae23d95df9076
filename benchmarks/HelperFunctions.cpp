/// @file
/// The tag builders and getters beside bare DOM calls and pugixml, on a document of tags.
#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLString.hpp>

#include <cstdio>
#include <cstdlib>

namespace
{

using namespace xercesc_3_0;
using namespace Benchmarks;

constexpr int RecordCount = 25'000;
constexpr char16_t Note[] = u"Thickness < 300 mm, checked on site";
constexpr char NoteInUTF8[] = "Thickness < 300 mm, checked on site";

double HeightAt(int i) { return i * 0.25; }

XercesDocument NewDocument()
{
    return XercesDocument(
        DOMImplementation::getImplementation()->createDocument(nullptr, u"records", nullptr));
}

XercesDocument BuildWithOurs()
{
    XercesDocument document = NewDocument();
    DOMElement* const root = document->getDocumentElement();
    for (int i = 0; i < RecordCount; ++i)
    {
        NuvXMLUtils::NewSLongTag(root, "id", i, 1);
        NuvXMLUtils::NewDoubleTag(root, "height", HeightAt(i), 1);
        NuvXMLUtils::NewTextTag(root, "layer", "Structure", 1);
        NuvXMLUtils::NewStringTag(root, "note", Note, 1);
    }
    return document;
}

void AppendTag(DOMDocument& document, DOMElement& root, const XMLCh* name, DOMNode* content)
{
    root.appendChild(document.createTextNode(u"\t"));
    DOMNode* const element = root.appendChild(document.createElement(name));
    element->appendChild(content);
    root.appendChild(document.createTextNode(u"\n"));
}

/// A number as text of Xerces.
template <class Number>
DOMNode* NumberText(DOMDocument& document, const char* format, Number number)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, format, number);
    XMLCh text[32];
    XMLString::transcode(digits, text, 31);
    return document.createTextNode(text);
}

XercesDocument BuildWithBareCalls()
{
    XercesDocument document = NewDocument();
    DOMElement* const root = document->getDocumentElement();
    const std::u16string quotedNote = u'"' + std::u16string(Note) + u'"';
    for (int i = 0; i < RecordCount; ++i)
    {
        AppendTag(*document, *root, u"id", NumberText(*document, "%d", i));
        AppendTag(*document, *root, u"height", NumberText(*document, "%.12g", HeightAt(i)));
        AppendTag(*document, *root, u"layer", document->createTextNode(u"Structure"));
        AppendTag(*document, *root, u"note", document->createCDATASection(quotedNote.c_str()));
    }
    return document;
}

pugi::xml_document BuildWithPugixml()
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("records");
    for (int i = 0; i < RecordCount; ++i)
    {
        root.append_child("id").text().set(i);
        root.append_child("height").text().set(HeightAt(i));
        root.append_child("layer").text().set("Structure");
        root.append_child("note").append_child(pugi::node_cdata).set_value(NoteInUTF8);
    }
    return document;
}

std::string TextOf(const DOMDocument& document)
{
    Nuv::MemoryOChannel channel;
    FormatXMLDoc(&document, &channel, u"UTF-8", true);
    return channel.GetBytes();
}

void ExpectRecord(int i, int id, double height, bool hasTexts)
{
    Expect(id == i && height == HeightAt(i) && hasTexts, "a value is not what was written");
}

void ReadWithOurs(const DOMDocument& document)
{
    DOMNode* cursor = document.getDocumentElement()->getFirstChild();
    for (int i = 0; i < RecordCount; ++i)
    {
        const int id = NuvXMLUtils::GetSLongTag(NuvXMLUtils::GetNextTag(cursor));
        const double height = NuvXMLUtils::GetDoubleTag(NuvXMLUtils::GetNextTag(cursor));
        const Nuv::UniString layer = NuvXMLUtils::GetTagTextU(NuvXMLUtils::GetNextTag(cursor));
        const std::unique_ptr<unsigned short[]> note(
            NuvXMLUtils::GetStringTagU(NuvXMLUtils::GetNextTag(cursor)));
        ExpectRecord(i, id, height, !layer.IsEmpty() && note[0] == 'T');
    }
}

template <class Parse>
auto NumberOf(const DOMElement* element, Parse parse)
{
    char* digits = XMLString::transcode(element->getFirstChild()->getNodeValue());
    const auto number = parse(digits);
    XMLString::release(&digits);
    return number;
}

void ReadWithBareCalls(const DOMDocument& document)
{
    const DOMElement* element = document.getDocumentElement()->getFirstElementChild();
    const auto next = [&element] { return std::exchange(element, element->getNextElementSibling()); };
    for (int i = 0; i < RecordCount; ++i)
    {
        const int id = NumberOf(next(), [](const char* digits) { return std::atoi(digits); });
        const double height = NumberOf(next(), [](const char* digits) { return std::atof(digits); });
        const std::u16string layer = next()->getFirstChild()->getNodeValue();
        const std::u16string quotedNote = next()->getFirstChild()->getNodeValue();
        const std::u16string note = quotedNote.substr(1, quotedNote.size() - 2);
        ExpectRecord(i, id, height, !layer.empty() && note[0] == u'T');
    }
}

void ReadWithPugixml(const pugi::xml_document& document)
{
    pugi::xml_node element = document.document_element().first_child();
    const auto next = [&element] { return std::exchange(element, element.next_sibling()); };
    for (int i = 0; i < RecordCount; ++i)
    {
        const int id = next().text().as_int();
        const double height = next().text().as_double();
        const std::string layer = next().child_value();
        const std::string note = next().child_value();
        ExpectRecord(i, id, height, !layer.empty() && note[0] == 'T');
    }
}

} // namespace

int main(int argc, char** argv)
{
    const XercesDocument document = BuildWithOurs();
    const pugi::xml_document documentOfPugixml = BuildWithPugixml();
    Expect(TextOf(*document) == TextOf(*BuildWithBareCalls()),
           "ours and the bare calls build different documents");
    const char* const building = "100,000 tags built";
    const char* const reading = "100,000 tags read";
    return RunAndCompare(
        argc, argv,
        {
            {building, "tag builders", Whose::Ours, BuildWithOurs},
            {building, "bare DOM calls", Whose::Peers, BuildWithBareCalls},
            {building, "pugixml", Whose::Peers, BuildWithPugixml},
            {reading, "tag getters", Whose::Ours, [&document] { ReadWithOurs(*document); }},
            {reading, "bare DOM calls", Whose::Peers, [&document] { ReadWithBareCalls(*document); }},
            {reading, "pugixml", Whose::Peers, [&documentOfPugixml] { ReadWithPugixml(documentOfPugixml); }},
        },
        {});
}
