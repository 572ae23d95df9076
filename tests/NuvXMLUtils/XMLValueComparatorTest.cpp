#include "CompareSupport.hpp"

#include "tests/support/PrivateAccess.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace NuvTest
{

struct ValueComparatorIsEqual
{
    using Member = bool (NuvXML::XMLValueComparator::*)() const;
    friend Member Reveal(ValueComparatorIsEqual);
};
template struct Revealed<ValueComparatorIsEqual, &NuvXML::XMLValueComparator::IsEqual>;

} // namespace NuvTest

namespace
{

using namespace CompareTests;
using namespace NuvXML;

/// The answer for two values, which must be the same for strings and for text nodes.
template <class Comparator>
bool AreEqual(const Nuv::UniString& left, const Nuv::UniString& right, double epsilon = 1e-5)
{
    StrictOrderAutoValueCompareOptions options;
    options.SetDoubleEps(epsilon);
    const Document document = EmptyDocument();
    const bool forStrings = Comparator().CompareValues(left, right, options);
    const bool forTextNodes = Comparator().CompareValues(document->createTextNode(left.ToUTF16()),
                                                         document->createTextNode(right.ToUTF16()), options);
    EXPECT_EQ(forStrings, forTextNodes) << left << " and " << right;
    return forStrings;
}

const std::vector<Nuv::UniString> InterestingValues = {
    u"",           u" ",          u"0",           u"-0",        u"0.0",    u"1",          u"1.0",   u" 1 ",
    u"+1",         u"1e0",        u"1.00001",     u"1.000009",  u"2",      u"7",          u"1e308", u"-1e308",
    u"1e999",      u"1e-320",     u"0x1F",        u"inf",       u"nan",    u"yes",        u"Yes",   u" YES ",
    u"a b",        u"a  b",       u"stra\u00DFe", u"STRASSE",   u"\u0661", u"\u00A0 1\t", u"1,5",   u"1.5",
    u"\U00010400", u"\U00010428", u"2147483647",  u"2147483648"};

const double InterestingEpsilons[] = {1e-5, 0.0, -1.0, 1.0, 1e300, std::numeric_limits<double>::quiet_NaN()};

TEST(XMLCompareString, IgnoresCaseAndWhiteSpaceAtBothEnds)
{
    EXPECT_TRUE(AreEqual<XMLCompareString>(u" Yes\t", u"yes"));
    EXPECT_TRUE(AreEqual<XMLCompareString>(u"\u00A0Yes\u2003", u"yes"));
    EXPECT_FALSE(AreEqual<XMLCompareString>(u"yes", u"no"));
}

TEST(XMLCompareString, ComparesInnerWhiteSpaceAsItStands)
{
    EXPECT_FALSE(AreEqual<XMLCompareString>(u"one two", u"one  two"));
}

TEST(XMLCompareString, FoldsCaseFullyAndOutsideTheBasicPlaneToo)
{
    EXPECT_TRUE(AreEqual<XMLCompareString>(u"stra\u00DFe", u"STRASSE"));
    EXPECT_TRUE(AreEqual<XMLCompareString>(u"\U00010400", u"\U00010428"));
}

TEST(XMLCompareString, TellsTheEmptyTextFromAnyOther)
{
    EXPECT_TRUE(AreEqual<XMLCompareString>(u"", u" \n"));
    EXPECT_FALSE(AreEqual<XMLCompareString>(u"", u"x"));
}

TEST(XMLCompareStringCaseSensitive, IgnoresWhiteSpaceAtBothEndsOnly)
{
    EXPECT_TRUE(AreEqual<XMLCompareStringCaseSensitive>(u" Yes", u"Yes "));
    EXPECT_FALSE(AreEqual<XMLCompareStringCaseSensitive>(u" Yes", u"yes"));
}

TEST(XMLCompareStringCaseSensitive, IsAStringComparator)
{
    const std::unique_ptr<XMLCompareString> comparator = std::make_unique<XMLCompareStringCaseSensitive>();
    EXPECT_FALSE(comparator->CompareValues(Nuv::UniString(u"Yes"), Nuv::UniString(u"yes"),
                                           StrictOrderAutoValueCompareOptions()));
}

TEST(XMLCompareInt, ComparesTheNumbers)
{
    EXPECT_TRUE(AreEqual<XMLCompareInt>(u"7", u"7"));
    EXPECT_TRUE(AreEqual<XMLCompareInt>(u" 7", u"+007"));
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"7", u"8"));
}

