#include "NuvXMLUtils/XMLDifferences.hpp"

#include "CompareSupport.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"

#include <gmock/gmock.h>

#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using testing::ElementsAre;
using testing::IsEmpty;

/// The options under test, unless a test brings its own.
const StrictOrderAutoValueCompareOptions Standard;

/// Both paths and the last line of the report, one string a difference.
std::vector<std::string> Differences(std::string_view left, std::string_view right,
                                     const IXMLCompareOptions& options = Standard,
                                     DOMNodeFilter* filter = nullptr)
{
    const Document leftDocument = Parse(left);
    const Document rightDocument = Parse(right);
    NodePlaces leftPlaces;
    NodePlaces rightPlaces;
    std::vector<std::string> found;
    FindDifferences(leftDocument.get(), rightDocument.get(), filter, options,
                    [&](const XMLDifference& difference)
                    {
                        const std::string report = difference.exception.GetText().ToUTF8();
                        found.push_back(leftPlaces.PathOf(difference.left).ToUTF8() + " " +
                                        rightPlaces.PathOf(difference.right).ToUTF8() + " " +
                                        report.substr(report.rfind('\t') + 1));
                        return true;
                    });
    return found;
}

TEST(FindDifferences, GivesNothingForEqualDocuments)
{
    EXPECT_THAT(Differences("<a x='1'><b>2.0</b></a>", "<A x='1.0'><B>2</B></A>"), IsEmpty());
}

TEST(FindDifferences, GivesEveryTextThatDiffers)
{
    EXPECT_THAT(Differences("<a><b>x</b><b>2</b><c>3</c></a>", "<a><b>y</b><b>2</b><c>4</c></a>"),
                ElementsAre(R"(/a/b[1]/text() /a/b[1]/text() Text node values "x" and "y" don't match.)",
                            R"(/a/c/text() /a/c/text() Text node values "3" and "4" don't match.)"));
}

TEST(FindDifferences, GivesEveryAttributeOfAnElementAndGoesOnBelowIt)
{
    EXPECT_THAT(Differences("<a i='1' j='2' k='3'><b m='5'/></a>", "<a i='9' k='8' l='4'><b m='6'/></a>"),
                ElementsAre(R"(/a/@i /a/@i Values of attribute "i" don't match: "1" and "9".)",
                            R"(/a/@j /a Missing attribute "j" on the right.)",
                            R"(/a/@k /a/@k Values of attribute "k" don't match: "3" and "8".)",
                            R"(/a /a/@l Missing attribute "l" on the left.)",
                            R"(/a/b/@m /a/b/@m Values of attribute "m" don't match: "5" and "6".)"));
}

TEST(FindDifferences, LooksAtAnAttributeAgainInOtherElements)
{
    EXPECT_THAT(Differences("<a i='1'><a i='1'/><a i='1'/></a>", "<a i='2'><a i='2'/><a i='3'/></a>"),
                ElementsAre(R"(/a/@i /a/@i Values of attribute "i" don't match: "1" and "2".)",
                            R"(/a/a[1]/@i /a/a[1]/@i Values of attribute "i" don't match: "1" and "2".)",
                            R"(/a/a[2]/@i /a/a[2]/@i Values of attribute "i" don't match: "1" and "3".)"));
}

TEST(FindDifferences, DoesNotLookIntoElementsWhoseNamesDiffer)
{
    EXPECT_THAT(Differences("<a><b>1</b><c>2</c></a>", "<a><d>3</d><c>4</c></a>"),
                ElementsAre("/a/b /a/d Node names don't match.",
                            R"(/a/c/text() /a/c/text() Text node values "2" and "4" don't match.)"));
}

TEST(FindDifferences, GivesTheFirstChildTooMany)
{
    EXPECT_THAT(Differences("<a><b/><b/><b/></a>", "<a><b/></a>"),
                ElementsAre("/a/b[2] /a The node on the left has more children."));
    EXPECT_THAT(Differences("<a><b/></a>", "<a><b/>text</a>"),
                ElementsAre("/a /a/text() The node on the right has more children."));
}

TEST(FindDifferences, GivesAnElementThatIsTextOnTheOtherSide)
{
    EXPECT_THAT(Differences("<a><b/></a>", "<a>t</a>"),
                ElementsAre(R"(/a/b /a/text() The value of the text is "t".)"));
}

TEST(FindDifferences, GivesADocumentWithoutElementAsNull)
{
    const Document empty = EmptyDocument();
    const Document full = Parse("<a/>");
    int count = 0;
    FindDifferences(empty.get(), full.get(), nullptr, Standard,
                    [&](const XMLDifference& difference)
                    {
                        ++count;
                        EXPECT_EQ(difference.left, nullptr);
                        EXPECT_EQ(difference.right, full->getDocumentElement());
                        EXPECT_NE(dynamic_cast<const NoElementsInDocumentException*>(&difference.exception),
                                  nullptr);
                        return true;
                    });
    EXPECT_EQ(count, 1);
}

