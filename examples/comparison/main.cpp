// Compares two project files: with a tolerance, without the time stamp, and for all differences.
//
// usage: comparison [left.xml right.xml]

#include "WithoutTimeStamp.hpp"

#include "InputOutput/Location.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"

#include <cstdio>
#include <string>
#include <utility>

namespace
{

using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

constexpr double Tolerance = 1e-3;

/// Null, with a message on standard error, when the file is not well formed or not there.
Document Load(const std::string& path)
{
    NuvXML::Loaded loaded = NuvXML::LoadDocument(IO::Location(Nuv::UniString(path)));
    if (!loaded)
        std::fprintf(stderr, "%s:%u: %s\n", path.c_str(), loaded.place.lineNumber,
                     loaded.reason.ToString().c_str());
    return std::move(loaded.document);
}

//! [first]
void ShowFirstDifference(const char* what, const Document& left, const Document& right,
                         const NuvXML::IXMLCompareOptions& options)
{
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::XMLCompareStrictOrder comparator;
    std::printf("%s\n", what);
    try
    {
        NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, &filter, options);
        std::printf("No difference.\n\n");
    }
    catch (const NuvXML::XMLCompareException& difference)
    {
        std::printf("%s\n\n", difference.GetText().ToString().c_str());
    }
}
//! [first]

//! [all]
void ShowAllDifferences(const Document& left, const Document& right,
                        const NuvXML::IXMLCompareOptions& options)
{
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::NodePlaces places;
    int count = 0;
    std::printf("All differences:\n");
    NuvXML::FindDifferences(left.get(), right.get(), &filter, options,
                            [&](const NuvXML::XMLDifference& difference)
                            {
                                ++count;
                                std::printf("%s\n\tOn the left: %s\n",
                                            difference.exception.GetText().ToString().c_str(),
                                            places.PathOf(difference.left).ToString().c_str());
                                return true; // go on
                            });
    std::printf("\n%d differences\n", count);
}
//! [all]

} // namespace

int main(int argc, char** argv)
{
    const std::string folder = COMPARISON_FOLDER;
    const Document left = Load(argc == 3 ? argv[1] : folder + "/before.xml");
    const Document right = Load(argc == 3 ? argv[2] : folder + "/after.xml");
    if (!left || !right)
        return 2;

    NuvXML::StrictOrderAutoValueCompareOptions standard;
    standard.SetDoubleEps(Tolerance);
    ShowFirstDifference("With a tolerance of 0.001:", left, right, standard);

    WithoutTimeStamp withoutTimeStamp;
    withoutTimeStamp.SetDoubleEps(Tolerance);
    ShowFirstDifference("The same without the time stamp:", left, right, withoutTimeStamp);

    ShowAllDifferences(left, right, withoutTimeStamp);
}
