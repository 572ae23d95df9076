#include "CompareSupport.hpp"

#include "tests/support/VirtualSlots.hpp"

#include <xercesc/dom/DOMEntityReference.hpp>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

// Attributes.

TEST(CompareAttributes, IgnoresWhatTheOptionsDoNotAccept)
{
    class WithoutStamp : public Standard
    {
        WithoutStamp* Clone() const override { return new WithoutStamp(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            return Nuv::UniString(attribute->getName()) != u"stamp";
        }
    };
    EXPECT_NO_THROW(Compare("<a stamp='1'/>", "<a/>", WithoutStamp()));
    EXPECT_NO_THROW(Compare("<a/>", "<a stamp='1'/>", WithoutStamp()));
    EXPECT_NO_THROW(Compare("<a stamp='1'/>", "<a stamp='2'/>", WithoutStamp()));
    EXPECT_THROW(Compare("<a k='1'/>", "<a k='2'/>", WithoutStamp()), AttributesDontMatchException);
}

TEST(CompareAttributes, LooksAtAnAttributeOfTheRightThatWasAcceptedOnNeitherSideByName)
{
    // Accepts an attribute by its value, so that one side may take part and the other not.
    class AcceptingYes : public Standard
    {
        AcceptingYes* Clone() const override { return new AcceptingYes(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            return Nuv::UniString(attribute->getValue()) == u"yes";
        }
    };
    EXPECT_EQ(
        DifferenceOf<AttributeMissingException>("<a k='no'/>", "<a k='yes'/>", AcceptingYes()).GetText(),
        u"Diff at nodes:\n\t- a\n\t- a\n\tMissing attribute \"k\" on the left.");
    EXPECT_THROW(Compare("<a k='yes'/>", "<a k='no'/>", AcceptingYes()), AttributesDontMatchException);
}

TEST(CompareAttributes, ChoosesTheComparatorByTheLeftAttribute)
{
    // Takes numbers for text when the attribute says so.
    class TextOnRequest : public Standard
    {
        TextOnRequest* Clone() const override { return new TextOnRequest(*this); }
        XMLValueComparator* GetAttributeValueComparator(const DOMAttr* attribute) const override
        {
            if (Nuv::UniString(attribute->getValue()) == u"1.0")
                return new XMLCompareString;
            return new XMLCompareAuto;
        }
    };
    EXPECT_NO_THROW(Compare("<a k='1'/>", "<a k='1.0'/>", TextOnRequest()));
    EXPECT_THROW(Compare("<a k='1.0'/>", "<a k='1'/>", TextOnRequest()), AttributesDontMatchException);
}

TEST(CompareAttributes, TakesAnAttributeWithoutTextForAnEmptyOne)
{
    const Document byHand = Parse("<a/>");
    byHand->getDocumentElement()->setAttributeNode(byHand->createAttribute(u"k"));
    const Document parsed = Parse("<a k=''/>");
    EXPECT_NO_THROW(Compare(byHand, parsed));
    EXPECT_NO_THROW(Compare(parsed, byHand));
    EXPECT_THROW(Compare(byHand, Parse("<a k='x'/>")), AttributesDontMatchException);
}

TEST(CompareAttributes, TakesAnAttributeThatBeginsWithAnEntityReferenceForAnEmptyOne)
{
    const Document byHand = Parse("<a/>");
    DOMAttr* const attribute = byHand->createAttribute(u"k");
    attribute->appendChild(static_cast<DOMNode*>(byHand->createEntityReference(u"x")));
    byHand->getDocumentElement()->setAttributeNode(attribute);
    EXPECT_NO_THROW(Compare(byHand, Parse("<a k=''/>")));
}

TEST(CompareAttributes, ComparesTheFirstTextOfAnAttributeOnly)
{
    const Document byHand = Parse("<a/>");
    DOMAttr* const attribute = byHand->createAttribute(u"k");
    attribute->appendChild(byHand->createTextNode(u"x"));
    attribute->appendChild(static_cast<DOMNode*>(byHand->createEntityReference(u"y")));
    attribute->appendChild(byHand->createTextNode(u"z"));
    byHand->getDocumentElement()->setAttributeNode(attribute);
    EXPECT_NO_THROW(Compare(byHand, Parse("<a k='x'/>")));
    EXPECT_NO_THROW(Compare(Parse("<a k='x'/>"), byHand));
    EXPECT_THROW(Compare(byHand, Parse("<a k='xz'/>")), AttributesDontMatchException);
}

TEST(CompareAttributes, ComparesElementsWhereverTheyAreFrom)
{
    const Document parsed = Parse("<a k='1' j='2'/>");
    const DOMElement* const element = parsed->getDocumentElement();
    const Document other = EmptyDocument();
    const auto* const imported = static_cast<const DOMElement*>(other->importNode(element, true));
    const auto* const cloned = static_cast<const DOMElement*>(element->cloneNode(true));
    DOMElement* const made = other->createElementNS(u"n", u"p:a");
    made->setAttribute(u"k", u"1");
    made->setAttributeNS(nullptr, u"j", u"2");
    for (const DOMElement* const twin : std::initializer_list<const DOMElement*>{imported, cloned, made})
    {
        EXPECT_NO_THROW(XMLNodeComparator::CompareAttributes(element, twin, Standard()));
        EXPECT_NO_THROW(XMLNodeComparator::CompareAttributes(twin, element, Standard()));
    }
    made->setAttributeNS(u"n", u"p:more", u"");
    EXPECT_THROW(XMLNodeComparator::CompareAttributes(imported, made, Standard()), AttributeMissingException);
}

TEST(CompareAttributes, ReportsTheFirstOfTheLeftThatDiffersThenTheFirstThatOnlyTheRightHas)
{
    const auto reportFor = [](const char* left, const char* right)
    {
        try
        {
            Compare(left, right);
        }
        catch (const XMLCompareException& difference)
        {
            const std::string report = difference.GetText().ToUTF8();
            return report.substr(report.rfind('\t') + 1);
        }
        return std::string("none");
    };
    // Xerces gives attributes in the order of their names.
    EXPECT_EQ(reportFor("<e z='1' b='1' a='9'/>", "<e a='8' b='2' z='2'/>"),
              R"(Values of attribute "a" don't match: "9" and "8".)");
    EXPECT_EQ(reportFor("<e c='1' b='1'/>", "<e c='2' a='1'/>"), R"(Missing attribute "b" on the right.)");
    EXPECT_EQ(reportFor("<e c='1' b='1'/>", "<e b='2' a='1'/>"),
              R"(Values of attribute "b" don't match: "1" and "2".)");
    EXPECT_EQ(reportFor("<e k='1'/>", "<e z='1' k='1' b='1' a='1'/>"),
              R"(Missing attribute "a" on the left.)");
}

TEST(CompareAttributes, AsksAboutEachOfTheLeftAndThoseOfTheRightThatWereNotCompared)
{
    class Asking : public Standard
    {
      public:
        explicit Asking(std::string& questions)
            : asked(questions)
        {
        }

      protected:
        Asking* Clone() const override { return new Asking(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            asked += Nuv::UniString(attribute->getName()).ToUTF8() + "? ";
            return Nuv::UniString(attribute->getValue()) != u"no";
        }
        XMLValueComparator* GetAttributeValueComparator(const DOMAttr* attribute) const override
        {
            asked += Nuv::UniString(attribute->getValue()).ToUTF8() + "! ";
            return new XMLCompareAuto;
        }

      private:
        std::string& asked;
    };
    std::string asked;
    EXPECT_NO_THROW(
        Compare("<e d='4' c='no' b='2.0' a='no'/>", "<e a='no' b='2' d='4.0' e='no'/>", Asking(asked)));
    EXPECT_EQ(asked, "a? b? 2.0! c? d? 4! a? e? ");
}

TEST(CompareAttributes, PassesOverAnAttributeThatTheOptionsTakeAway)
{
    class Removing : public Standard
    {
        Removing* Clone() const override { return new Removing(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            attribute->getOwnerElement()->removeAttribute(u"stamp");
            return true;
        }
    };
    EXPECT_NO_THROW(Compare("<a k='1' l='1' stamp='2'/>", "<a k='1' l='1'/>", Removing()));
}

TEST(CompareAttributes, ComparesQualifiedNames)
{
    ExpectDifferent<AttributeMissingException>("<a xmlns:p='u' p:k='1'/>", "<a xmlns:p='u' k='1'/>");
}

TEST(CompareAttributes, FindsAttributesThatStandBehindOthersOnOneSideOnly)
{
    class WithoutFirst : public Standard
    {
        WithoutFirst* Clone() const override { return new WithoutFirst(*this); }
        bool AcceptAttribute(const DOMAttr* attribute) const override
        {
            return Nuv::UniString(attribute->getName()) != u"a";
        }
    };
    const char* const with = "<e a='0' b='1' c='2' d='3'/>";
    const char* const without = "<e b='1' c='2' d='3'/>";
    EXPECT_NO_THROW(Compare(with, without, WithoutFirst()));
    EXPECT_NO_THROW(Compare(without, with, WithoutFirst()));
    EXPECT_EQ(DifferenceOf<AttributeMissingException>(with, without).GetWhereItIsMissing(), Right);
    EXPECT_EQ(DifferenceOf<AttributeMissingException>(without, with).GetWhereItIsMissing(), Left);
    EXPECT_THROW(Compare(with, "<e b='1' c='9' d='3'/>", WithoutFirst()), AttributesDontMatchException);
}

TEST(CompareAttributes, ComparesManyAttributes)
{
    const auto elementWith = [](int count, const std::string& more)
    {
        std::string text = "<e";
        for (int i = 0; i < count; ++i)
            text += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
        return text + " " + more + "/>";
    };
    for (const int count : {0, 1, 15, 16, 17, 18, 100, 10'000})
    {
        ExpectEqual(elementWith(count, ""), elementWith(count, ""));
        const auto missing =
            DifferenceOf<AttributeMissingException>(elementWith(count, ""), elementWith(count, "last=''"));
        EXPECT_EQ(missing.GetAttributeName(), u"last");
        EXPECT_EQ(missing.GetWhereItIsMissing(), Left);
        ExpectDifferent<AttributesDontMatchException>(elementWith(count, "z='1'"),
                                                      elementWith(count, "z='2'"));
    }
}

TEST(CompareAttributes, CanBeCalledByItself)
{
    const Document left = Parse("<a k='1'>x</a>");
    const Document right = Parse("<b k='1'/>");
    EXPECT_NO_THROW(XMLNodeComparator::CompareAttributes(left->getDocumentElement(),
                                                         right->getDocumentElement(), Standard()));
}

// Where the walkers stand.

TEST(CompareNodes, LeavesTheWalkersOnTheOutermostPairAfterADifferenceOfAnyDepth)
{
    const std::pair<const char*, const char*> documents[] = {
        {"<a/>", "<b/>"},
        {"<a k='1'/>", "<a/>"},
        {"<a><b/></a>", "<a/>"},
        {"<a><b><c>x</c></b></a>", "<a><b><c>y</c></b></a>"},
        {"<a><b/><b><c/></b></a>", "<a><b/><b><d/></b></a>"},
        {"<a>x<!--y--></a>", "<a>x<!--y--></a>"},
        {"<a><b><c/>x</b></a>", "<a><b><c/><c/></b></a>"},
    };
    for (const auto& [leftText, rightText] : documents)
    {
        const Document left = Parse(leftText);
        const Document right = Parse(rightText);
        DOMTreeWalker* const leftWalker = NewWalker(left);
        DOMTreeWalker* const rightWalker = NewWalker(right);
        const Nuv::Ref<Standard> options(new Standard);
        EXPECT_THROW(XMLCompareStrictOrder().CompareNodes(leftWalker, rightWalker, *options),
                     XMLCompareException);
        EXPECT_EQ(leftWalker->getCurrentNode(), left->getDocumentElement()) << leftText;
        EXPECT_EQ(rightWalker->getCurrentNode(), right->getDocumentElement()) << leftText;
    }
}

TEST(CompareNodes, StartsWhereTheWalkersStandAndLeavesThemThere)
{
    const Document left = Parse("<a><b><c>x</c></b></a>");
    const Document right = Parse("<z><b><c>x</c></b></z>");
    DOMTreeWalker* const leftWalker = NewWalker(left);
    DOMTreeWalker* const rightWalker = NewWalker(right);
    const DOMNode* const leftB = leftWalker->firstChild();
    const DOMNode* const rightB = rightWalker->firstChild();
    const Nuv::Ref<Standard> options(new Standard);
    XMLCompareStrictOrder().CompareNodes(leftWalker, rightWalker, *options);
    EXPECT_EQ(leftWalker->getCurrentNode(), leftB);
    EXPECT_EQ(rightWalker->getCurrentNode(), rightB);
    EXPECT_EQ(options->GetReferenceCount(), 1);
}

/// Goes on after a difference in a pair of children, and notes where the walkers stand then.
class GoingOn : public XMLNodeComparator
{
  public:
    explicit GoingOn(std::vector<Nuv::UniString>& notes)
        : stops(notes)
    {
    }

  private:
    void WalkThrough() override
    {
        EXPECT_EQ(LeftWalker()->getCurrentNode(), LeftNode());
        EXPECT_EQ(RightWalker()->getCurrentNode(), RightNode());
        EXPECT_NE(GetOptions(), nullptr);
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        while (left && right)
        {
            try
            {
                ControlNodeComparison();
            }
            catch (const XMLCompareException&)
            {
                EXPECT_EQ(LeftWalker()->getCurrentNode(), left);
                EXPECT_EQ(RightWalker()->getCurrentNode(), right);
                stops.push_back(left->getNodeName());
            }
            left = LeftWalker()->nextSibling();
            right = RightWalker()->nextSibling();
        }
    }

    std::vector<Nuv::UniString>& stops;
};

TEST(ControlNodeComparison, LeavesTheWalkersOnThePairOfChildrenSoThatAStrategyCanGoOn)
{
    const Document left = Parse("<a><b><x>1</x></b>t<c/><d k='1'/><e/><f/></a>");
    const Document right = Parse("<a><b><x>2</x></b>u<c/><d k='2'/><e><g/></e><f/></a>");
    std::vector<Nuv::UniString> stops;
    GoingOn comparator(stops);
    DoXMLCompare(left.get(), right.get(), &comparator, nullptr, Standard());
    EXPECT_EQ(stops, (std::vector<Nuv::UniString>{u"b", u"#text", u"d", u"e"}));
}

/// Looks ahead with the walkers while it prepares a pair or chooses a comparator, and leaves them there.
class LookingAhead : public Standard
{
  public:
    LookingAhead(DOMTreeWalker& left, DOMTreeWalker& right)
        : leftWalker(left)
        , rightWalker(right)
    {
    }

  protected:
    LookingAhead* Clone() const override { return new LookingAhead(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        leftWalker.lastChild();
        rightWalker.lastChild();
        return new XMLCompareStrictOrder;
    }
    XMLValueComparator* GetValueComparator() const override
    {
        leftWalker.nextSibling();
        rightWalker.nextSibling();
        return new XMLCompareAuto;
    }

  private:
    DOMTreeWalker& leftWalker;
    DOMTreeWalker& rightWalker;
};

TEST(ControlNodeComparison, ComparesThePairWhereverOptionsLeaveTheWalkers)
{
    const Document left = Parse("<a><b><c>x</c><d/></b>t<e>1</e></a>");
    const Document right = Parse("<a><b><c>x</c><d/></b>t<e>2</e></a>");
    const auto compare = [](const Document& one, const Document& other)
    {
        DOMTreeWalker* const oneWalker = NewWalker(one);
        DOMTreeWalker* const otherWalker = NewWalker(other);
        const Nuv::Ref<LookingAhead> options(new LookingAhead(*oneWalker, *otherWalker));
        XMLCompareStrictOrder().CompareNodes(oneWalker, otherWalker, *options);
    };
    EXPECT_THROW(compare(left, right), TextNodeValuesDontMatchException);
    EXPECT_NO_THROW(compare(left, left));
    const Document otherName = Parse("<a><z><c>x</c><d/></z>t<e>1</e></a>");
    EXPECT_THROW(compare(left, otherName), NodeNamesDontMatchException) << "only the last children are equal";
}

/// Looks ahead like LookingAhead, but then fails.
class FailingAhead : public LookingAhead
{
  public:
    using LookingAhead::LookingAhead;

  protected:
    FailingAhead* Clone() const override { return new FailingAhead(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override
    {
        delete LookingAhead::PrepareNodeComparator(left, right);
        throw NodeNamesDontMatchException(left, right);
    }
    XMLValueComparator* GetValueComparator() const override
    {
        delete LookingAhead::GetValueComparator();
        throw XMLCompareException();
    }
};

TEST(ControlNodeComparison, LeavesTheWalkersOnThePairWhenOptionsMoveThemAndThrow)
{
    const Document left = Parse("<a><b><c/><d/></b>t<e/></a>");
    const Document right = Parse("<a><b><c/><d/></b>t<e/></a>");
    DOMTreeWalker* const leftWalker = NewWalker(left);
    DOMTreeWalker* const rightWalker = NewWalker(right);
    const Nuv::Ref<FailingAhead> options(new FailingAhead(*leftWalker, *rightWalker));
    std::vector<Nuv::UniString> stops;
    GoingOn(stops).CompareNodes(leftWalker, rightWalker, *options);
    EXPECT_EQ(stops, (std::vector<Nuv::UniString>{u"b", u"#text", u"e"}));
}

// Walkers and filters of a caller.

/// Notes the nodes that it is asked about; accepts all of them.
class NotingFilter : public DOMNodeFilter
{
  public:
    FilterAction acceptNode(const DOMNode* node) const override
    {
        asked.push_back(node->getNodeName());
        return FILTER_ACCEPT;
    }

    mutable std::vector<Nuv::UniString> asked;
};

TEST(XMLCompareStrictOrder, AsksACallersFilterAboutTheParentOfEachLastChild)
{
    NotingFilter filter;
    const Document document = Parse("<a><b>x</b></a>");
    Compare(document, document, Standard(), &filter);
    const std::vector<Nuv::UniString> expected{
        u"b",     u"b",     // the first children of a
        u"#text", u"#text", // the first children of b
        u"b",     u"b",     // after the text
        u"a",     u"a",     // after b
    };
    EXPECT_EQ(filter.asked, expected);
}

/// Hides the elements named b, but not what is in them.
class SkippingB : public SkipWhitespaceTextsCompareFilter
{
  public:
    FilterAction acceptNode(const DOMNode* node) const override
    {
        return Nuv::UniString(node->getNodeName()) == u"b" ? FILTER_SKIP : FILTER_ACCEPT;
    }
};

void CompareFirstChildren(const Document& left, const Document& right, DOMNodeFilter* filter,
                          DOMNodeFilter::ShowType show = DOMNodeFilter::SHOW_ALL)
{
    const auto walkerFor = [&](const Document& document)
    {
        DOMElement* const root = document->getDocumentElement();
        DOMTreeWalker* const walker = document->createTreeWalker(root, show, filter, false);
        walker->setCurrentNode(root->getFirstChild());
        return walker;
    };
    const Nuv::Ref<Standard> options(new Standard);
    XMLCompareStrictOrder().CompareNodes(walkerFor(left), walkerFor(right), *options);
}

TEST(XMLCompareStrictOrder, GoesOnBehindAPairThatTheWalkersDoNotShow)
{
    const Document one = Parse("<a><b>x</b>y</a>");
    const Document other = Parse("<a><b>x</b>z</a>");
    SkippingB filter;
    EXPECT_THROW(CompareFirstChildren(one, other, &filter), TextNodeValuesDontMatchException);
    EXPECT_THROW(CompareFirstChildren(one, other, nullptr, DOMNodeFilter::SHOW_TEXT),
                 TextNodeValuesDontMatchException);
    EXPECT_NO_THROW(CompareFirstChildren(one, other, nullptr));
    EXPECT_NO_THROW(CompareFirstChildren(one, one, &filter));
}

/// A walker of a caller, which shows `appendix` behind the last child of every element.
class WalkerWithAppendix : public DOMTreeWalker
{
  public:
    WalkerWithAppendix(DOMTreeWalker& ordinary, DOMNode* behindLastChild)
        : walker(ordinary)
        , appendix(behindLastChild)
    {
    }

    DOMNode* getRoot() override { return walker.getRoot(); }
    DOMNodeFilter::ShowType getWhatToShow() override { return walker.getWhatToShow(); }
    DOMNodeFilter* getFilter() override { return walker.getFilter(); }
    bool getExpandEntityReferences() override { return walker.getExpandEntityReferences(); }
    DOMNode* getCurrentNode() override { return walker.getCurrentNode(); }
    void setCurrentNode(DOMNode* node) override { walker.setCurrentNode(node); }
    DOMNode* parentNode() override { return walker.parentNode(); }
    DOMNode* firstChild() override { return walker.firstChild(); }
    DOMNode* lastChild() override { return walker.lastChild(); }
    DOMNode* previousSibling() override { return walker.previousSibling(); }
    DOMNode* nextSibling() override
    {
        if (walker.getCurrentNode() == appendix)
            return nullptr;
        if (DOMNode* const sibling = walker.nextSibling())
            return sibling;
        walker.setCurrentNode(appendix);
        return appendix;
    }
    DOMNode* previousNode() override { return walker.previousNode(); }
    DOMNode* nextNode() override { return walker.nextNode(); }
    void release() override {}

  private:
    DOMTreeWalker& walker;
    DOMNode* appendix;
};

TEST(XMLCompareStrictOrder, FollowsAWalkerOfTheCaller)
{
    const Document document = Parse("<a>x</a>");
    WalkerWithAppendix left(*NewWalker(document), document->createTextNode(u"1"));
    WalkerWithAppendix same(*NewWalker(document), document->createTextNode(u"1.0"));
    WalkerWithAppendix other(*NewWalker(document), document->createTextNode(u"2"));
    const Nuv::Ref<Standard> options(new Standard);
    EXPECT_NO_THROW(XMLCompareStrictOrder().CompareNodes(&left, &same, *options));
    EXPECT_THROW(XMLCompareStrictOrder().CompareNodes(&left, &other, *options),
                 TextNodeValuesDontMatchException);
}

// Slots.

class WithWalkThrough : public XMLCompareStrictOrder
{
  public:
    void WalkThrough() override {}
};

TEST(XMLNodeComparator, HasWalkThroughBeforeItsDestructor)
{
    EXPECT_EQ(NuvTest::SlotOf(&WithWalkThrough::WalkThrough), 0u);
}

// Copies.

TEST(XMLNodeComparator, CanBeCopiedBetweenComparisons)
{
    const Document document = Parse("<a><b/></a>");
    std::vector<Nuv::UniString> stops;
    GoingOn original(stops);
    DoXMLCompare(document.get(), document.get(), &original, nullptr, Standard());
    GoingOn copy(original);
    DoXMLCompare(document.get(), document.get(), &copy, nullptr, Standard());
    XMLCompareStrictOrder assigned;
    assigned = XMLCompareStrictOrder();
    EXPECT_NO_THROW(DoXMLCompare(document.get(), document.get(), &assigned, nullptr, Standard()));
}

} // namespace