TEST(FindDifferences, EndsWhenTheHandlerHasSeenEnough)
{
    const Document left = Parse("<a><b>1</b><b>2</b><b>3</b></a>");
    const Document right = Parse("<a><b>4</b><b>5</b><b>6</b></a>");
    int count = 0;
    FindDifferences(left.get(), right.get(), nullptr, Standard,
                    [&](const XMLDifference&) { return ++count < 2; });
    EXPECT_EQ(count, 2);
}

TEST(FindDifferences, LetsWhatTheHandlerThrowsThrough)
{
    const Document left = Parse("<a>1</a>");
    const Document right = Parse("<a>2</a>");
    EXPECT_THROW(FindDifferences(left.get(), right.get(), nullptr, Standard,
                                 [](const XMLDifference&) -> bool { throw std::runtime_error("enough"); }),
                 std::runtime_error);
}

TEST(FindDifferences, CallsAHandlerOnceThatThrowsADifference)
{
    const Document left = Parse("<a><b><c>1</c></b><d>1</d></a>");
    const Document right = Parse("<a><b><c>2</c></b><d>2</d></a>");
    int calls = 0;
    const auto search = [&]
    {
        FindDifferences(left.get(), right.get(), nullptr, Standard,
                        [&](const XMLDifference&) -> bool
                        {
                            ++calls;
                            throw NoElementsInDocumentException(Right);
                        });
    };
    EXPECT_THROW(search(), NoElementsInDocumentException);
    EXPECT_EQ(calls, 1);
}

/// Compares values by a list of words that are equal, which only a comparator knows that finds its options.
class WithSynonyms : public StrictOrderAutoValueCompareOptions
{
  public:
    explicit WithSynonyms(std::u16string_view commaSeparatedWords)
        : words(commaSeparatedWords)
    {
    }

  protected:
    WithSynonyms* Clone() const override { return new WithSynonyms(*this); }
    XMLValueComparator* GetAttributeValueComparator(const DOMAttr*) const override { return new Comparator; }
    XMLValueComparator* GetValueComparator() const override { return new Comparator; }

  private:
    class Comparator : public XMLValueComparator
    {
        bool IsEqual() const override
        {
            const auto& options = dynamic_cast<const WithSynonyms&>(*GetOptions());
            return LeftValue() == RightValue() || (options.Knows(LeftValue()) && options.Knows(RightValue()));
        }
    };

    bool Knows(std::u16string_view word) const { return words.find(word) != std::u16string_view::npos; }

    std::u16string_view words;
};

TEST(FindDifferences, GivesValueComparatorsOptionsOfTheCallersClass)
{
    EXPECT_THAT(
        Differences("<a x='red'><b>pink</b><b>blue</b></a>", "<a x='scarlet'><b>red</b><b>red</b></a>",
                    WithSynonyms(u"red,scarlet,pink")),
        ElementsAre(R"(/a/b[2]/text() /a/b[2]/text() Text node values "blue" and "red" don't match.)"));
}

