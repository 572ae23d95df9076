#include "CompareSupport.hpp"
#include "ForeignText.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <xercesc/dom/DOMEntityReference.hpp>

#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using NuvTest::SlotOf;
using NuvTest::SlotsFrom;

/// Makes the protected operations of a class of options callable.
template <class Options>
class Exposed : public Options
{
  public:
    using Options::AcceptAttribute;
    using Options::AreNodeNamesEqual;
    using Options::CanOptionsChangeAndEffectNotChildNodes;
    using Options::Clone;
    using Options::CompareSpecialTypeNodes;
    using Options::GetAttributeValueComparator;
    using Options::GetValueComparator;
    using Options::PrepareNodeComparator;
};

class ExposedRuled : public Exposed<AttrRuledCompareOptions>
{
  public:
    using AttrRuledCompareOptions::DoValueTypeSpecificUpdates;
    using AttrRuledCompareOptions::GetTypeAttribute;
    using AttrRuledCompareOptions::SetCurrentValueType;
};

using ExposedStandard = Exposed<StrictOrderAutoValueCompareOptions>;

template <class Expected, class Made>
bool IsA(Made* made)
{
    const std::unique_ptr<Made> owned(made);
    return typeid(*made) == typeid(Expected);
}

/// The epsilon after preparing for an element pair with these attributes.
double EpsilonFor(const std::string& leftAttributes, const std::string& rightAttributes)
{
    const Document left = Parse("<e " + leftAttributes + "/>");
    const Document right = Parse("<e " + rightAttributes + "/>");
    ExposedRuled options;
    EXPECT_TRUE(IsA<XMLCompareStrictOrder>(
        options.PrepareNodeComparator(left->getDocumentElement(), right->getDocumentElement())));
    return options.GetDoubleEps();
}

/// The class of value comparator for the text of an element pair with these attributes.
template <class Expected>
bool IsComparedBy(const std::string& leftAttributes, const std::string& rightAttributes)
{
    const Document left = Parse("<e " + leftAttributes + "/>");
    const Document right = Parse("<e " + rightAttributes + "/>");
    ExposedRuled options;
    delete options.PrepareNodeComparator(left->getDocumentElement(), right->getDocumentElement());
    return IsA<Expected>(options.GetValueComparator());
}

void ExpectEqual(const std::string& left, const std::string& right)
{
    EXPECT_NO_THROW(Compare(left, right, AttrRuledCompareOptions())) << left << " and " << right;
}

void ExpectTextDifference(const std::string& left, const std::string& right)
{
    EXPECT_THROW(Compare(left, right, AttrRuledCompareOptions()), TextNodeValuesDontMatchException)
        << left << " and " << right;
}

TEST(CompareOptionsSlots, StandInTheOrderOfTheInterface)
{
    const std::vector<size_t> slots{
        SlotOf(&ExposedStandard::Clone),
        SlotOf(&ExposedStandard::GetDoubleEps),
        SlotOf(&ExposedStandard::AcceptAttribute),
        SlotOf(&ExposedStandard::AreNodeNamesEqual),
        SlotOf(&ExposedStandard::CompareSpecialTypeNodes),
        SlotOf(&ExposedStandard::GetAttributeValueComparator),
        SlotOf(&ExposedStandard::GetValueComparator),
        SlotOf(&ExposedStandard::PrepareNodeComparator),
        SlotOf(&ExposedStandard::CanOptionsChangeAndEffectNotChildNodes),
        SlotOf(&ExposedStandard::SetDoubleEps),
        SlotOf(&ExposedRuled::SetTypeDeciderAtt),
        SlotOf(&ExposedRuled::GetTypeDeciderAtt),
        SlotOf(&ExposedRuled::SetEpsAtt),
        SlotOf(&ExposedRuled::GetEpsAtt),
        SlotOf(&ExposedRuled::GetTypeAttribute),
        SlotOf(&ExposedRuled::SetCurrentValueType),
        SlotOf(&ExposedRuled::DoValueTypeSpecificUpdates),
    };
    EXPECT_EQ(slots, SlotsFrom(2, 17));
}

