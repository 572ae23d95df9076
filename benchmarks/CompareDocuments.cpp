/// @file
/// Comparing two equal documents, against a bare walk through the same pairs that compares nothing, and
/// against trees of pugixml that are compared as they stand, which shows how far down the time could go.
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "benchmarks/Inputs.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace
{

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNodeFilter;
using xercesc_3_0::DOMText;
using xercesc_3_0::DOMTreeWalker;
using namespace Benchmarks;

enum class Markers
{
    None,
    Some
};

/// An indented document of about `size` bytes that looks like the data of a project: elements with a few
/// attributes, numbers and words.
std::string ProjectText(size_t size, Markers markers)
{
    std::string text = "<project>\n";
    for (unsigned int i = 0; text.size() < size; ++i)
    {
        const std::string number = std::to_string(i);
        const bool isMarked = markers == Markers::Some && i % 4 == 0;
        text += "  <beam id=\"" + number + "\" layer=\"structure\">\n";
        text += std::string("    <length") + (isMarked ? " nuv_type=\"double\" nuv_eps=\"0.001\"" : "") +
                ">" + number + ".25</length>\n";
        text += "    <material>Concrete C" + std::to_string(i % 50) + "</material>\n";
        text += "    <section>\n      <width>0.3</width>\n      <height>0." + number + "</height>\n";
        text += "    </section>\n  </beam>\n";
    }
    return text + "</project>\n";
}

std::string TextWithAttributes(size_t count)
{
    std::string text = "<element";
    for (size_t i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "=\"value " + std::to_string(i) + "\"";
    return text + "/>";
}

/// The same text twice as trees of Xerces and of pugixml, parsed when they are first asked for.
class TwoDocuments
{
  public:
    explicit TwoDocuments(std::function<std::string()> makeText)
        : text(std::move(makeText))
    {
    }

    DOMDocument& Left() { return Get(left); }
    DOMDocument& Right() { return Get(right); }
    const pugi::xml_document& LeftOfPugixml() { return Get(leftOfPugixml); }
    const pugi::xml_document& RightOfPugixml() { return Get(rightOfPugixml); }

  private:
    DOMDocument& Get(XercesDocument& document)
    {
        if (!document)
            document = ParseWithXerces(text());
        return *document;
    }

    const pugi::xml_document& Get(pugi::xml_document& document)
    {
        if (document.empty() || !document.first_child())
            document = ParseWithPugixml(text(), KeepAll);
        return document;
    }

    std::function<std::string()> text;
    XercesDocument left;
    XercesDocument right;
    pugi::xml_document leftOfPugixml;
    pugi::xml_document rightOfPugixml;
};

void WalkPair(DOMTreeWalker& left, DOMTreeWalker& right)
{
    auto* const leftNode = left.getCurrentNode();
    auto* const rightNode = right.getCurrentNode();
    const auto* leftChild = left.firstChild();
    const auto* rightChild = right.firstChild();
    while (leftChild && rightChild)
    {
        WalkPair(left, right);
        leftChild = left.nextSibling();
        rightChild = right.nextSibling();
    }
    left.setCurrentNode(leftNode);
    right.setCurrentNode(rightNode);
}

void Walk(TwoDocuments& documents, DOMNodeFilter* filter)
{
    const auto walkerOf = [filter](DOMDocument& document) {
        return document.createTreeWalker(document.getDocumentElement(), DOMNodeFilter::SHOW_ALL, filter,
                                         false);
    };
    WalkPair(*walkerOf(documents.Left()), *walkerOf(documents.Right()));
}

void Compare(TwoDocuments& documents, DOMNodeFilter* filter, const NuvXML::IXMLCompareOptions& options)
{
    NuvXML::XMLCompareStrictOrder comparator;
    NuvXML::DoXMLCompare(&documents.Left(), &documents.Right(), &comparator, filter, options);
}

bool AreEqual(std::string_view left, std::string_view right) { return left == right; }

pugi::xml_node SkipWhitespace(pugi::xml_node node)
{
    while (node.type() == pugi::node_pcdata &&
           std::string_view(node.value()).find_first_not_of(" \t\r\n") == std::string_view::npos)
        node = node.next_sibling();
    return node;
}

bool AreAttributesEqual(pugi::xml_node left, pugi::xml_node right)
{
    auto leftAttribute = left.first_attribute();
    auto rightAttribute = right.first_attribute();
    for (; leftAttribute && rightAttribute;
         leftAttribute = leftAttribute.next_attribute(), rightAttribute = rightAttribute.next_attribute())
        if (!AreEqual(leftAttribute.name(), rightAttribute.name()) ||
            !AreEqual(leftAttribute.value(), rightAttribute.value()))
            return false;
    return !leftAttribute && !rightAttribute;
}

/// Names, attributes in their order and texts, without a policy of any kind.
bool AreEqual(pugi::xml_node left, pugi::xml_node right)
{
    if (!AreEqual(left.name(), right.name()) || !AreEqual(left.value(), right.value()) ||
        !AreAttributesEqual(left, right))
        return false;
    auto leftChild = SkipWhitespace(left.first_child());
    auto rightChild = SkipWhitespace(right.first_child());
    while (leftChild && rightChild && AreEqual(leftChild, rightChild))
    {
        leftChild = SkipWhitespace(leftChild.next_sibling());
        rightChild = SkipWhitespace(rightChild.next_sibling());
    }
    return !leftChild && !rightChild;
}

void CompareWithPugixml(TwoDocuments& documents)
{
    Expect(AreEqual(documents.LeftOfPugixml(), documents.RightOfPugixml()), "pugixml's trees differ");
}

// The plain ways of two steps that the library takes in a faster way.

/// Compares attributes with a hash set of strings for the names.
bool AreAttributesEqual(const DOMElement& left, const DOMElement& right,
                        const NuvXML::IXMLCompareOptions& options)
{
    Nuv::HashSet<Nuv::UniString> names;
    const auto& leftAttributes = *left.getAttributes();
    const auto& rightAttributes = *right.getAttributes();
    for (XMLSize_t i = 0; i < leftAttributes.getLength(); ++i)
    {
        const auto* const leftAttribute = static_cast<const DOMAttr*>(leftAttributes.item(i));
        const auto* const rightAttribute =
            static_cast<const DOMAttr*>(rightAttributes.getNamedItem(leftAttribute->getName()));
        const auto comparator = std::make_unique<NuvXML::XMLCompareAuto>();
        if (!rightAttribute ||
            !comparator->CompareValues(static_cast<const DOMText*>(leftAttribute->getFirstChild()),
                                       static_cast<const DOMText*>(rightAttribute->getFirstChild()), options))
            return false;
        names.insert(leftAttribute->getName());
    }
    for (XMLSize_t i = 0; i < rightAttributes.getLength(); ++i)
        if (names.count(static_cast<const DOMAttr*>(rightAttributes.item(i))->getName()) == 0)
            return false;
    return true;
}

/// Parses both values to choose a comparator, which then takes them again.
bool AreValuesEqual(const Nuv::UniString& left, const Nuv::UniString& right,
                    const NuvXML::IXMLCompareOptions& options)
{
    double number = 0;
    std::unique_ptr<NuvXML::XMLValueComparator> comparator;
    if (Nuv::strtovalue(left.View(), number) && Nuv::strtovalue(right.View(), number))
        comparator = std::make_unique<NuvXML::XMLCompareDouble>();
    else
        comparator = std::make_unique<NuvXML::XMLCompareString>();
    return comparator->CompareValues(left, right, options);
}

/// A step is too short to be measured alone.
template <class Step>
std::function<void()> AThousandTimes(Step step)
{
    return [step]
    {
        for (int i = 0; i < 1'000; ++i)
            step();
    };
}

template <class Compare>
auto ForEachValue(Compare compare)
{
    return [compare]
    {
        static const Nuv::UniString values[] = {u"6.25", u"Concrete", u"0.3", u"Checked by the engineer",
                                                u"structure"};
        for (const Nuv::UniString& value : values)
            benchmark::DoNotOptimize(compare(value));
    };
}

constexpr size_t Megabyte = 1'000'000;

} // namespace

int main(int argc, char** argv)
{
    TwoDocuments beams([] { return ProjectText(15 * Megabyte, Markers::None); });
    TwoDocuments marked([] { return ProjectText(15 * Megabyte, Markers::Some); });
    TwoDocuments small([] { return ProjectText(1 * Megabyte, Markers::None); });
    TwoDocuments large([] { return ProjectText(64 * Megabyte, Markers::None); });
    TwoDocuments languages([] { return Languages().text; });
    TwoDocuments mimeTypes([] { return MimeTypes().text; });
    TwoDocuments fewAttributes([] { return TextWithAttributes(1'000); });
    TwoDocuments manyAttributes([] { return TextWithAttributes(10'000); });
    const XercesDocument fourAttributes =
        ParseWithXerces("<e id='17' layer='structure' material='C30' height='0.25'/>");
    const DOMElement& element = *fourAttributes->getDocumentElement();
    const NuvXML::StrictOrderAutoValueCompareOptions standard;
    const NuvXML::AttrRuledCompareOptions markers;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;

    std::vector<Candidate> candidates;
    const auto compare = [&candidates](const char* input, const char* name, TwoDocuments& documents,
                                       DOMNodeFilter* nodeFilter, const NuvXML::IXMLCompareOptions& options)
    {
        candidates.push_back({input, name, Whose::Ours, [&documents, nodeFilter, &options] {
                                  Compare(documents, nodeFilter, options);
                              }});
    };
    const auto walk = [&candidates](const char* input, TwoDocuments& documents, DOMNodeFilter* nodeFilter)
    {
        candidates.push_back(
            {input, "bare walk", Whose::Peers, [&documents, nodeFilter] { Walk(documents, nodeFilter); }});
    };
    const auto addPugixml = [&candidates](const char* input, TwoDocuments& documents) {
        candidates.push_back(
            {input, "pugixml", Whose::Peers, [&documents] { CompareWithPugixml(documents); }});
    };
    const auto step = [&candidates](const char* input, const char* name, Whose whose, auto run) {
        candidates.push_back({input, name, whose, AThousandTimes(run)});
    };

    compare("15 MB of beams", "standard options", beams, &filter, standard);
    compare("15 MB of beams", "marker options", beams, &filter, markers);
    walk("15 MB of beams", beams, &filter);
    addPugixml("15 MB of beams", beams);
    compare("15 MB of beams, every 4th marked", "marker options", marked, &filter, markers);
    walk("15 MB of beams, every 4th marked", marked, &filter);
    compare("15 MB of beams, no filter", "standard options", beams, nullptr, standard);
    compare("15 MB of beams, no filter", "marker options", beams, nullptr, markers);
    walk("15 MB of beams, no filter", beams, nullptr);
    compare("iso_639-3.xml", "standard options", languages, &filter, standard);
    walk("iso_639-3.xml", languages, &filter);
    addPugixml("iso_639-3.xml", languages);
    compare("freedesktop.org.xml", "standard options", mimeTypes, &filter, standard);
    walk("freedesktop.org.xml", mimeTypes, &filter);
    addPugixml("freedesktop.org.xml", mimeTypes);
    compare("1 MB of beams", "standard options", small, &filter, standard);
    compare("64 MB of beams", "standard options", large, &filter, standard);
    compare("1,000 attributes of an element", "standard options", fewAttributes, &filter, standard);
    compare("10,000 attributes of an element", "standard options", manyAttributes, &filter, standard);
    step("1,000 times 4 attributes", "CompareAttributes", Whose::Ours,
         [&] { NuvXML::XMLNodeComparator::CompareAttributes(&element, &element, standard); });
    step("1,000 times 4 attributes", "plain way", Whose::Peers,
         [&] { benchmark::DoNotOptimize(AreAttributesEqual(element, element, standard)); });
    step("1,000 times 5 values", "XMLCompareAuto", Whose::Ours,
         ForEachValue([&](const Nuv::UniString& value)
                      { return NuvXML::XMLCompareAuto().CompareValues(value, value, standard); }));
    step("1,000 times 5 values", "plain way", Whose::Peers,
         ForEachValue([&](const Nuv::UniString& value) { return AreValuesEqual(value, value, standard); }));

    return RunAndCompare(argc, argv, candidates,
                         {
                             LimitOf("15 MB of beams", "standard options", "bare walk", 1.10),
                             LimitOf("15 MB of beams", "marker options", "bare walk", 1.10),
                             LimitOf("15 MB of beams, every 4th marked", "marker options", "bare walk", 1.20),
                             LimitOf("15 MB of beams, no filter", "standard options", "bare walk", 1.10),
                             LimitOf("15 MB of beams, no filter", "marker options", "bare walk", 1.10),
                             LimitOf("1,000 times 4 attributes", "CompareAttributes", "plain way", 0.8),
                             LimitOf("1,000 times 5 values", "XMLCompareAuto", "plain way", 0.8),
                             {"64 MB / 1 MB of beams", "64 MB of beams/standard options",
                              "1 MB of beams/standard options", 64 * 1.5},
                             {"10,000 attributes / 1,000 attributes of an element",
                              "10,000 attributes of an element/standard options",
                              "1,000 attributes of an element/standard options", 10 * 1.5},
                         });
}
