/// @file
/// Comparing two equal documents, against a bare walk through the same pairs that compares nothing.
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace
{

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMNodeFilter;
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

    return Benchmarks::RunAndCompare(
        argc, argv,
        {
            {"standard options / bare walk", "compare", "walk", 1.10},
            {"marker options / bare walk", "compareWithMarkerOptions", "walk", 1.10},
            {"marker options, every 4th beam marked / bare walk", "compareMarked", "walkMarked", 1.10},
            {"standard options, no filter / bare walk", "compareUnfiltered", "walkUnfiltered", 1.10},
            {"marker options, no filter / bare walk", "compareUnfilteredWithMarkerOptions", "walkUnfiltered",
             1.10},
            {"64 MB / 1 MB", "compareLarge", "compareSmall", 64 * 1.5},
            {"10,000 attributes / 1,000 attributes", "compareManyAttributes", "compareFewAttributes",
             10 * 1.5},
        });
}