TEST(XMLCompareInt, CallsNothingEqualThatIsNoInteger)
{
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"7", u"seven"));
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"seven", u"seven"));
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"7.0", u"7.0"));
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"", u""));
    EXPECT_FALSE(AreEqual<XMLCompareInt>(u"2147483648", u"2147483648"));
}

TEST(XMLCompareDouble, AcceptsADifferenceBelowTheEpsilon)
{
    EXPECT_TRUE(AreEqual<XMLCompareDouble>(u"1.0", u"1.000009"));
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"1.0", u"1.00001"));
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"1", u"1.5", 0.5)) << "a difference equal to the epsilon";
    EXPECT_TRUE(AreEqual<XMLCompareDouble>(u"1.5", u"1", 0.51));
}

TEST(XMLCompareDouble, AsksForIdenticalNumbersWhenTheEpsilonIsZero)
{
    EXPECT_TRUE(AreEqual<XMLCompareDouble>(u"1.0", u"1", 0.0));
    EXPECT_TRUE(AreEqual<XMLCompareDouble>(u"1.0", u"1", -0.0));
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"1.0", u"1.0000000001", 0.0));
}

TEST(XMLCompareDouble, CallsNothingEqualWhenTheEpsilonIsNegative)
{
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"1.0", u"1.0", -1.0));
}

TEST(XMLCompareDouble, CallsNothingEqualThatIsNoNumber)
{
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"one", u"one"));
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"1", u"one"));
    EXPECT_FALSE(AreEqual<XMLCompareDouble>(u"", u""));
}

TEST(XMLCompareAuto, ComparesTwoNumbersAsNumbers)
{
    EXPECT_TRUE(AreEqual<XMLCompareAuto>(u"2", u"2.0"));
    EXPECT_TRUE(AreEqual<XMLCompareAuto>(u"1.0", u"1.000009"));
    EXPECT_FALSE(AreEqual<XMLCompareAuto>(u"1.0", u"1.00001"));
}

TEST(XMLCompareAuto, ComparesAnythingElseAsStrings)
{
    EXPECT_FALSE(AreEqual<XMLCompareAuto>(u"2", u"two"));
    EXPECT_TRUE(AreEqual<XMLCompareAuto>(u"N/A", u"n/a"));
    EXPECT_TRUE(AreEqual<XMLCompareAuto>(u"", u""));
}

TEST(XMLCompareAuto, CallsIdenticalNumbersDifferentWhenTheEpsilonIsNegative)
{
    EXPECT_FALSE(AreEqual<XMLCompareAuto>(u"1.0", u"1.0", -1.0));
    EXPECT_TRUE(AreEqual<XMLCompareAuto>(u"one", u"one", -1.0));
}

/// That `Auto` decides about two numbers as XMLCompareDouble, and about anything else as `Text`.
template <class Auto, class Text>
void ExpectToDecideAsWhatFitsBothValues()
{
    // A number equals itself when the epsilon allows everything.
    const auto isNumber = [](const Nuv::UniString& text)
    { return AreEqual<XMLCompareDouble>(text, text, 1e300); };
    for (const double epsilon : InterestingEpsilons)
        for (const Nuv::UniString& left : InterestingValues)
            for (const Nuv::UniString& right : InterestingValues)
            {
                const bool expected = isNumber(left) && isNumber(right)
                                          ? AreEqual<XMLCompareDouble>(left, right, epsilon)
                                          : AreEqual<Text>(left, right, epsilon);
                EXPECT_EQ(AreEqual<Auto>(left, right, epsilon), expected)
                    << left << " and " << right << ", epsilon " << epsilon;
            }
}

TEST(XMLCompareAuto, DecidesAsTheComparatorThatFitsBothValues)
{
    ExpectToDecideAsWhatFitsBothValues<XMLCompareAuto, XMLCompareString>();
}

TEST(XMLCompareAutoCaseSensitive, DecidesAsTheComparatorThatFitsBothValues)
{
    ExpectToDecideAsWhatFitsBothValues<XMLCompareAutoCaseSensitive, XMLCompareStringCaseSensitive>();
}