TEST(StrictOrderAutoValueCompareOptions, HasAnEpsilonOf1e05)
{
    EXPECT_EQ(StrictOrderAutoValueCompareOptions().GetDoubleEps(), 1e-05);
}

TEST(StrictOrderAutoValueCompareOptions, KeepsAChangedEpsilonInItsCloneWhichNobodyHolds)
{
    ExposedStandard options;
    options.SetDoubleEps(0.25);
    const Nuv::Ref<ExposedStandard> holder(new ExposedStandard(options));
    const std::unique_ptr<IXMLCompareOptions> clone(holder->Clone());
    EXPECT_EQ(clone->GetDoubleEps(), 0.25);
    EXPECT_EQ(clone->GetReferenceCount(), 0);
}

TEST(StrictOrderAutoValueCompareOptions, MakesTheStandardComparators)
{
    ExposedStandard options;
    EXPECT_TRUE(IsA<XMLCompareAuto>(options.GetValueComparator()));
    EXPECT_TRUE(IsA<XMLCompareAuto>(options.GetAttributeValueComparator(nullptr)));
    EXPECT_TRUE(IsA<XMLCompareStrictOrder>(options.PrepareNodeComparator(nullptr, nullptr)));
    EXPECT_TRUE(options.AcceptAttribute(nullptr));
    EXPECT_FALSE(options.CanOptionsChangeAndEffectNotChildNodes());
}

TEST(StrictOrderAutoValueCompareOptions, ComparesNamesWithoutRegardToCase)
{
    const Document lower = Parse("<stra\xC3\x9F"
                                 "e/>");
    const Document upper = Parse("<STRASSE/>");
    const Document other = Parse("<street/>");
    const ExposedStandard options;
    const auto areEqual = [&](const Document& left, const Document& right)
    { return options.AreNodeNamesEqual(left->getDocumentElement(), right->getDocumentElement()); };
    EXPECT_TRUE(areEqual(lower, upper));
    EXPECT_TRUE(areEqual(other, other));
    EXPECT_FALSE(areEqual(lower, other));
}

TEST(StrictOrderAutoValueCompareOptions, SupportsNoOtherNodeTypes)
{
    const Document document = Parse("<a><!--same--></a>");
    const DOMNode* const comment = document->getDocumentElement()->getFirstChild();
    EXPECT_THROW(ExposedStandard().CompareSpecialTypeNodes(comment, comment), NotSupportedNodeTypesException);
}

TEST(AttrRuledCompareOptions, HasItsMarkerNamesAndKeepsChangedOnesInItsClone)
{
    ExposedRuled options;
    EXPECT_EQ(options.GetEpsAtt(), u"nuv_eps");
    EXPECT_EQ(options.GetTypeDeciderAtt(), u"nuv_type");
    ExposedRuled changed(options);
    changed.SetEpsAtt(u"tolerance");
    changed.SetTypeDeciderAtt(u"kind");
    changed.SetDoubleEps(2.0);
    const std::unique_ptr<AttrRuledCompareOptions> clone(changed.Clone());
    EXPECT_EQ(clone->GetEpsAtt(), u"tolerance");
    EXPECT_EQ(clone->GetTypeDeciderAtt(), u"kind");
    EXPECT_EQ(clone->GetDoubleEps(), 2.0);
    EXPECT_EQ(options.GetEpsAtt(), u"nuv_eps") << "the original of the copy";
    EXPECT_EQ(options.GetTypeDeciderAtt(), u"nuv_type");
}

TEST(AttrRuledCompareOptions, KeepsTheCurrentValueTypeInItsClone)
{
    const Document document = Parse("<e nuv_type='int'/>");
    ExposedRuled options;
    options.SetCurrentValueType(document->getDocumentElement(), document->getDocumentElement());
    const ExposedRuled copy(options);
    EXPECT_TRUE(IsA<XMLCompareInt>(copy.GetValueComparator()));
}

