#include "NuvRoot/Exceptions.hpp"

#include "NuvRoot/Channels.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <type_traits>

namespace
{

using namespace Nuv;
using NuvTest::SlotOf;
using NuvTest::SlotsFrom;

template <class Class>
struct ClassName;
template <>
struct ClassName<NuvException>
{
    static constexpr const char* Text = "NuvException";
};
template <>
struct ClassName<GeneralException>
{
    static constexpr const char* Text = "GeneralException";
};
template <>
struct ClassName<RunTimeErrorException>
{
    static constexpr const char* Text = "RunTimeErrorException";
};
template <>
struct ClassName<OutOfMemoryException>
{
    static constexpr const char* Text = "OutOfMemoryException";
};

template <class Class>
class Exceptions : public testing::Test
{
};
using Classes = testing::Types<NuvException, GeneralException, RunTimeErrorException, OutOfMemoryException>;
TYPED_TEST_SUITE(Exceptions, Classes);

TYPED_TEST(Exceptions, TellNothingWhenDefaultConstructed)
{
    const TypeParam exception;
    EXPECT_STREQ(exception.GetName(), ClassName<TypeParam>::Text);
    EXPECT_EQ(exception.GetID(), 0);
    EXPECT_EQ(exception.GetMessage(), u"");
    EXPECT_EQ(exception.GetFileName(), nullptr);
    EXPECT_EQ(exception.GetLineNumber(), 0u);
    EXPECT_EQ(exception.GetCause(), nullptr);
}

TYPED_TEST(Exceptions, HaveDefaultsForAllButTheMessage)
{
    const TypeParam exception(u"The message.");
    EXPECT_EQ(exception.GetMessage(), u"The message.");
    EXPECT_EQ(exception.GetID(), 0);
    EXPECT_EQ(exception.GetFileName(), nullptr);
    EXPECT_EQ(exception.GetLineNumber(), 0u);
    EXPECT_EQ(exception.GetCause(), nullptr);
}

TYPED_TEST(Exceptions, TellWhatTheyWereMadeOf)
{
    const RunTimeErrorException cause(u"The cause.");
    const TypeParam exception(u"The message.", "File", 42, &cause, -36);
    EXPECT_EQ(exception.GetMessage(), u"The message.");
    EXPECT_STREQ(exception.GetFileName(), "File");
    EXPECT_EQ(exception.GetLineNumber(), 42u);
    EXPECT_EQ(exception.GetID(), -36);
    ASSERT_NE(exception.GetCause(), nullptr);
    EXPECT_NE(exception.GetCause(), static_cast<const NuvException*>(&cause)) << "the cause is copied";
    EXPECT_STREQ(exception.GetCause()->GetName(), "RunTimeErrorException");
    EXPECT_EQ(exception.GetCause()->GetMessage(), u"The cause.");
}

TYPED_TEST(Exceptions, CloneThemselvesWithTheirCause)
{
    const OutOfMemoryException cause(u"The cause.", "CauseFile", 1);
    auto original = std::make_unique<TypeParam>(u"The message.", "File", 42, &cause, -36);
    const std::unique_ptr<NuvException> clone(original->Clone());
    original.reset();
    EXPECT_NE(dynamic_cast<TypeParam*>(clone.get()), nullptr);
    EXPECT_STREQ(clone->GetName(), ClassName<TypeParam>::Text);
    EXPECT_EQ(clone->GetMessage(), u"The message.");
    EXPECT_STREQ(clone->GetFileName(), "File");
    EXPECT_EQ(clone->GetLineNumber(), 42u);
    EXPECT_EQ(clone->GetID(), -36);
    EXPECT_NE(dynamic_cast<OutOfMemoryException*>(clone->GetCause()), nullptr);
    EXPECT_EQ(clone->GetCause()->GetMessage(), u"The cause.");
}

TYPED_TEST(Exceptions, AreCopiedWithTheirCause)
{
    const GeneralException cause(u"The cause.");
    const TypeParam original(u"The message.", "File", 42, &cause, -36);
    const TypeParam copy(original);
    TypeParam assigned;
    assigned = original;
    for (const TypeParam* exception : {&copy, static_cast<const TypeParam*>(&assigned)})
    {
        EXPECT_EQ(exception->GetStack(), original.GetStack());
        EXPECT_EQ(exception->GetID(), -36);
        EXPECT_NE(exception->GetCause(), original.GetCause());
    }
}

TYPED_TEST(Exceptions, SurviveAssignmentOfThemselves)
{
    const GeneralException cause(u"The cause.");
    TypeParam exception(u"The message.", "File", 42, &cause);
    const UniString stack = exception.GetStack();
    const TypeParam& alias = exception;
    exception = alias;
    EXPECT_EQ(exception.GetStack(), stack);
}

TEST(ExceptionOfACaller, HasTheMessageThatItGivesToTheVirtualBaseItself)
{
    struct GivesIt : RunTimeErrorException
    {
        explicit GivesIt(const UniString& text)
            : NuvException(text)
        {
        }
    };
    struct LeavesItToItsBase : RunTimeErrorException
    {
        explicit LeavesItToItsBase(const UniString& text)
            : RunTimeErrorException(text)
        {
        }
    };
    EXPECT_EQ(GivesIt(u"The message.").GetMessage(), u"The message.");
    EXPECT_EQ(LeavesItToItsBase(u"The message.").GetMessage(), u"");
}

TYPED_TEST(Exceptions, AreCaughtAsTheirBase)
{
    const auto raise = [] { throw TypeParam(u"The message."); };
    EXPECT_THROW(raise(), TypeParam);
    EXPECT_THROW(raise(), NuvException);
    try
    {
        raise();
    }
    catch (const NuvException& exception)
    {
        EXPECT_STREQ(exception.GetName(), ClassName<TypeParam>::Text);
        EXPECT_EQ(exception.GetMessage(), u"The message.");
    }
}

TEST(NuvException, HasItsOperationsInTheirOrder)
{
    const std::vector<size_t> slots{SlotOf(&NuvException::GetName),
                                    SlotOf(&NuvException::GetID),
                                    SlotOf(&NuvException::GetMessage),
                                    SlotOf(&NuvException::GetFileName),
                                    SlotOf(&NuvException::GetLineNumber),
                                    SlotOf(&NuvException::Clone),
                                    SlotOf(&NuvException::Print),
                                    SlotOf(&NuvException::Dump),
                                    SlotOf<NuvException*()>(&NuvException::GetCause),
                                    SlotOf<const NuvException*() const>(&NuvException::GetCause),
                                    SlotOf(&NuvException::GetStack)};
    EXPECT_EQ(slots, SlotsFrom(2, 11)) << "after the destructor";
}

TEST(NuvException, IsAVirtualBaseAndNoStandardException)
{
    EXPECT_FALSE((std::is_base_of_v<std::exception, RunTimeErrorException>));
    EXPECT_TRUE((std::is_base_of_v<GeneralException, RunTimeErrorException>));
    EXPECT_TRUE((std::is_base_of_v<GeneralException, OutOfMemoryException>));
    EXPECT_TRUE((std::is_base_of_v<std::bad_alloc, OutOfMemoryException>));
    struct TwoBases : RunTimeErrorException, OutOfMemoryException
    {
        const char* GetName() const override { return "TwoBases"; }
        NuvException* Clone() const override { return new TwoBases(*this); }
    };
    EXPECT_TRUE((std::is_convertible_v<TwoBases*, NuvException*>)) << "one NuvException, not two";
}

TEST(NuvException, LetsItsCauseBeChanged)
{
    const GeneralException cause(u"The cause.");
    NuvException exception(u"The message.", nullptr, 0, &cause);
    ASSERT_NE(exception.GetCause(), nullptr);
    *exception.GetCause() = NuvException(u"Another cause.");
    EXPECT_EQ(std::as_const(exception).GetCause()->GetMessage(), u"Another cause.");
}

TEST(NuvException, PrintsOneLineInUTF8)
{
    const GeneralException cause(u"The cause.");
    MemoryOChannel channel;
    RunTimeErrorException(u"The \u20AC message.", "File", 42, &cause).Print(channel);
    GeneralException(u"No place.").Print(channel);
    EXPECT_EQ(channel.GetBytes(), "RunTimeErrorException: The \xE2\x82\xAC message. (File:42)\n"
                                  "GeneralException: No place.\n");
}

TEST(NuvException, TellsTheStackOfItsCauses)
{
    const GeneralException first(u"First.", "A", 1);
    const RunTimeErrorException second(u"Second.", "B", 2, &first);
    const NuvException third(u"Third.", nullptr, 0, &second);
    constexpr char16_t Stack[] = u"NuvException: Third.\n"
                                 u"RunTimeErrorException: Second. (B:2)\n"
                                 u"GeneralException: First. (A:1)\n";
    EXPECT_EQ(third.GetStack(), Stack);
    MemoryOChannel channel;
    third.Dump(channel);
    EXPECT_EQ(channel.GetBytes(), UniString(Stack).ToUTF8());
}

} // namespace
