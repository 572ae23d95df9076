#include "NuvXMLUtils/testing/XMLMatchers.hpp"

#include "tests/NuvXMLUtils/ExactCompareOptions.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace
{

using NuvTest::ExactCompareOptions;
using NuvXML::EqualsXML;
using NuvXML::EqualsXMLFile;
using NuvXML::StrictOrderAutoValueCompareOptions;
using testing::AnyOf;
using testing::Not;

/// Why a text does not match; fails the test when it does.
template <class Text>
std::string Explanation(const NuvXML::XMLMatching::Matcher& matcher, const Text& text)
{
    testing::StringMatchResultListener listener;
    EXPECT_FALSE(matcher.MatchAndExplain(text, &listener));
    return listener.str();
}

// What is equal.

TEST(EqualsXML, MatchesTheSameDocument)
{
    EXPECT_THAT("<a x='1'><b>text</b></a>", EqualsXML("<a x=\"1\"><b>text</b></a>"));
}

TEST(EqualsXML, TakesTextOfEveryKind)
{
    const std::string string = "<a>text</a>";
    const std::string_view view = string;
    const char* const array = string.c_str();
    const Nuv::UniString uniString(u"<a>text</a>");
    EXPECT_THAT(string, EqualsXML(uniString));
    EXPECT_THAT(view, EqualsXML(string));
    EXPECT_THAT(array, EqualsXML(view));
    EXPECT_THAT(uniString, EqualsXML(array));
}

TEST(EqualsXML, ReadsBytesInTheEncodingThatTheyDeclare)
{
    EXPECT_THAT("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", EqualsXML("<a>\xC3\xA9</a>"));
    EXPECT_THAT(std::string("\xFE\xFF\0<\0a\0/\0>", 10), EqualsXML("<a/>"));
}

TEST(EqualsXML, ReadsAUniStringWhateverEncodingItDeclares)
{
    EXPECT_THAT(Nuv::UniString(u"<?xml version='1.0' encoding='US-ASCII'?><a>\u00E9</a>"),
                EqualsXML("<a>\xC3\xA9</a>"));
}

TEST(EqualsXML, IgnoresWhiteSpaceBetweenElements)
{
    EXPECT_THAT("<a>\r\n\t<b> 1 </b>\n</a>\n", EqualsXML("<a><b>1</b></a>"));
}

TEST(EqualsXML, IgnoresCommentsAndProcessingInstructions)
{
    EXPECT_THAT("<?p i?><!-- c --><a><!-- c --><b>on<!-- c -->e<?p i?>d</b><?p i?></a><!-- c -->",
                EqualsXML("<a><b>oned</b></a>"));
}

TEST(EqualsXML, TakesCDATASectionsForText)
{
    EXPECT_THAT("<a>x<![CDATA[<y>]]>z</a>", EqualsXML("<a>x&lt;y>z</a>"));
    EXPECT_THAT("<a><![CDATA[x]]><![CDATA[y]]></a>", EqualsXML("<a><![CDATA[xy]]></a>"));
    EXPECT_THAT("<a><![CDATA[x]]></a>", Not(EqualsXML("<a><![CDATA[y]]></a>")));
    EXPECT_THAT("<a><![CDATA[x]]></a>", Not(EqualsXML("<a/>")));
    EXPECT_THAT("<a><![CDATA[ \n ]]></a>", EqualsXML("<a/>"));
}

TEST(EqualsXML, TakesEntitiesForWhatTheyStandFor)
{
    EXPECT_THAT("<!DOCTYPE a [<!ENTITY e 'x<b/>'><!ATTLIST a y CDATA 'z'>]><a>&e;</a>",
                EqualsXML("<a y='z'>&#x78;<b/></a>"));
}

TEST(EqualsXML, TellsOneDifferenceOfEachKind)
{
    EXPECT_THAT("<a><b/></a>", Not(EqualsXML("<a><c/></a>")));
    EXPECT_THAT("<a><b/></a>", Not(EqualsXML("<a><b/><b/></a>")));
    EXPECT_THAT("<a><b/></a>", Not(EqualsXML("<a>b</a>")));
    EXPECT_THAT("<a x='1'/>", Not(EqualsXML("<a x='2'/>")));
    EXPECT_THAT("<a x='1'/>", Not(EqualsXML("<a/>")));
}

// Options.

TEST(EqualsXML, ComparesByTheStandardOptions)
{
    EXPECT_THAT("<a x='Yes'>2.0</a>", EqualsXML("<A x='yes'>2.000001</A>"));
    EXPECT_THAT("<a>2.0</a>", Not(EqualsXML("<a>2.0001</a>")));
}

TEST(EqualsXML, ComparesByTheOptionsOfTheCaller)
{
    StrictOrderAutoValueCompareOptions options;
    options.SetDoubleEps(0.1);
    EXPECT_THAT("<a>2.0</a>", EqualsXML("<a>2.09</a>", options));
    EXPECT_THAT("<a>2.0</a>", Not(EqualsXML("<a>2.1</a>", options)));
}

TEST(EqualsXML, FollowsTheMarkersOfTheDocuments)
{
    const NuvXML::AttrRuledCompareOptions options;
    EXPECT_THAT("<a nuv_eps='0.5'><b>1</b></a>", EqualsXML("<a nuv_eps='0.5'><b>1.4</b></a>", options));
    EXPECT_THAT("<a><b nuv_type='string'>1</b></a>",
                Not(EqualsXML("<a><b nuv_type='string'>1.0</b></a>", options)));
}

TEST(EqualsXML, KeepsACopyOfOptionsOfTheCallersClass)
{
    const auto matcher = [](const char* expected) { return EqualsXML(expected, ExactCompareOptions()); };
    EXPECT_THAT("<a x='1'>2</a>", matcher("<a x='1'>2</a>"));
    EXPECT_THAT("<a>2</a>", Not(matcher("<A>2</A>")));
    EXPECT_THAT("<a>2</a>", Not(matcher("<a> 2</a>")));
    EXPECT_THAT("<a x='1'/>", Not(matcher("<a x='1.0'/>")));
}

// Messages.

TEST(EqualsXML, TellsTheReportAndBothLines)
{
    EXPECT_EQ(Explanation(EqualsXML("<Wall>\n\n    <Height>275</Height>\n</Wall>"),
                          "<Wall>\r\n\t<Height>276</Height>\r\n</Wall>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- Wall/Height\n"
              "\t- Wall/Height\n"
              "\tText node values \"275\" and \"276\" don't match.\n"
              "expected (left), line 3, /Wall/Height/text(): <Height>275</Height>\n"
              "actual (right), line 2, /Wall/Height/text(): <Height>276</Height>");
}

TEST(EqualsXML, TellsWhereAnAttributeIsMissing)
{
    EXPECT_EQ(Explanation(EqualsXML("<a>\r<b/>\r<b x='1'/></a>"), "<a><b/><b/></a>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a/b\n"
              "\t- a/b\n"
              "\tMissing attribute \"x\" on the right.\n"
              "expected (left), line 3, /a/b[2]/@x: <b x='1'/></a>\n"
              "actual (right), line 1, /a/b[2]: <a><b/><b/></a>");
}

TEST(EqualsXML, TellsTheLineOnWhichTextBeginsToDiffer)
{
    EXPECT_EQ(Explanation(EqualsXML("<a>one\ntwo\nthree\n</a>"),
                          "<!-- c -->\n<a>\n  one\n<![CDATA[two\nfour\n]]></a>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a\n"
              "\t- a\n"
              "\tText node values \"one\ntwo\nthree\n\" and \"\n  one\ntwo\nfour\n\" don't match.\n"
              "expected (left), line 3, /a/text(): three\n"
              "actual (right), line 5, /a/text(): four");
}

TEST(EqualsXML, ShowsLinesInUTF8AndTheirBeginningWhereTheyAreLong)
{
    const std::string latin = "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE9</a>";
    const std::string wide = std::string("\xFF\xFE<\0a\0>\0\xE8\0<\0/\0a\0>\0", 18);
    EXPECT_THAT(Explanation(EqualsXML(latin), wide),
                testing::EndsWith("expected (left), line 2, /a/text(): <a>\xC3\xA9</a>\n"
                                  "actual (right), line 1, /a/text(): <a>\xC3\xA8</a>"));
    EXPECT_THAT(
        Explanation(EqualsXML("<a/>"), Nuv::UniString(u"<a>\u00E9" + std::u16string(500, u'x') + u"</a>")),
        testing::EndsWith("/a/text(): <a>\xC3\xA9" + std::string(196, 'x') + " ..."));
}

/// Pairs the last child on the left with the first on the right.
class CrosswiseComparator : public NuvXML::XMLNodeComparator
{
    void WalkThrough() override
    {
        if (LeftWalker()->lastChild() && RightWalker()->firstChild())
            ControlNodeComparison();
    }
};

class CrosswiseOptions : public StrictOrderAutoValueCompareOptions
{
    CrosswiseOptions* Clone() const override { return new CrosswiseOptions(*this); }
    NuvXML::XMLNodeComparator* PrepareNodeComparator(const xercesc_3_0::DOMElement*,
                                                     const xercesc_3_0::DOMElement*) override
    {
        return new CrosswiseComparator;
    }
};

TEST(EqualsXML, TellsADifferenceThatOnlyTheOptionsFindWithoutPlaces)
{
    const auto matcher = EqualsXML("<a><b><c>1</c><c>2</c></b></a>", CrosswiseOptions());
    EXPECT_THAT("<a><b><c>2</c><c>3</c></b></a>", matcher);
    EXPECT_EQ(Explanation(matcher, "<a><b><c>1</c><c>2</c></b></a>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a/b/c\n"
              "\t- a/b/c\n"
              "\tText node values \"2\" and \"1\" don't match.");
    EXPECT_EQ(Explanation(matcher, "<a><b><c>3</c><c>2</c></b></a>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a/b/c\n"
              "\t- a/b/c\n"
              "\tText node values \"2\" and \"3\" don't match.");
    EXPECT_EQ(Explanation(EqualsXML("<a><b><c>5</c><c>2</c><c>2</c></b></a>", CrosswiseOptions()),
                          "<a><b><c>1</c><c>1</c><c>1</c></b></a>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a/b/c\n"
              "\t- a/b/c\n"
              "\tText node values \"2\" and \"1\" don't match.");
}

TEST(EqualsXML, TellsWhichTextIsNotWellFormed)
{
    EXPECT_EQ(Explanation(EqualsXML("<a>\n</b>"), "<a/>"),
              "which cannot be compared: the expected document is not well-formed, line 2: "
              "expected end of tag 'a'");
    EXPECT_EQ(Explanation(EqualsXML("<a/>"), "<a>\n&e;</a>"),
              "which is not well-formed, line 2: entity 'e' not found");
    const char* const null = nullptr;
    EXPECT_EQ(Explanation(EqualsXML("<a/>"), null),
              "which is not well-formed, line 1: invalid document structure");
}

TEST(EqualsXML, DoesNotTakeHalfASurrogatePairForACharacter)
{
    const Nuv::UniString half(std::u16string{u'<', u'a', u'>', char16_t(0xD800), u'<', u'/', u'a', u'>'});
    EXPECT_EQ(Explanation(EqualsXML("<a>\xEF\xBF\xBD</a>"), half),
              "which is not well-formed, line 1: "
              "leading surrogate character is not followed by a legal second character");
}

TEST(EqualsXML, DescribesItself)
{
    const testing::Matcher<std::string> matcher = EqualsXML(Nuv::UniString(u"<a>\u00E9</a>"));
    EXPECT_EQ(testing::DescribeMatcher<std::string>(matcher), "is XML equal to <a>\xC3\xA9</a>");
    EXPECT_EQ(testing::DescribeMatcher<std::string>(Not(matcher)), "is not XML equal to <a>\xC3\xA9</a>");
}

TEST(EqualsXML, WorksInOtherMatchers)
{
    EXPECT_THAT("<b/>", AnyOf(EqualsXML("<a/>"), EqualsXML("<b/>")));
    EXPECT_THAT((std::vector<std::string>{"<a />", "<b></b>"}),
                testing::ElementsAre(EqualsXML("<a/>"), EqualsXML("<b/>")));
}

// Files.

TEST(EqualsXMLFile, MatchesTheDocumentOfAFile)
{
    const NuvTest::ScratchFolder folder;
    folder.Write("a\u20AC.xml", "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\n<b>\xE9</b></a>");
    const auto path = folder.Path() / "a\u20AC.xml";
    EXPECT_THAT("<A><b>\xC3\xA9</b></A>", EqualsXMLFile(path));
    EXPECT_EQ(Explanation(EqualsXMLFile(path, ExactCompareOptions()), "<A><b>\xC3\xA9</b></A>"),
              "which differs from the expected document:\n"
              "Diff at nodes:\n"
              "\t- a\n"
              "\t- A\n"
              "\tNode names don't match.\n"
              "expected (left), line 2, /a: <a>\n"
              "actual (right), line 1, /A: <A><b>\xC3\xA9</b></A>");
}

TEST(EqualsXMLFile, FindsWhatTheFileNamesBesideIt)
{
    const NuvTest::ScratchFolder folder;
    folder.Write("part.xml", "<b/>");
    folder.Write("whole.xml", "<!DOCTYPE a [<!ENTITY part SYSTEM 'part.xml'>]><a>&part;</a>");
    EXPECT_THAT("<a><b/></a>", EqualsXMLFile(folder.Path() / "whole.xml"));
}

TEST(EqualsXMLFile, TellsWhyThereIsNothingToCompareWith)
{
    const NuvTest::ScratchFolder folder;
    folder.Write("damaged.xml", "<a>\n<b>\n</a>");
    const std::string path = folder.Path().string();
    EXPECT_EQ(Explanation(EqualsXMLFile(path + "/missing.xml"), "<a/>"),
              "which cannot be compared: the file " + path +
                  "/missing.xml cannot be read: No such file or directory");
    EXPECT_EQ(Explanation(EqualsXMLFile(path), "<a/>"),
              "which cannot be compared: the file " + path + " cannot be read: Is a directory");
    EXPECT_EQ(Explanation(EqualsXMLFile(path + "/damaged.xml"), "<a/>"),
              "which cannot be compared: the expected document is not well-formed, line 3: "
              "expected end of tag 'b'");
}

TEST(EqualsXMLFile, DescribesItself)
{
    const testing::Matcher<std::string> matcher = EqualsXMLFile("walls.xml");
    EXPECT_EQ(testing::DescribeMatcher<std::string>(matcher), "is XML equal to the file walls.xml");
    EXPECT_EQ(testing::DescribeMatcher<std::string>(Not(matcher)), "is not XML equal to the file walls.xml");
}

} // namespace