TEST(AttrRuledCompareOptions, KeepsTheCurrentValueTypeWhereMarkersDisagreeOrAreMissing)
{
    const Document asInt = Parse("<e nuv_type='int'/>");
    const Document asDouble = Parse("<e nuv_type='double'/>");
    const Document unmarked = Parse("<e/>");
    ExposedRuled options;
    const auto take = [&](const Document& left, const Document& right)
    { options.SetCurrentValueType(left->getDocumentElement(), right->getDocumentElement()); };
    take(asInt, asInt);
    take(asDouble, asInt);
    EXPECT_TRUE(IsA<XMLCompareInt>(options.GetValueComparator()));
    take(unmarked, unmarked);
    EXPECT_TRUE(IsA<XMLCompareInt>(options.GetValueComparator()));
}

TEST(AttrRuledCompareOptions, ChoosesTheComparatorByTheTypeMarkerInAnyCase)
{
    EXPECT_TRUE(IsComparedBy<XMLCompareInt>("nuv_type='int'", "nuv_type='INT'"));
    EXPECT_TRUE(IsComparedBy<XMLCompareDouble>("nuv_type='double'", "nuv_type='DOUBLE'"));
    EXPECT_TRUE(IsComparedBy<XMLCompareString>("nuv_type='String'", "nuv_type='string'"));
    EXPECT_TRUE(IsComparedBy<XMLCompareAuto>("nuv_type='date'", "nuv_type='date'"));
    EXPECT_TRUE(IsComparedBy<XMLCompareAuto>("nuv_type=' string '", "nuv_type=' string '"));
    EXPECT_TRUE(IsComparedBy<XMLCompareAuto>("nuv_type=''", "nuv_type=''"));
    EXPECT_TRUE(IsComparedBy<XMLCompareAuto>("", ""));
}

TEST(AttrRuledCompareOptions, NeedsTheTypeMarkerOnOneSideOnly)
{
    EXPECT_TRUE(IsComparedBy<XMLCompareInt>("nuv_type='int'", ""));
    EXPECT_TRUE(IsComparedBy<XMLCompareInt>("", "nuv_type='int'"));
}

TEST(AttrRuledCompareOptions, LeavesTheTypeUnchangedWhenMarkersDisagreeAndReportsThemAsAttributes)
{
    EXPECT_TRUE(IsComparedBy<XMLCompareAuto>("nuv_type='int'", "nuv_type='double'"));
    const auto difference = DifferenceOf<AttributesDontMatchException>(
        "<e nuv_type='int'>1</e>", "<e nuv_type='double'>1</e>", AttrRuledCompareOptions());
    EXPECT_EQ(difference.GetText(), u"Diff at nodes:\n\t- e\n\t- e\n\tValues of attribute \"nuv_type\" don't "
                                    u"match: \"int\" and \"double\".");
}

TEST(AttrRuledCompareOptions, TakesTheEpsilonFromEitherSide)
{
    EXPECT_EQ(EpsilonFor("nuv_eps='0.5'", ""), 0.5);
    EXPECT_EQ(EpsilonFor("", "nuv_eps='0.25'"), 0.25);
    EXPECT_EQ(EpsilonFor("", ""), 1e-05);
}

TEST(AttrRuledCompareOptions, TakesTheLeftEpsilonWhenBothNearlyAgree)
{
    EXPECT_EQ(EpsilonFor("nuv_eps='0.5'", "nuv_eps='0.5000000000005'"), 0.5);
    EXPECT_EQ(EpsilonFor("nuv_eps='0'", "nuv_eps='1e-12'"), 1e-05) << "1e-12 is too far";
    EXPECT_EQ(EpsilonFor("nuv_eps='0.5'", "nuv_eps='0.6'"), 1e-05);
}

TEST(AttrRuledCompareOptions, IgnoresAnEpsilonThatIsNoNumberAndTheOtherSidesWithIt)
{
    EXPECT_EQ(EpsilonFor("nuv_eps='small'", ""), 1e-05);
    EXPECT_EQ(EpsilonFor("nuv_eps='small'", "nuv_eps='0.5'"), 1e-05);
    EXPECT_EQ(EpsilonFor("nuv_eps='0.5'", "nuv_eps=''"), 1e-05);
}

TEST(AttrRuledCompareOptions, ReadsTheEpsilonWhateverTheTypeIs)
{
    EXPECT_EQ(EpsilonFor("nuv_type='string' nuv_eps='0.5'", ""), 0.5);
}

