#include "NuvRoot/Channels.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace
{

using namespace NuvXML;
using Nuv::NuvException;
using Nuv::UniString;

/// What tells the exception classes of the library apart.
template <class Exception>
struct Traits;

template <>
struct Traits<DOMBuilderException>
{
    using Base = Nuv::RunTimeErrorException;
    static constexpr char Name[] = "DOMBuilderException";
};

template <>
struct Traits<DOMReaderException>
{
    using Base = Nuv::RunTimeErrorException;
    static constexpr char Name[] = "DOMReaderException";
};

template <>
struct Traits<XMLIOChannelException>
{
    using Base = Nuv::RunTimeErrorException;
    static constexpr char Name[] = "XMLIOChannelException";
};

template <>
struct Traits<XMLOChannelException>
{
    using Base = XMLIOChannelException;
    static constexpr char Name[] = "XMLOChannelException";
};

template <>
struct Traits<XMLIChannelException>
{
    using Base = XMLIOChannelException;
    static constexpr char Name[] = "XMLIChannelException";
};

/// Everything that an exception tells, as one text.
std::string Told(const NuvException& exception)
{
    std::string text = exception.GetName();
    text += '|' + exception.GetMessage().ToUTF8() + '|';
    text += exception.GetFileName() ? exception.GetFileName() : "no file";
    text += '|' + std::to_string(exception.GetLineNumber()) + '|' + std::to_string(exception.GetID());
    return exception.GetCause() ? text + " <- " + Told(*exception.GetCause()) : text;
}

template <class Exception>
class ExceptionPattern : public testing::Test
{
  protected:
    static std::string Name() { return Traits<Exception>::Name; }

    static Exception WithCause()
    {
        return Exception("what", "Unit", 7, Nuv::GeneralException(u"why", "Cause", 8, nullptr, 9));
    }

    static constexpr char Cause[] = " <- GeneralException|why|Cause|8|9";
};

using LibraryExceptions = testing::Types<DOMBuilderException, DOMReaderException, XMLIOChannelException,
                                         XMLOChannelException, XMLIChannelException>;
TYPED_TEST_SUITE(ExceptionPattern, LibraryExceptions);

TYPED_TEST(ExceptionPattern, TakesAnEightBitMessage)
{
    const TypeParam exception("what", "Unit", 7);
    EXPECT_EQ(Told(exception), this->Name() + "|what|Unit|7|-36");
    EXPECT_EQ(exception.GetCause(), nullptr);
}

TYPED_TEST(ExceptionPattern, ReadsAnEightBitMessageInTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(TypeParam("\x80", "Unit", 7).GetMessage(), UniString(u"€"));
}

TYPED_TEST(ExceptionPattern, TakesAUnicodeMessage)
{
    EXPECT_EQ(Told(TypeParam(UniString(u"Größe"), "Unit", 7)), this->Name() + "|Größe|Unit|7|-36");
}

TYPED_TEST(ExceptionPattern, TakesACauseBesideAnEightBitMessage)
{
    EXPECT_EQ(Told(this->WithCause()), this->Name() + "|what|Unit|7|-36" + this->Cause);
}

TYPED_TEST(ExceptionPattern, TakesACauseBesideAUnicodeMessage)
{
    const TypeParam exception(UniString(u"what"), "Unit", 7, this->WithCause());
    EXPECT_EQ(Told(exception), this->Name() + "|what|Unit|7|-36 <- " + Told(this->WithCause()));
}

TYPED_TEST(ExceptionPattern, CopiesTheCauseWithItsClass)
{
    const TypeParam cause("why", "Cause", 8);
    const TypeParam exception("what", "Unit", 7, cause);
    EXPECT_NE(exception.GetCause(), &cause);
    EXPECT_NE(dynamic_cast<const TypeParam*>(exception.GetCause()), nullptr);
}

TYPED_TEST(ExceptionPattern, IsEmptyByDefault)
{
    const TypeParam exception;
    EXPECT_EQ(Told(exception), this->Name() + "||no file|0|-36");
    EXPECT_EQ(exception.GetCause(), nullptr);
}

TYPED_TEST(ExceptionPattern, TakesNullForNoMessageAndNoFile)
{
    EXPECT_EQ(Told(TypeParam(static_cast<const char*>(nullptr), nullptr, 0)),
              this->Name() + "||no file|0|-36");
}

TYPED_TEST(ExceptionPattern, CopiesEverything)
{
    const TypeParam original = this->WithCause();
    const TypeParam copy(original);
    EXPECT_EQ(Told(copy), Told(original));
    EXPECT_NE(copy.GetCause(), original.GetCause());
}

TYPED_TEST(ExceptionPattern, AssignsEverything)
{
    const TypeParam original = this->WithCause();
    TypeParam assigned("before", "Before", 1, original);
    assigned = original;
    EXPECT_EQ(Told(assigned), Told(original));
    EXPECT_NE(assigned.GetCause(), original.GetCause());
}

TYPED_TEST(ExceptionPattern, IsUnchangedWhenAssignedToItself)
{
    TypeParam exception = this->WithCause();
    const TypeParam& same = exception;
    exception = same;
    EXPECT_EQ(Told(exception), Told(this->WithCause()));
}

TYPED_TEST(ExceptionPattern, ClonesItselfWithItsClass)
{
    const TypeParam original = this->WithCause();
    const std::unique_ptr<NuvException> clone(original.Clone());
    EXPECT_NE(dynamic_cast<TypeParam*>(clone.get()), nullptr);
    EXPECT_EQ(Told(*clone), Told(original));
}

TYPED_TEST(ExceptionPattern, HasTheBaseThatItShouldHave)
{
    using Base = typename Traits<TypeParam>::Base;
    EXPECT_TRUE((std::is_convertible_v<TypeParam*, Base*>));
    EXPECT_EQ(sizeof(TypeParam), sizeof(Base)) << "no data of its own";
}

TYPED_TEST(ExceptionPattern, IsCaughtAsEachOfItsBases)
{
    EXPECT_THROW(throw this->WithCause(), typename Traits<TypeParam>::Base);
    EXPECT_THROW(throw this->WithCause(), Nuv::RunTimeErrorException);
    EXPECT_THROW(throw this->WithCause(), Nuv::GeneralException);
    EXPECT_THROW(throw this->WithCause(), NuvException);
}

TYPED_TEST(ExceptionPattern, PrintsItselfUnderItsName)
{
    Nuv::MemoryOChannel channel;
    const NuvException& exception = this->WithCause();
    exception.Print(channel);
    EXPECT_EQ(channel.GetBytes(), this->Name() + ": what (Unit:7)\n");
}

TEST(ExceptionSlots, AreThoseOfTheRoot)
{
    using NuvTest::SlotOf;
    const std::vector<size_t> slots{
        SlotOf<const char*() const>(&NuvException::GetName),
        SlotOf<int() const>(&NuvException::GetID),
        SlotOf<const UniString&() const>(&NuvException::GetMessage),
        SlotOf<const char*() const>(&NuvException::GetFileName),
        SlotOf<unsigned int() const>(&NuvException::GetLineNumber),
        SlotOf<NuvException*() const>(&NuvException::Clone),
        SlotOf<void(Nuv::OChannel&) const>(&NuvException::Print),
        SlotOf<void(Nuv::OChannel&) const>(&NuvException::Dump),
        SlotOf<NuvException*()>(&NuvException::GetCause),
        SlotOf<const NuvException*() const>(&NuvException::GetCause),
        SlotOf<UniString() const>(&NuvException::GetStack),
    };
    EXPECT_EQ(slots, NuvTest::SlotsFrom(2, 11));
}

TEST(XMLIOChannelException, CatchesTheExceptionsOfBothDirections)
{
    EXPECT_THROW(throw XMLOChannelException("out", "Unit", 1), XMLIOChannelException);
    EXPECT_THROW(throw XMLIChannelException("in", "Unit", 1), XMLIOChannelException);
    EXPECT_FALSE((std::is_base_of_v<XMLOChannelException, XMLIChannelException>));
    EXPECT_FALSE((std::is_base_of_v<XMLIChannelException, XMLOChannelException>));
}

TEST(DOMBuilderException, IsNoChannelException)
{
    EXPECT_FALSE((std::is_base_of_v<XMLIOChannelException, DOMBuilderException>));
    EXPECT_FALSE((std::is_base_of_v<XMLIOChannelException, DOMReaderException>));
}

} // namespace