TEST(XMLValueComparator, TakesAMissingTextNodeForTheEmptyText)
{
    const StrictOrderAutoValueCompareOptions options;
    const Document document = EmptyDocument();
    const DOMText* const missing = nullptr;
    const DOMText* const empty = document->createTextNode(u"");
    const DOMText* const word = document->createTextNode(u"word");
    XMLCompareAuto comparator;
    EXPECT_TRUE(comparator.CompareValues(missing, missing, options));
    EXPECT_TRUE(comparator.CompareValues(missing, empty, options));
    EXPECT_FALSE(comparator.CompareValues(missing, word, options));
    EXPECT_FALSE(comparator.CompareValues(word, missing, options));
    EXPECT_FALSE(XMLCompareInt().CompareValues(missing, missing, options));
}

/// Decides about the values that it has before any CompareValues.
template <class Comparator>
bool IsEqualAtFirst()
{
    const Comparator comparator;
    return (comparator.*Reveal(NuvTest::ValueComparatorIsEqual()))();
}

TEST(XMLValueComparator, HasTwoEmptyStringsAtFirst)
{
    EXPECT_TRUE(IsEqualAtFirst<XMLCompareAuto>());
    EXPECT_TRUE(IsEqualAtFirst<XMLCompareString>());
    EXPECT_TRUE(IsEqualAtFirst<XMLCompareStringCaseSensitive>());
    EXPECT_FALSE(IsEqualAtFirst<XMLCompareInt>());
    EXPECT_FALSE(IsEqualAtFirst<XMLCompareDouble>());
}

TEST(XMLValueComparator, HasIsEqualBeforeItsDestructor)
{
    EXPECT_EQ(NuvTest::SlotOf(Reveal(NuvTest::ValueComparatorIsEqual())), 0u);
}

TEST(XMLValueComparator, ComparesTheValuesOfTheLastCall)
{
    const StrictOrderAutoValueCompareOptions options;
    const Document document = EmptyDocument();
    XMLCompareAuto comparator;
    EXPECT_FALSE(comparator.CompareValues(Nuv::UniString(u"a"), Nuv::UniString(u"b"), options));
    EXPECT_TRUE(
        comparator.CompareValues(document->createTextNode(u"c"), document->createTextNode(u"C"), options));
    EXPECT_TRUE(comparator.CompareValues(Nuv::UniString(u"1"), Nuv::UniString(u"1.0"), options));
}

/// Reads what a subclass can read.
class ReadingComparator : public XMLValueComparator
{
  public:
    std::u16string read;
    const IXMLCompareOptions* options = nullptr;

    const IXMLCompareOptions* OptionsBeforeUse() const { return GetOptions(); }

  private:
    bool IsEqual() const override
    {
        auto& self = const_cast<ReadingComparator&>(*this);
        self.read = std::u16string(LeftValue()) + u"|" + std::u16string(RightValue());
        self.options = GetOptions();
        return true;
    }
};

TEST(XMLValueComparator, ShowsASubclassTheValuesAndTheOptions)
{
    const StrictOrderAutoValueCompareOptions options;
    const Document document = EmptyDocument();
    ReadingComparator comparator;
    EXPECT_EQ(comparator.OptionsBeforeUse(), nullptr);
    comparator.CompareValues(Nuv::UniString(u" a"), Nuv::UniString(u"b "), options);
    EXPECT_EQ(comparator.read, u" a|b ");
    EXPECT_EQ(comparator.options, &options);
    comparator.CompareValues(document->createTextNode(u"c"), nullptr, options);
    EXPECT_EQ(comparator.read, u"c|");
}

TEST(XMLValueComparator, CopiesItsValues)
{
    const StrictOrderAutoValueCompareOptions options;
    ReadingComparator original;
    original.CompareValues(Nuv::UniString(u"a"), Nuv::UniString(u"b"), options);
    ReadingComparator copy(original);
    EXPECT_EQ(copy.OptionsBeforeUse(), &options);
    ReadingComparator assigned;
    assigned = original;
    EXPECT_EQ(assigned.OptionsBeforeUse(), &options);
}

} // namespace