TEST(AttrRuledCompareOptions, SurvivesNullElements)
{
    ExposedRuled options;
    EXPECT_TRUE(IsA<XMLCompareStrictOrder>(options.PrepareNodeComparator(nullptr, nullptr)));
    EXPECT_EQ(options.GetTypeAttribute(nullptr), nullptr);
    EXPECT_EQ(options.GetDoubleEps(), 1e-05);
}

TEST(AttrRuledCompareOptions, ComparesTextByTheMarkedType)
{
    ExpectEqual("<a><e nuv_type='double'>1.0</e></a>", "<a><e nuv_type='DOUBLE'>1.000001</e></a>");
    ExpectTextDifference("<a><e nuv_type='string'>1.0</e></a>", "<a><e nuv_type='string'>1.000001</e></a>");
    ExpectTextDifference("<a><e nuv_type='int'>1.0</e></a>", "<a><e nuv_type='int'>1.0</e></a>");
}

TEST(AttrRuledCompareOptions, ReadsTheMarkersOfTheRootsToo)
{
    ExpectTextDifference("<e nuv_type='string'>1.0</e>", "<e nuv_type='string'>1.00</e>");
    ExpectEqual("<e nuv_eps='0.5'>1.0</e>", "<e nuv_eps='0.5'>1.4</e>");
}

TEST(AttrRuledCompareOptions, NeverTypesAttributeValues)
{
    ExpectEqual("<a><e nuv_type='string' k='1.0'>x</e></a>", "<a><e nuv_type='string' k='1'>x</e></a>");
}

TEST(AttrRuledCompareOptions, LetsTheTypeHoldForTheTextDirectlyInsideOnly)
{
    ExpectEqual("<a nuv_type='string'><e>1.0</e></a>", "<a nuv_type='string'><e>1</e></a>");
    ExpectTextDifference("<a nuv_type='string'><e>1.0</e>1.0</a>", "<a nuv_type='string'><e>1</e>1</a>");
}

TEST(AttrRuledCompareOptions, LetsTheEpsilonHoldForTheSubtreeUntilADescendantSetsAnother)
{
    ExpectEqual("<a nuv_eps='0.5'><b><c>1</c></b></a>", "<a nuv_eps='0.5'><b><c>1.4</c></b></a>");
    ExpectTextDifference("<a nuv_eps='0.5'><b nuv_eps='0.1'><c>1</c></b></a>",
                         "<a nuv_eps='0.5'><b nuv_eps='0.1'><c>1.4</c></b></a>");
    ExpectEqual("<a nuv_eps='0.5'><b nuv_eps='0.1'/><c>1</c></a>",
                "<a nuv_eps='0.5'><b nuv_eps='0.1'/><c>1.4</c></a>");
}

TEST(AttrRuledCompareOptions, LeaksNoMarkerToASibling)
{
    ExpectTextDifference("<a><b nuv_eps='0.5'>1</b><c>1</c></a>",
                         "<a><b nuv_eps='0.5'>1.4</b><c>1.4</c></a>");
    ExpectEqual("<a><b nuv_type='string'>x</b><c>1</c></a>", "<a><b nuv_type='string'>x</b><c>1.0</c></a>");
    ExpectTextDifference("<a><b nuv_eps='0.5'>1</b>1</a>", "<a><b nuv_eps='0.5'>1.4</b>1.4</a>");
}

TEST(AttrRuledCompareOptions, ComparesEveryTextAutomaticallyWhenTheTypeMarkerHasNoName)
{
    AttrRuledCompareOptions options;
    options.SetTypeDeciderAtt(u"");
    EXPECT_NO_THROW(Compare("<e nuv_type='string'>1</e>", "<e nuv_type='string'>1.0</e>", options));
}

TEST(AttrRuledCompareOptions, ReadsNoEpsilonWhenTheEpsilonMarkerHasNoName)
{
    AttrRuledCompareOptions options;
    options.SetEpsAtt(u"");
    EXPECT_THROW(Compare("<e nuv_eps='0.5'>1</e>", "<e nuv_eps='0.5'>1.4</e>", options),
                 TextNodeValuesDontMatchException);
}

