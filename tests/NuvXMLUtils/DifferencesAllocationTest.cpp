#include "CompareSupport.hpp"

#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"
#include "NuvXMLUtils/SourceText.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <xercesc/util/OutOfMemoryException.hpp>

#include <string>
#include <string_view>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using NuvTest::FailingAllocator::ExpectOutOfMemoryOnly;
using NuvTest::FailingAllocator::Pause;
using NuvTest::FailingAllocator::Sweep;

TEST(DifferencesAllocationFailure, EndsASearchByTheHostsException)
{
    const StrictOrderAutoValueCompareOptions options;
    const size_t failures = Sweep(
        [&]
        {
            Document left;
            Document right;
            {
                const Pause pause;
                left = Parse("<a x='1' y='2'><b>1</b><c><d>word</d></c></a>");
                right = Parse("<a x='2'><b>2</b><c><d>words</d><d/></c></a>");
            }
            int differences = 0;
            bool isComplete = false;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    FindDifferences(left.get(), right.get(), nullptr, options,
                                    [&](const XMLDifference& difference)
                                    {
                                        difference.exception.GetText();
                                        ++differences;
                                        return true;
                                    });
                    isComplete = true;
                });
            const Pause pause;
            EXPECT_TRUE(!isComplete || differences == 5) << differences;
            left.reset();
            right.reset();
        });
    EXPECT_GT(failures, 50u);
}

TEST(NodePlacesAllocationFailure, IsTheHostsExceptionAndLeavesNoPlaceWrong)
{
    constexpr std::string_view Text =
        "<root_of_all>\n<first/>\n<other/><other/>\n<last>\ntext</last></root_of_all>";
    const NuvXML::Loaded loaded = NuvXML::LoadDocument(Text);
    const auto* const first = loaded.document->getDocumentElement()->getFirstElementChild();
    const auto* const other = first->getNextElementSibling();
    const auto* const last = other->getNextElementSibling()->getNextElementSibling();
    const size_t failures = Sweep(
        [&]
        {
            NodePlaces places(&loaded.lines);
            ExpectOutOfMemoryOnly([&] { places.PathOf(first); });
            ExpectOutOfMemoryOnly([&] { places.LineOf(first); });
            const Pause pause;
            EXPECT_EQ(places.PathOf(first), u"/root_of_all/first");
            EXPECT_EQ(places.PathOf(other), u"/root_of_all/other[1]");
            EXPECT_EQ(places.PathOf(last), u"/root_of_all/last");
            EXPECT_EQ(places.LineOf(first), 2u);
            EXPECT_EQ(places.LineOf(last), 4u);
            EXPECT_EQ(places.LineOf(last->getFirstChild()), 5u);
        });
    EXPECT_GT(failures, 10u);
}

/// Xerces takes lack of memory in its own exception, which is none of the host's.
TEST(SourceTextAllocationFailure, LeavesNothingBehind)
{
    const Document document = Parse("<a/>");
    const std::string bytes = "<a>\n" + std::string(100, 'x') + "\n</a>";
    const size_t failures = Sweep(
        [&]
        {
            try
            {
                const SourceText text(bytes, *document);
                const Nuv::UniString line = text.Line(2);
                const Pause pause;
                EXPECT_EQ(line, Nuv::UniString(std::u16string(100, u'x')));
            }
            catch (const Nuv::OutOfMemoryException&)
            {
            }
            catch (const xercesc_3_0::OutOfMemoryException&)
            {
            }
        });
    EXPECT_GT(failures, 3u);
}

} // namespace
