// Makes each allocation of each operation that needs memory fail in turn.

#include "NuvRoot/Channels.hpp"
#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/Guid.hpp"
#include "NuvRoot/UniString.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace Nuv;
using namespace NuvTest::FailingAllocator;

const UniString LongText(u"a text that is longer than a short string, with $ in it");
const UniString OtherText(u"another text that is longer than a short string");

/// A channel that collects what is written, equal to another with the same bytes.
template <class Channel>
struct CollectedBy
{
    Channel channel;

    friend bool operator==(const CollectedBy& left, const CollectedBy& right)
    {
        return left.channel.GetBytes() == right.channel.GetBytes();
    }
};
using Collected = CollectedBy<MemoryOChannel>;
using CollectedBinary = CollectedBy<MemoryOBinaryChannel>;

/// Expects that the operation, which gives a result, fails by the application's exception only.
template <class Operation>
void SweepResult(Operation operation)
{
    EXPECT_GT(Sweep([&] { ExpectOutOfMemoryOnly([&] { operation(); }); }), 0u);
}

// Strings.

TEST(AllocationFailure, OfAStringThatIsMadeLeavesNothingBehind)
{
    const std::string bytes = "a text that is longer than a short string: \xC3\xA4\xFF";
    SweepResult([&] { UniString text(bytes.c_str()); });
    SweepResult([&] { UniString text(bytes, CC_UTF8); });
    SweepResult([] { UniString text(LongText.ToUTF16()); });
    SweepResult([] { UniString text(LongText.ToUTF16(), LongText.GetLength()); });
    SweepResult([] { UniString text(LongText.View()); });
    SweepResult([] { UniString text(LongText); });
    SweepResult([] { UniString text = LongText + OtherText; });
    SweepResult([&] { UniString text = UniString::FromUTF8(bytes); });
}

TEST(AllocationFailure, OfTheBytesOfAStringLeavesNothingBehind)
{
    const UniString text = LongText + UniString(u"\u00E4\u4E2D\xD800");
    SweepResult([&] { text.ToString(); });
    SweepResult([&] { text.ToUTF8(); });
    SweepResult([&] { delete[] text.CopyUTF8(); });
}

TEST(AllocationFailure, OfAnEditLeavesTheStringAsItWas)
{
    SweepKeeping(LongText,
                 [](UniString& text) { text = "an 8-bit text that is longer than a short string"; });
    SweepKeeping(LongText, [](UniString& text) { text = OtherText + OtherText; });
    SweepKeeping(LongText, [](UniString& text) { text += OtherText; });
    SweepKeeping(UniString(u"1234567"), [](UniString& text) { text += u'8'; });
    SweepKeeping(LongText, [](UniString& text) { text.Insert(3, OtherText); });
    SweepKeeping(LongText, [](UniString& text) { text.ReplaceAll(u"$", OtherText); });
    SweepKeeping(LongText, [](UniString& text) { text.ToLower(); });
    SweepKeeping(LongText + u" \u2003", [](UniString& text) { text.Trim(); });
    SweepKeeping(LongText, [](UniString& text) { text.Printf("%S and %s, %d", OtherText, "text", 12345); });
}

TEST(AllocationFailure, OfAFormatWithTooFewArgumentsLeavesTheStringAsItWas)
{
    SweepKeeping(LongText,
                 [](UniString& text)
                 {
                     try
                     {
                         text.Printf("%s and %s", "one that is longer than a short string");
                         FAIL();
                     }
                     catch (const OutOfMemoryException&)
                     {
                         throw;
                     }
                     catch (const GeneralException&)
                     {
                         const Pause pause;
                         EXPECT_EQ(text, LongText);
                     }
                 });
}

TEST(AllocationFailure, OfAConverterLeavesTheBufferUntouched)
{
    SweepKeeping(std::u16string(64, u'?'),
                 [](std::u16string& buffer) {
                     CHANSI2Unicode("a text that is longer than a short string \xC3\xA4", -1, buffer.data(),
                                    64, CC_UTF8);
                 });
    SweepKeeping(std::string(64, '?'), [](std::string& buffer)
                 { CHUnicode2ANSI(LongText.ToUTF16(), -1, buffer.data(), 64, CC_UTF8, false); });
}

TEST(AllocationFailure, OfTheTextOfAGuidLeavesNothingBehind)
{
    SweepResult([] { Guid().ToUniString(); });
}

// Exceptions.

/// An exception with a cause, equal to another that tells the same.
template <class Exception>
struct Told
{
    Exception exception;

    friend bool operator==(const Told& left, const Told& right)
    {
        return left.exception.GetStack() == right.exception.GetStack();
    }
};

template <class Exception>
class AllocationFailureOfExceptions : public testing::Test
{
  protected:
    const NuvException cause{OtherText, "cause.cpp", 1};
    const Exception exception{LongText, "file.cpp", 2, &cause, 3};
};
using Classes = testing::Types<NuvException, GeneralException, RunTimeErrorException, OutOfMemoryException>;
TYPED_TEST_SUITE(AllocationFailureOfExceptions, Classes);

TYPED_TEST(AllocationFailureOfExceptions, LeavesNothingBehind)
{
    SweepResult([&] { TypeParam made(LongText, "file.cpp", 2, &this->cause, 3); });
    SweepResult([&] { TypeParam copy(this->exception); });
    SweepResult([&] { delete this->exception.Clone(); });
    SweepResult([&] { this->exception.GetStack(); });
}

TYPED_TEST(AllocationFailureOfExceptions, LeavesTheExceptionAsItWasWhenItIsAssigned)
{
    SweepKeeping(Told<TypeParam>{TypeParam(OtherText)},
                 [&](Told<TypeParam>& told) { told.exception = this->exception; });
}

TYPED_TEST(AllocationFailureOfExceptions, WritesNothing)
{
    SweepKeeping(Collected(), [&](Collected& collected) { this->exception.Print(collected.channel); });
    SweepKeeping(Collected(), [&](Collected& collected) { this->exception.Dump(collected.channel); });
}

// Channels.

TEST(AllocationFailure, OfAMemoryChannelLeavesItAsItWas)
{
    const std::string bytes = "bytes that are more than a short string has";
    Collected collected;
    collected.channel.Write(bytes.data(), bytes.size());
    SweepKeeping(collected, [&](Collected& more) { more.channel.Write(bytes.data(), bytes.size()); });
    SweepKeeping(CollectedBinary(),
                 [&](CollectedBinary& more) { more.channel.Write(bytes.data(), bytes.size()); });
}

} // namespace