TEST(AttrRuledCompareOptions, ReadsMarkersOfOtherNames)
{
    AttrRuledCompareOptions options;
    options.SetTypeDeciderAtt(u"kind");
    options.SetEpsAtt(u"tolerance");
    EXPECT_NO_THROW(Compare("<e tolerance='0.5'>1</e>", "<e tolerance='0.5'>1.4</e>", options));
    EXPECT_THROW(Compare("<e kind='string'>1</e>", "<e kind='string'>1.0</e>", options),
                 TextNodeValuesDontMatchException);
}

TEST(AttrRuledCompareOptions, AreNotChangedByAComparison)
{
    const AttrRuledCompareOptions options;
    Compare("<e nuv_eps='0.5' nuv_type='int'>1</e>", "<e nuv_eps='0.5' nuv_type='int'>1</e>", options);
    EXPECT_EQ(options.GetDoubleEps(), 1e-05);
    EXPECT_EQ(options.GetReferenceCount(), 0);
}

/// What the filter says to the first child of the document element.
DOMNodeFilter::FilterAction ActionFor(std::string_view text)
{
    const Document document = Parse(text);
    return SkipWhitespaceTextsCompareFilter().acceptNode(document->getDocumentElement()->getFirstChild());
}

TEST(SkipWhitespaceTextsCompareFilter, AcceptsElementsAndTextThatHoldsSomething)
{
    EXPECT_EQ(ActionFor("<a><b/></a>"), DOMNodeFilter::FILTER_ACCEPT);
    EXPECT_EQ(ActionFor("<a>x</a>"), DOMNodeFilter::FILTER_ACCEPT);
    EXPECT_EQ(ActionFor("<a> \n x</a>"), DOMNodeFilter::FILTER_ACCEPT);
    EXPECT_EQ(ActionFor("<a>\xE2\x80\x8B</a>"), DOMNodeFilter::FILTER_ACCEPT) << "U+200B is no white space";
}

TEST(SkipWhitespaceTextsCompareFilter, SkipsTextOfWhiteSpaceOnly)
{
    EXPECT_EQ(ActionFor("<a> \t\r\n </a>"), DOMNodeFilter::FILTER_SKIP);
    EXPECT_EQ(ActionFor("<a> \xC2\xA0\xE3\x80\x80 </a>"), DOMNodeFilter::FILTER_SKIP);
    EXPECT_EQ(SkipWhitespaceTextsCompareFilter().acceptNode(EmptyDocument()->createTextNode(u"")),
              DOMNodeFilter::FILTER_SKIP);
}

TEST(SkipWhitespaceTextsCompareFilter, AcceptsBlankTextOfAnotherImplementationOfTheDOM)
{
    const SkipWhitespaceTextsCompareFilter filter;
    const Document document = EmptyDocument();
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_EQ(filter.acceptNode(document->createTextNode(u" ")), DOMNodeFilter::FILTER_SKIP);
        const ForeignText foreign(u" ");
        EXPECT_EQ(filter.acceptNode(&foreign), DOMNodeFilter::FILTER_ACCEPT);
    }
}

TEST(SkipWhitespaceTextsCompareFilter, RejectsEverythingElse)
{
    EXPECT_EQ(ActionFor("<a><!--x--></a>"), DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(ActionFor("<a><![CDATA[x]]></a>"), DOMNodeFilter::FILTER_REJECT);
    EXPECT_EQ(ActionFor("<a><?x y?></a>"), DOMNodeFilter::FILTER_REJECT);
    const Document document = EmptyDocument();
    EXPECT_EQ(SkipWhitespaceTextsCompareFilter().acceptNode(document->createEntityReference(u"x")),
              DOMNodeFilter::FILTER_REJECT);
}

TEST(SkipWhitespaceTextsCompareFilter, HidesIndentationAndCommentsFromAComparison)
{
    SkipWhitespaceTextsCompareFilter filter;
    EXPECT_NO_THROW(Compare("<a>\n\t<b>x</b>\n</a>", "<a><!-- note --><b><![CDATA[y]]>x</b></a>",
                            StrictOrderAutoValueCompareOptions(), &filter));
}

} // namespace
