#include "tests/NuvXMLUtils/UntrustedInput.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <gtest/gtest.h>

#include <new>

namespace
{

using namespace NuvTest::FailingAllocator;

TEST(AllocationFailure, OfAParseLeavesTheLimitsInForce)
{
    ParserLimits limits;
    limits.maxNesting = 1;
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        parser.SetLimits(limits);
        FailAt(nth, Mode::Once);
        try
        {
            NuvTest::LoadTree(parser, "<a/>");
        }
        catch (const std::bad_alloc&)
        {
            // for the message
        }
        if (!Disarm())
            return;
        ASSERT_TRUE(NuvTest::LoadTree(parser, "<a/>").isLoaded)
            << "after allocation " << nth << " has failed";
        ASSERT_EQ(NuvTest::LoadTree(parser, "<a><b/></a>"),
                  NuvTest::Refused(1, u"elements are nested deeper than the limit of 1 levels"))
            << "after allocation " << nth << " has failed";
    }
}

TEST(AllocationFailure, OfARefusalIsReported)
{
    ParserLimits limits;
    limits.maxNesting = 1;
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        parser.SetLimits(limits);
        NuvTest::Loaded loaded;
        FailAt(nth, Mode::Once);
        try
        {
            loaded = NuvTest::LoadTree(parser, "<a><b/></a>");
        }
        catch (const std::bad_alloc&)
        {
            // for the message
        }
        if (!Disarm())
            return;
        ASSERT_FALSE(loaded.isLoaded) << "with allocation " << nth << " failing";
        ASSERT_TRUE(NuvTest::LoadTree(parser, "<a/>").isLoaded)
            << "after allocation " << nth << " has failed";
    }
}

} // namespace