TEST(FindDifferences, LooksAtEachAttributeOnceHoweverManyDiffer)
{
    class Counting : public StrictOrderAutoValueCompareOptions
    {
      public:
        explicit Counting(int& counter)
            : count(counter)
        {
        }

      protected:
        Counting* Clone() const override { return new Counting(*this); }
        bool AcceptAttribute(const DOMAttr*) const override
        {
            ++count;
            return true;
        }

      private:
        int& count;
    };
    const auto elementWith = [](const std::string& value)
    {
        std::string text = "<e";
        for (int i = 0; i < 1'000; ++i)
            text += " a" + std::to_string(i) + "='" + value + "'";
        return text + "/>";
    };
    int looks = 0;
    EXPECT_EQ(Differences(elementWith("1"), elementWith("2"), Counting(looks)).size(), 1'000u);
    EXPECT_EQ(looks, 1'000);
}

TEST(FindDifferences, GoesOnBehindNodesAboutWhichTheOptionsThrow)
{
    /// Throws where the left node has the attribute `no`.
    class Refusing : public StrictOrderAutoValueCompareOptions
    {
        Refusing* Clone() const override { return new Refusing(*this); }
        bool AreNodeNamesEqual(const DOMNode* left, const DOMNode* right) const override
        {
            if (static_cast<const DOMElement*>(left)->hasAttribute(u"no"))
                throw XMLCompareException(left, right);
            return StrictOrderAutoValueCompareOptions::AreNodeNamesEqual(left, right);
        }
    };
    constexpr const char* Text = "<a><b><c no=''><d no=''/></c><c/></b><b no=''/></a>";
    EXPECT_THAT(
        Differences(Text, Text, Refusing()),
        ElementsAre("/a/b[1]/c[1] /a/b[1]/c[1] Undefined problem.", "/a/b[2] /a/b[2] Undefined problem."));
}

TEST(FindDifferences, HidesWhatTheFilterHides)
{
    SkipWhitespaceTextsCompareFilter filter;
    EXPECT_THAT(Differences("<a> <!-- c --> <b>1</b> </a>", "<a><b>2</b></a>", Standard, &filter),
                ElementsAre(R"(/a/b/text() /a/b/text() Text node values "1" and "2" don't match.)"));
}

TEST(FindDifferences, FollowsTheMarkersOfTheDocuments)
{
    const AttrRuledCompareOptions options;
    EXPECT_THAT(Differences("<a><b nuv_eps='0.5'><c>1</c></b><c>1</c><d nuv_type='string'>1</d></a>",
                            "<a><b nuv_eps='0.5'><c>1.2</c></b><c>1.2</c><d nuv_type='string'>1.0</d></a>",
                            options),
                ElementsAre(R"(/a/c/text() /a/c/text() Text node values "1" and "1.2" don't match.)",
                            R"(/a/d/text() /a/d/text() Text node values "1" and "1.0" don't match.)"));
}

TEST(FindDifferences, GivesOnceWhatTheOptionsThrowAboutAnAttribute)
{
    class WantingId : public StrictOrderAutoValueCompareOptions
    {
        WantingId* Clone() const override { return new WantingId(*this); }
        XMLNodeComparator* PrepareNodeComparator(const DOMElement* left, const DOMElement* right) override
        {
            if (!right->hasAttribute(u"id"))
                throw AttributeMissingException(left, right, left->getAttributeNode(u"id"), Right);
            return new XMLCompareStrictOrder;
        }
        bool AcceptAttribute(const DOMAttr*) const override { return false; }
    };
    EXPECT_THAT(
        Differences("<a id='1'><b id='2'/><b id='3'/></a>", "<a id='1'><b/><b id='4'/></a>", WantingId()),
        ElementsAre(R"(/a/b[1]/@id /a/b[1] Missing attribute "id" on the right.)"));
    EXPECT_THAT(Differences("<a id='1'/>", "<a/>", WantingId()),
                ElementsAre(R"(/a/@id /a Missing attribute "id" on the right.)"));
}

TEST(FindDifferences, GivesNullForAnAttributeOfNodesThatAreNoElements)
{
    /// Compares instructions as if they had attributes.
    class WithInstructions : public StrictOrderAutoValueCompareOptions
    {
        WithInstructions* Clone() const override { return new WithInstructions(*this); }
        void CompareSpecialTypeNodes(const DOMNode* left, const DOMNode* right) override
        {
            const DOMAttr* const attribute =
                left->getOwnerDocument()->getDocumentElement()->getAttributeNode(u"k");
            throw AttributesDontMatchException(left, right, attribute, attribute);
        }
    };
    EXPECT_THAT(Differences("<a k='1'><?p?></a>", "<a k='1'><?p?></a>", WithInstructions()),
                ElementsAre(R"(  Values of attribute "k" don't match: "1" and "1".)"));
}

/// A random tree of few names and values, so that two of them often agree in places.
std::string RandomTree(std::mt19937& random, int depth)
{
    const auto pick = [&random](int count)
    { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    const std::string name(1, static_cast<char>('a' + pick(8) / 7));
    std::string text = "<" + name;
    for (const char* attribute : {" i='", " j='"})
        if (pick(4) != 0)
            text += attribute + std::to_string(pick(6) / 5) + "'";
    text += ">";
    for (int child = depth == 0 ? 0 : pick(4); child > 0; --child)
        text += pick(3) == 0 ? "<?p?>" + std::to_string(pick(6) / 5) : RandomTree(random, depth - 1);
    return text + "</" + name + ">";
}

TEST(FindDifferences, FindsFirstWhatTheComparisonThrows)
{
    std::mt19937 random(20);
    SkipWhitespaceTextsCompareFilter filter;
    int equal = 0;
    constexpr int Rounds = 2000;
    for (int round = 0; round < Rounds; ++round)
    {
        const Document left = Parse(RandomTree(random, 3));
        const Document right = Parse(RandomTree(random, 3));
        Nuv::UniString thrown;
        try
        {
            Compare(left, right, Standard, &filter);
        }
        catch (const XMLCompareException& difference)
        {
            thrown = difference.GetText();
        }
        Nuv::UniString found;
        FindDifferences(left.get(), right.get(), &filter, Standard,
                        [&](const XMLDifference& difference)
                        {
                            found = difference.exception.GetText();
                            return false;
                        });
        EXPECT_EQ(found, thrown);
        equal += thrown.IsEmpty();
    }
    EXPECT_GT(equal, 0);
    EXPECT_LT(equal, Rounds / 2);
}

} // namespace
