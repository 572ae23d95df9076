/// @file
/// Comparing two equal documents, against a bare walk through the same pairs that compares nothing.
#include "NuvRoot/Containers.hpp"
#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

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
using Document = NuvXML::XercesPtr<DOMDocument>;

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

Document Parse(const std::string& text)
{
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                "benchmark");
    xercesc_3_0::XercesDOMParser parser;
    parser.parse(source);
    return Document(parser.adoptDocument());
}

/// The same text parsed twice, when it is first asked for.
class TwoDocuments
{
  public:
    explicit TwoDocuments(std::function<std::string()> makeText)
        : text(std::move(makeText))
    {
    }

    DOMDocument& Left() { return Get(left); }
    DOMDocument& Right() { return Get(right); }

  private:
    DOMDocument& Get(Document& document)
    {
        if (!document)
            document = Parse(text());
        return *document;
    }

    std::function<std::string()> text;
    Document left;
    Document right;
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

void Walk(benchmark::State& state, TwoDocuments& documents, DOMNodeFilter* filter)
{
    DOMDocument& left = documents.Left();
    DOMDocument& right = documents.Right();
    for (auto _ : state)
    {
        auto* const leftWalker =
            left.createTreeWalker(left.getDocumentElement(), DOMNodeFilter::SHOW_ALL, filter, false);
        auto* const rightWalker =
            right.createTreeWalker(right.getDocumentElement(), DOMNodeFilter::SHOW_ALL, filter, false);
        WalkPair(*leftWalker, *rightWalker);
    }
}

void Compare(benchmark::State& state, TwoDocuments& documents, DOMNodeFilter* filter,
             const NuvXML::IXMLCompareOptions& options)
{
    const DOMDocument& left = documents.Left();
    const DOMDocument& right = documents.Right();
    for (auto _ : state)
    {
        NuvXML::XMLCompareStrictOrder comparator;
        NuvXML::DoXMLCompare(&left, &right, &comparator, filter, options);
    }
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

template <class Step>
void CompareAttributes(benchmark::State& state, Step step)
{
    const Document document = Parse("<e id='17' layer='structure' material='C30' height='0.25'/>");
    const DOMElement& element = *document->getDocumentElement();
    for (auto _ : state)
        step(element);
}

template <class Step>
void CompareValues(benchmark::State& state, Step step)
{
    const Nuv::UniString values[] = {u"6.25", u"Concrete", u"0.3", u"Checked by the engineer", u"structure"};
    for (auto _ : state)
        for (const Nuv::UniString& value : values)
            benchmark::DoNotOptimize(step(value));
}

constexpr size_t Megabyte = 1'000'000;

} // namespace

int main(int argc, char** argv)
{
    TwoDocuments plain([] { return ProjectText(15 * Megabyte, Markers::None); });
    TwoDocuments marked([] { return ProjectText(15 * Megabyte, Markers::Some); });
    TwoDocuments small([] { return ProjectText(1 * Megabyte, Markers::None); });
    TwoDocuments large([] { return ProjectText(64 * Megabyte, Markers::None); });
    TwoDocuments fewAttributes([] { return TextWithAttributes(1'000); });
    TwoDocuments manyAttributes([] { return TextWithAttributes(10'000); });
    const NuvXML::StrictOrderAutoValueCompareOptions standard;
    const NuvXML::AttrRuledCompareOptions markers;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;

    const auto walk = [](const char* name, TwoDocuments& documents, DOMNodeFilter* nodeFilter)
    {
        benchmark::RegisterBenchmark(name, [&documents, nodeFilter](benchmark::State& state)
                                     { Walk(state, documents, nodeFilter); })
            ->Unit(benchmark::kMillisecond);
    };
    const auto compare = [](const char* name, TwoDocuments& documents, DOMNodeFilter* nodeFilter,
                            const NuvXML::IXMLCompareOptions& options)
    {
        benchmark::RegisterBenchmark(name, [&documents, nodeFilter, &options](benchmark::State& state)
                                     { Compare(state, documents, nodeFilter, options); })
            ->Unit(benchmark::kMillisecond);
    };
    walk("walk", plain, &filter);
    compare("compare", plain, &filter, standard);
    compare("compareWithMarkerOptions", plain, &filter, markers);
    walk("walkMarked", marked, &filter);
    compare("compareMarked", marked, &filter, markers);
    walk("walkUnfiltered", plain, nullptr);
    compare("compareUnfiltered", plain, nullptr, standard);
    compare("compareUnfilteredWithMarkerOptions", plain, nullptr, markers);
    compare("compareSmall", small, &filter, standard);
    compare("compareLarge", large, &filter, standard);
    compare("compareFewAttributes", fewAttributes, &filter, standard);
    compare("compareManyAttributes", manyAttributes, &filter, standard);

    benchmark::RegisterBenchmark("attributes",
                                 [&standard](benchmark::State& state)
                                 {
                                     CompareAttributes(state,
                                                       [&standard](const DOMElement& element) {
                                                           NuvXML::XMLNodeComparator::CompareAttributes(
                                                               &element, &element, standard);
                                                       });
                                 });
    benchmark::RegisterBenchmark(
        "attributesPlain",
        [&standard](benchmark::State& state)
        {
            CompareAttributes(state, [&standard](const DOMElement& element)
                              { benchmark::DoNotOptimize(AreAttributesEqual(element, element, standard)); });
        });
    benchmark::RegisterBenchmark(
        "values",
        [&standard](benchmark::State& state)
        {
            CompareValues(state, [&standard](const Nuv::UniString& value)
                          { return NuvXML::XMLCompareAuto().CompareValues(value, value, standard); });
        });
    benchmark::RegisterBenchmark("valuesPlain",
                                 [&standard](benchmark::State& state)
                                 {
                                     CompareValues(state, [&standard](const Nuv::UniString& value)
                                                   { return AreValuesEqual(value, value, standard); });
                                 });

    return Benchmarks::RunAndCompare(
        argc, argv,
        {
            {"standard options / bare walk", "compare", "walk", 1.10},
            {"marker options / bare walk", "compareWithMarkerOptions", "walk", 1.10},
            {"marker options, every 4th beam marked / bare walk", "compareMarked", "walkMarked", 1.20},
            {"standard options, no filter / bare walk", "compareUnfiltered", "walkUnfiltered", 1.10},
            {"marker options, no filter / bare walk", "compareUnfilteredWithMarkerOptions", "walkUnfiltered",
             1.10},
            {"4 attributes / with a hash set of strings", "attributes", "attributesPlain", 0.8},
            {"values compared automatically / parsed to choose a comparator", "values", "valuesPlain", 0.8},
            {"64 MB / 1 MB", "compareLarge", "compareSmall", 64 * 1.5},
            {"10,000 attributes / 1,000 attributes", "compareManyAttributes", "compareFewAttributes",
             10 * 1.5},
        });
}
