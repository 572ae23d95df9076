// Makes each allocation of the conversions between code pages fail in turn, those of ICU among them.

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/UniString.hpp"
#include "tests/support/FailingAllocator.hpp"
#include "tests/support/FailingICU.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace
{

using namespace Nuv;
using namespace NuvTest::FailingAllocator;
using NuvTest::FailingICU;

/// Runs the operation with ICU as in a fresh process.
template <class Operation>
void SweepConversion(Operation operation)
{
    const size_t failures = Sweep(
        [&]
        {
            std::optional<FailingICU> icu;
            {
                const Pause pause;
                icu.emplace();
            }
            ExpectOutOfMemoryOnly([&] { operation(); });
            const Pause pause;
            icu.reset();
        });
    EXPECT_GT(failures, 1u);
}

class AllocationFailureOfCodePages : public testing::TestWithParam<const char*>
{
  protected:
    NuvTest::LocalCodePageScope codePage{GetParam()};
    const UniString text{u"a text that is longer than a short string: \u00E4\u4E2D\xD800"};
    const std::string bytes = text.ToString();
};

TEST_P(AllocationFailureOfCodePages, LeavesNothingBehindWhenTextIsDecoded)
{
    SweepConversion([&] { UniString decoded(bytes); });
    SweepConversion([&] { CHANSI2Unicode(bytes.c_str(), -1, nullptr, 0, CC_Default); });
}

TEST_P(AllocationFailureOfCodePages, LeavesNothingBehindWhenTextIsEncoded)
{
    SweepConversion([&] { text.ToString(); });
    SweepConversion([&] { CHUnicode2ANSI(text.ToUTF16(), -1, nullptr, 0, CC_Default, true); });
}

TEST_P(AllocationFailureOfCodePages, LeavesTheCodePageAsItWas)
{
    const NuvTest::LocalCodePageScope before("UTF-8");
    SweepConversion(
        [&]
        {
            bool isSet = false;
            try
            {
                SetLocalCodePage(GetParam());
                isSet = true;
            }
            catch (const OutOfMemoryException&)
            {
            }
            const Pause pause;
            EXPECT_STREQ(GetLocalCodePage(), isSet ? GetParam() : "UTF-8");
            SetLocalCodePage("UTF-8");
        });
}

INSTANTIATE_TEST_SUITE_P(CodePages, AllocationFailureOfCodePages,
                         testing::Values("windows-1252", "Shift_JIS", "ISO-2022-JP", "UTF-16", "HZ"),
                         [](const auto& test) { return std::to_string(test.index); });

TEST(AllocationFailureOfACodePageName, IsNotTakenForAnUnknownName)
{
    bool isUnknown = false;
    SweepConversion(
        [&]
        {
            try
            {
                SetLocalCodePage("no-such-code-page");
            }
            catch (const OutOfMemoryException&)
            {
            }
            catch (const GeneralException& exception)
            {
                const Pause pause;
                isUnknown = exception.GetMessage() == u"Unknown code page: no-such-code-page";
            }
        });
    EXPECT_TRUE(isUnknown) << "with memory enough";
}

/// Asks a fresh process for its code page, with one allocation after the other failing, and ends it with 0
/// when only the application's exception came of that.
[[noreturn]] void AskForTheCodePage()
{
    setenv("LC_ALL", "C", 1);
    for (long nth = 1;; ++nth)
    {
        const FailingICU icu;
        FailAt(nth, Mode::Once);
        ExpectOutOfMemoryOnly([] { GetLocalCodePage(); });
        if (!Disarm())
            std::_Exit(nth > 2 && GetLocalCodePage() == std::string("UTF-8") ? 0 : 1);
    }
}

TEST(AllocationFailureOfACodePageNameDeathTest, IsToldWhenTheEnvironmentIsAskedAndAskedAgain)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(AskForTheCodePage(), testing::ExitedWithCode(0), "");
}

} // namespace
