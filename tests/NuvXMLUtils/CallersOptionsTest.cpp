#include "CompareSupport.hpp"

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

/// What all clones of one object share: a log of the calls, and which of them throws.
struct Calls
{
    std::vector<std::string> log;
    size_t throwingCall = 0;
    int alive = 0;

    void Note(const char* operation)
    {
        log.push_back(operation);
        if (log.size() == throwingCall)
            throw std::runtime_error(operation);
    }
};

/// An object that counts itself in the Calls it belongs to.
class Counted
{
  public:
    explicit Counted(Calls& sharedCalls)
        : calls(&sharedCalls)
    {
        ++calls->alive;
    }
    Counted(const Counted& other)
        : Counted(*other.calls)
    {
    }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --calls->alive; }

    Calls* calls;
};

template <class Comparator>
class CountedComparator : public Comparator
{
  public:
    explicit CountedComparator(Calls& calls)
        : counted(calls)
    {
    }

  private:
    Counted counted;
};

/// Replaces every decision; says it in the log.
class WatchedOptions : public Standard
{
  public:
    WatchedOptions(Calls& calls, bool changesForChildren)
        : counted(calls)
        , canChange(changesForChildren)
    {
    }

    double GetDoubleEps() const override
    {
        counted.calls->Note("GetDoubleEps");
        return 0.5;
    }

  protected:
    WatchedOptions* Clone() const override
    {
        counted.calls->Note("Clone");
        return new WatchedOptions(*this);
    }
    bool AcceptAttribute(const DOMAttr*) const override
    {
        counted.calls->Note("AcceptAttribute");
        return true;
    }
    bool AreNodeNamesEqual(const DOMNode*, const DOMNode*) const override
    {
        counted.calls->Note("AreNodeNamesEqual");
        return true;
    }
    void CompareSpecialTypeNodes(const DOMNode*, const DOMNode*) override
    {
        counted.calls->Note("CompareSpecialTypeNodes");
    }
    XMLValueComparator* GetAttributeValueComparator(const DOMAttr*) const override
    {
        counted.calls->Note("GetAttributeValueComparator");
        return new CountedComparator<XMLCompareDouble>(*counted.calls);
    }
    XMLValueComparator* GetValueComparator() const override
    {
        counted.calls->Note("GetValueComparator");
        return new CountedComparator<XMLCompareDouble>(*counted.calls);
    }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        counted.calls->Note("PrepareNodeComparator");
        return new CountedComparator<XMLCompareStrictOrder>(*counted.calls);
    }
    bool CanOptionsChangeAndEffectNotChildNodes() const override
    {
        counted.calls->Note("CanOptionsChangeAndEffectNotChildNodes");
        return canChange;
    }

  private:
    Counted counted;
    bool canChange;
};

void CompareWatched(const Document& left, const Document& right, Calls& calls, bool changesForChildren)
{
    const WatchedOptions options(calls, changesForChildren);
    XMLCompareStrictOrder comparator;
    DoXMLCompare(left.get(), right.get(), &comparator, nullptr, options);
}

TEST(CallersOptions, MakeEveryDecision)
{
    Calls calls;
    CompareWatched(Parse("<a k='1'><b>2</b><!--x--></a>"), Parse("<z k='1.4'><y>2.4</y><!--w--></z>"), calls,
                   true);
    EXPECT_EQ(calls.log, (std::vector<std::string>{
                             "Clone", "PrepareNodeComparator",                                      // a
                             "AreNodeNamesEqual", "AcceptAttribute", "GetAttributeValueComparator", //
                             "GetDoubleEps",                                                        //
                             "CanOptionsChangeAndEffectNotChildNodes", "Clone",                     // b
                             "PrepareNodeComparator", "AreNodeNamesEqual",                          //
                             "GetValueComparator", "GetDoubleEps", "CompareSpecialTypeNodes"}));
    EXPECT_EQ(calls.alive, 0);
}

TEST(CallersOptions, DecideOnAPairOfSpecialNodesAtTheTopToo)
{
    const Document left = Parse("<!--left--><r/>");
    const Document right = Parse("<!--right--><r/>");
    Calls calls;
    const WatchedOptions options(calls, false);
    XMLCompareStrictOrder comparator;
    EXPECT_NO_THROW(
        DoXMLCompare(left->getFirstChild(), right->getFirstChild(), &comparator, nullptr, options));
    EXPECT_EQ(calls.log,
              (std::vector<std::string>{"Clone", "PrepareNodeComparator", "CompareSpecialTypeNodes"}));
}

TEST(CallersOptions, AreGivenEachPairOfElementsLeftFirst)
{
    class Noting : public Standard
    {
      public:
        explicit Noting(std::vector<const DOMNode*>& notes)
            : given(notes)
        {
        }

      protected:
        Noting* Clone() const override { return new Noting(*this); }
        XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override
        {
            given.insert(given.end(), {left, right});
            return new XMLCompareStrictOrder;
        }

      private:
        std::vector<const DOMNode*>& given;
    };
    const Document left = Parse("<a><b/></a>");
    const Document right = Parse("<a><b/></a>");
    std::vector<const DOMNode*> given;
    Compare(left, right, Noting(given));
    const DOMNode* const leftRoot = left->getDocumentElement();
    const DOMNode* const rightRoot = right->getDocumentElement();
    EXPECT_EQ(given, (std::vector<const DOMNode*>{leftRoot, rightRoot, leftRoot->getFirstChild(),
                                                  rightRoot->getFirstChild()}));
}

TEST(CallersOptions, AreClonedOnceWhenTheyDoNotChange)
{
    Calls calls;
    CompareWatched(Parse("<a><b><c/></b><b/></a>"), Parse("<a><b><c/></b><b/></a>"), calls, false);
    EXPECT_EQ(std::count(calls.log.begin(), calls.log.end(), "Clone"), 1);
    EXPECT_EQ(calls.alive, 0);
}

TEST(CallersOptions, MayThrowInEveryCallWithoutALeak)
{
    const Document left = Parse("<a k='1'><b><c>2</c><d/></b><!--x-->3</a>");
    const Document right = Parse("<a k='1'><b><c>2</c><d/></b><!--x-->3</a>");
    for (const bool changesForChildren : {false, true})
    {
        Calls all;
        CompareWatched(left, right, all, changesForChildren);
        for (size_t i = 1; i <= all.log.size(); ++i)
        {
            Calls calls;
            calls.throwingCall = i;
            EXPECT_THROW(CompareWatched(left, right, calls, changesForChildren), std::runtime_error);
            EXPECT_EQ(calls.alive, 0) << "call " << i << ", " << all.log[i - 1];
        }
    }
}

TEST(CallersOptions, AndAllComparatorsDieWhenADifferenceIsThrown)
{
    for (const bool changesForChildren : {false, true})
    {
        Calls calls;
        EXPECT_THROW(CompareWatched(Parse("<a><b><c>2</c></b></a>"), Parse("<a><b><c>3</c></b></a>"), calls,
                                    changesForChildren),
                     TextNodeValuesDontMatchException);
        EXPECT_EQ(calls.alive, 0);
    }
}

TEST(CallersOptions, DieWithTheFirstPairOfChildrenWhenNobodyHoldsThem)
{
    const Document document = Parse("<a><b/></a>");
    Calls calls;
    auto* const options = new WatchedOptions(calls, false);
    XMLCompareStrictOrder().CompareNodes(NewWalker(document), NewWalker(document), *options);
    EXPECT_EQ(calls.alive, 0);
}

} // namespace
