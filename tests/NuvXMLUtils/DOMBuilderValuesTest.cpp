#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include <limits>
#include <random>
#include <vector>

namespace
{

using namespace NuvXML;
using Nuv::ClassVersion;
using Nuv::Guid;
using Nuv::UniString;
using Texts = std::vector<UniString>;

/// An open element `r`, without layout.
class OpenElement
{
  public:
    OpenElement()
    {
        builder.SetAutoTabsHint(false);
        builder.WriteStartElement("r");
    }

    xercesc_3_0::DOMElement& Element() { return *builder.GetActualNode(); }

    /// The text of the element written last.
    UniString LastText() { return UniString(Element().getLastElementChild()->getTextContent()); }

    UniString Attribute(const XMLCh* name) { return UniString(Element().getAttribute(name)); }

    /// Writes the value as an element through the overload of its type, and gives the text.
    template <class Value>
    UniString ElementText(Value value)
    {
        int (DOMBuilder::*const write)(const char*, Value) = &DOMBuilder::WriteXML;
        EXPECT_EQ((builder.*write)("n", value), 0);
        return LastText();
    }

    template <class Value>
    UniString AttributeText(Value value)
    {
        int (DOMBuilder::*const write)(const char*, Value) = &DOMBuilder::WriteXMLAttr;
        EXPECT_EQ((builder.*write)("n", value), 0);
        return Attribute(u"n");
    }

    DOMBuilder builder;
};

/// Sees every value at the two places where strings are written, and can make an attribute fail.
class Interceptor : public DOMBuilder
{
  public:
    using DOMBuilder::WriteXML;
    using DOMBuilder::WriteXMLAttr;

    int WriteXML(const char* name, const UniString& value) override
    {
        seen.push_back(UniString(name) + UniString(u"=") + value);
        return status;
    }
    int WriteXMLAttr(const char* name, const UniString& value) override
    {
        seen.push_back(UniString(u"@") + UniString(name) + UniString(u"=") + value);
        return failingAttribute == name ? status : 0;
    }

    Texts seen;
    int status = 0;
    std::string failingAttribute;
};

template <class Integer>
class DOMBuilderIntegers : public testing::Test
{
};

template <class Integer>
class DOMBuilderIntegerAttributes : public testing::Test
{
};

using ElementIntegers = testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, long,
                                       unsigned long, __int64, unsigned __int64>;
using AttributeIntegers =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, __int64, unsigned __int64>;
TYPED_TEST_SUITE(DOMBuilderIntegers, ElementIntegers);
TYPED_TEST_SUITE(DOMBuilderIntegerAttributes, AttributeIntegers);

/// The decimal text that the standard library makes.
template <class Integer>
UniString Decimal(Integer value)
{
    return UniString(std::to_string(value));
}

template <class Integer>
constexpr Integer Extremes[] = {std::numeric_limits<Integer>::min(), 0, 1, 65,
                                std::numeric_limits<Integer>::max()};

TYPED_TEST(DOMBuilderIntegers, AreElementsWithDecimalText)
{
    OpenElement r;
    for (const TypeParam value : Extremes<TypeParam>)
        EXPECT_EQ(r.ElementText(value), Decimal(value));
}

TYPED_TEST(DOMBuilderIntegerAttributes, AreDecimalText)
{
    OpenElement r;
    for (const TypeParam value : Extremes<TypeParam>)
        EXPECT_EQ(r.AttributeText(value), Decimal(value));
}

TYPED_TEST(DOMBuilderIntegers, PassThroughTheStringForm)
{
    Interceptor builder;
    builder.status = 77;
    int (DOMBuilder::*const write)(const char*, TypeParam) = &DOMBuilder::WriteXML;
    EXPECT_EQ((builder.*write)("n", std::numeric_limits<TypeParam>::max()), 77);
    EXPECT_EQ(builder.seen, Texts{UniString(u"n=") + Decimal(std::numeric_limits<TypeParam>::max())});
}

TYPED_TEST(DOMBuilderIntegerAttributes, PassThroughTheStringForm)
{
    Interceptor builder;
    builder.status = 77;
    builder.failingAttribute = "n";
    int (DOMBuilder::*const write)(const char*, TypeParam) = &DOMBuilder::WriteXMLAttr;
    EXPECT_EQ((builder.*write)("n", std::numeric_limits<TypeParam>::max()), 77);
    EXPECT_EQ(builder.seen, Texts{UniString(u"@n=") + Decimal(std::numeric_limits<TypeParam>::max())});
}

TEST(DOMBuilderValues, WriteTheWholeRangesAsText)
{
    OpenElement r;
    EXPECT_EQ(r.ElementText<__int64>(std::numeric_limits<__int64>::min()),
              UniString(u"-9223372036854775808"));
    EXPECT_EQ(r.ElementText<unsigned __int64>(std::numeric_limits<unsigned __int64>::max()),
              UniString(u"18446744073709551615"));
    EXPECT_EQ(r.ElementText<int>(std::numeric_limits<int>::min()), UniString(u"-2147483648"));
    EXPECT_EQ(r.ElementText<unsigned int>(std::numeric_limits<unsigned int>::max()),
              UniString(u"4294967295"));
    EXPECT_EQ(r.ElementText<short>(-32768), UniString(u"-32768"));
    EXPECT_EQ(r.ElementText<unsigned short>(65535), UniString(u"65535"));
}

TEST(DOMBuilderValues, WriteACharAsItsSignedCode)
{
    OpenElement r;
    EXPECT_EQ(r.ElementText<char>('A'), UniString(u"65"));
    EXPECT_EQ(r.ElementText<char>('\xFF'), UniString(u"-1"));
    EXPECT_EQ(r.ElementText<char>('\x80'), UniString(u"-128"));
    EXPECT_EQ(r.AttributeText<char>('A'), UniString(u"65"));
    EXPECT_EQ(r.AttributeText<char>('\xFF'), UniString(u"-1"));
}

TEST(DOMBuilderValues, WriteAnUnsignedCharAsANumber)
{
    OpenElement r;
    EXPECT_EQ(r.ElementText<unsigned char>(255), UniString(u"255"));
    EXPECT_EQ(r.ElementText<unsigned char>(0), UniString(u"0"));
    EXPECT_EQ(r.AttributeText<unsigned char>(255), UniString(u"255"));
}

TEST(DOMBuilderValues, WriteAGuidInTheHostsForm)
{
    Guid guid;
    ASSERT_EQ(guid.ConvertFromString(UniString(u"{0123abcd-4567-89ef-0123-456789abcdef}")), 0);
    OpenElement r;
    EXPECT_EQ(r.ElementText<const Guid&>(guid), UniString(u"0123ABCD-4567-89EF-0123-456789ABCDEF"));
    EXPECT_EQ(r.AttributeText<const Guid&>(guid), UniString(u"0123ABCD-4567-89EF-0123-456789ABCDEF"));
}

TEST(DOMBuilderValues, PassAGuidThroughTheStringForms)
{
    Interceptor builder;
    builder.status = 77;
    builder.failingAttribute = "a";
    EXPECT_EQ(builder.WriteXML("e", Guid()), 77);
    EXPECT_EQ(builder.WriteXMLAttr("a", Guid()), 77);
    EXPECT_EQ(builder.seen, (Texts{UniString(u"e=00000000-0000-0000-0000-000000000000"),
                                   UniString(u"@a=00000000-0000-0000-0000-000000000000")}));
}

TEST(DOMBuilderValues, PassTheInheritedFormsThroughTheStringForms)
{
    Interceptor builder;
    builder.WriteXML("e", true);
    builder.WriteXML("e", "texts", 4);
    builder.WriteXMLAttr("a", false);
    builder.WriteXMLAttr("a", "texts", 4);
    builder.WriteXMLAttr("a", -5L);
    builder.WriteXMLAttr("a", 5UL);
    EXPECT_EQ(builder.seen, (Texts{UniString(u"e=true"), UniString(u"e=text"), UniString(u"@a=false"),
                                   UniString(u"@a=text"), UniString(u"@a=-5"), UniString(u"@a=5")}));
}

TEST(DOMBuilderValues, AreVisibleInAllFormsToHoldersOfTheBuilderItself)
{
    OpenElement r;
    r.builder.WriteXML("n", true);
    EXPECT_EQ(r.LastText(), UniString(u"true"));
    r.builder.WriteXML("n", "texts", 4);
    EXPECT_EQ(r.LastText(), UniString(u"text"));
    r.builder.WriteXMLTextNode(false);
    r.builder.WriteXMLTextNode('A');
    r.builder.WriteXMLTextNode("texts", 4);
    r.builder.WriteXMLCDATAString("cdatas", 5);
    r.builder.WriteXMLCDATABinToHex("\x01\xAB", 2);
    EXPECT_EQ(UniString(r.Element().getTextContent()), UniString(u"truetextfalse65textcdata01AB"));
    r.builder.WriteXMLAttr("a", true);
    EXPECT_EQ(r.Attribute(u"a"), UniString(u"true"));
    r.builder.WriteXMLAttr("a", 5L);
    EXPECT_EQ(r.Attribute(u"a"), UniString(u"5"));
}

TEST(DOMBuilderValues, KeepATextLiteralFromBecomingABool)
{
    auto takesElement = []<class Text>(Text)
    {
        return requires(DOMBuilder b, Text t) { b.WriteXML("n", t); };
    };
    auto takesAttribute = []<class Text>(Text)
    {
        return requires(DOMBuilder b, Text t) { b.WriteXMLAttr("n", t); };
    };
    EXPECT_FALSE(takesElement("text"));
    EXPECT_FALSE(takesElement(u"text"));
    EXPECT_FALSE(takesAttribute("text"));
    EXPECT_FALSE(takesAttribute(u"text"));
    EXPECT_TRUE(takesElement(UniString(u"text")));
    EXPECT_TRUE(takesAttribute(UniString(u"text")));
}

TEST(DOMBuilderValues, WriteAnEmptyStringAsAnElementWithoutAChild)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXML("n", UniString()), 0);
    EXPECT_EQ(r.Element().getFirstElementChild()->getFirstChild(), nullptr);
}

TEST(DOMBuilderValues, WriteAnEmptyStringAsAnEmptyAttribute)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXMLAttr("n", UniString()), 0);
    EXPECT_TRUE(r.Element().hasAttribute(u"n"));
    EXPECT_EQ(r.Attribute(u"n"), UniString());
}

TEST(DOMBuilderValues, WriteAStringAsOneTextNode)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXML("n", UniString(u" <&> \u00E9 \U0001F600 \t")), 0);
    const xercesc_3_0::DOMNode* text = r.Element().getFirstElementChild()->getFirstChild();
    EXPECT_EQ(text->getNodeType(), xercesc_3_0::DOMNode::TEXT_NODE);
    EXPECT_EQ(UniString(text->getNodeValue()), UniString(u" <&> \u00E9 \U0001F600 \t"));
    EXPECT_EQ(text->getNextSibling(), nullptr);
}

TEST(DOMBuilderValues, EndAStringAtAZeroCharacter)
{
    OpenElement r;
    const UniString padded(u"ab\0\0", 4);
    EXPECT_EQ(r.ElementText<const UniString&>(padded), UniString(u"ab"));
    EXPECT_EQ(r.AttributeText<const UniString&>(padded), UniString(u"ab"));
    EXPECT_EQ(r.ElementText<const UniString&>(UniString(u"a\r\0\r", 4)), UniString(u"a\n"));
    const char zeros[4] = {};
    r.builder.WriteXML("n", zeros, sizeof zeros);
    EXPECT_EQ(r.Element().getLastElementChild()->getFirstChild(), nullptr);
    r.builder.WriteXML("n", UniString(u"\0\r", 2));
    EXPECT_EQ(r.Element().getLastElementChild()->getFirstChild(), nullptr);
}

TEST(DOMBuilderValues, NormaliseLineEndsOfElementsOnly)
{
    OpenElement r;
    EXPECT_TRUE(r.builder.GetReplaceCR());
    EXPECT_EQ(r.ElementText<const UniString&>(UniString(u"a\r\nb\rc")), UniString(u"a\nb\nc"));
    EXPECT_EQ(r.AttributeText<const UniString&>(UniString(u"a\r\nb\rc")), UniString(u"a\r\nb\rc"));
    r.builder.WriteXMLTextNode(UniString(u"d\r\ne\rf"));
    EXPECT_EQ(UniString(r.Element().getLastChild()->getNodeValue()), UniString(u"d\r\ne\rf"));
    r.builder.WriteXMLCDATAString(UniString(u"g\r\nh\ri"));
    EXPECT_EQ(UniString(r.Element().getLastChild()->getNodeValue()), UniString(u"g\r\nh\ri"));
}

TEST(DOMBuilderValues, KeepLineEndsWhenReplacementIsOff)
{
    OpenElement r;
    r.builder.SetReplaceCR(false);
    EXPECT_FALSE(r.builder.GetReplaceCR());
    EXPECT_EQ(r.ElementText<const UniString&>(UniString(u"a\r\nb\rc")), UniString(u"a\r\nb\rc"));
    EXPECT_EQ(r.AttributeText<const UniString&>(UniString(u"a\r\nb\rc")), UniString(u"a\r\nb\rc"));
    r.builder.SetReplaceCR(true);
    EXPECT_EQ(r.ElementText<const UniString&>(UniString(u"a\r\nb\rc")), UniString(u"a\nb\nc"));
}

TEST(DOMBuilderValues, NormaliseGeneratedTextAsTwoPlainReplacementsDo)
{
    OpenElement r;
    std::mt19937 random(20240501);
    for (int round = 0; round < 2000; ++round)
    {
        std::u16string text;
        for (size_t length = random() % 12; length > 0; --length)
            text += u"\r\r\r\n\nab\t"[random() % 8];
        UniString expected(text);
        expected.ReplaceAll(UniString(u"\r\n"), UniString(u"\n"));
        expected.ReplaceAll(UniString(u"\r"), UniString(u"\n"));
        ASSERT_EQ(r.ElementText<const UniString&>(UniString(text)), expected) << UniString(text);
    }
}

TEST(DOMBuilderValues, ReplaceAnAttributeThatIsThere)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXMLAttr("a", 1), 0);
    EXPECT_EQ(r.builder.WriteXMLAttr("a", UniString(u"x")), 0);
    EXPECT_EQ(r.Element().getAttributes()->getLength(), 1u);
    EXPECT_EQ(r.Attribute(u"a"), UniString(u"x"));
}

TEST(DOMBuilderValues, TakeNamesInTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    OpenElement r;
    r.builder.WriteXML("Gr\xF6\xDF"
                       "e",
                       1);
    r.builder.WriteXMLAttr("L\xE4nge", 2);
    EXPECT_EQ(UniString(r.Element().getFirstElementChild()->getNodeName()), UniString(u"Größe"));
    EXPECT_EQ(r.Attribute(u"Länge"), UniString(u"2"));
}

TEST(DOMBuilderValues, TakeNamesOfAnyLength)
{
    OpenElement r;
    for (size_t length = 60; length <= 70; ++length)
    {
        const std::string name(length, 'n');
        r.builder.WriteXML(name.c_str(), 1);
        EXPECT_EQ(UniString(r.Element().getLastElementChild()->getNodeName()), UniString(name));
        r.builder.WriteXMLAttr(name.c_str(), 2);
        EXPECT_EQ(r.Attribute(UniString(name).ToUTF16()), UniString(u"2"));
    }
}

TEST(DOMBuilderValues, RefuseWhatIsNoXMLNameAndChangeNothing)
{
    OpenElement r;
    r.builder.SetAutoTabsHint(true);
    for (const char* name : {"", "1", "a b", "<", static_cast<const char*>(nullptr)})
    {
        EXPECT_THROW(r.builder.WriteXML(name, 1), xercesc_3_0::DOMException);
        EXPECT_THROW(r.builder.WriteXMLAttr(name, 1), xercesc_3_0::DOMException);
    }
    EXPECT_FALSE(r.Element().hasChildNodes());
    EXPECT_FALSE(r.Element().hasAttributes());
    EXPECT_EQ(r.builder.Export(),
              UniString(u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?><r/>"));
}

TEST(DOMBuilderValues, FailBeforeTheRootElement)
{
    DOMBuilder builder;
    EXPECT_EQ(builder.WriteXML("n", 1), Nuv::Failure);
    EXPECT_EQ(builder.WriteXMLAttr("n", 1), Nuv::Failure);
    EXPECT_EQ(builder.WriteXMLVersionAttr(ClassVersion{1, 2}), Nuv::Failure);
    EXPECT_EQ(builder.GetDOMDocument()->getFirstChild(), nullptr);
}

TEST(DOMBuilderValues, CannotFollowTheRootElement)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteEndElement();
    EXPECT_THROW(builder.WriteXML("n", 1), xercesc_3_0::DOMException);
    EXPECT_EQ(builder.WriteXMLAttr("n", 1), Nuv::Failure);
    EXPECT_EQ(builder.GetDOMDocument()->getDocumentElement()->hasAttributes(), false);
    EXPECT_EQ(builder.GetDOMDocument()->getDocumentElement()->hasChildNodes(), false);
}

TEST(DOMBuilderVersion, IsTwoAttributes)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXMLVersionAttr(ClassVersion{3, 1}), 0);
    EXPECT_EQ(r.Attribute(u"Mv"), UniString(u"3"));
    EXPECT_EQ(r.Attribute(u"Sv"), UniString(u"1"));
    EXPECT_EQ(r.Element().getAttributes()->getLength(), 2u);
}

TEST(DOMBuilderVersion, IsWrittenAtItsBounds)
{
    OpenElement r;
    EXPECT_EQ(r.builder.WriteXMLVersionAttr(ClassVersion{0, 0, 9}), 0);
    EXPECT_EQ(r.Attribute(u"Mv"), UniString(u"0"));
    EXPECT_EQ(r.Attribute(u"Sv"), UniString(u"0"));
    EXPECT_EQ(r.builder.WriteXMLVersionAttr(ClassVersion{255, 254}), 0);
    EXPECT_EQ(r.Attribute(u"Mv"), UniString(u"255"));
    EXPECT_EQ(r.Attribute(u"Sv"), UniString(u"254"));
}

TEST(DOMBuilderVersion, GivesTheStatusOfAFailingMajorNumberAndStopsThere)
{
    Interceptor builder;
    builder.status = 77;
    builder.failingAttribute = "Mv";
    EXPECT_EQ(builder.WriteXMLVersionAttr(ClassVersion{3, 1}), 77);
    EXPECT_EQ(builder.seen, Texts{UniString(u"@Mv=3")});
}

TEST(DOMBuilderVersion, GivesTheStatusOfAFailingMinorNumber)
{
    Interceptor builder;
    builder.status = 77;
    builder.failingAttribute = "Sv";
    EXPECT_EQ(builder.WriteXMLVersionAttr(ClassVersion{3, 1}), 77);
    EXPECT_EQ(builder.seen, (Texts{UniString(u"@Mv=3"), UniString(u"@Sv=1")}));
}

TEST(DOMBuilderVersion, PassesThroughTheUnsignedCharForm)
{
    class Bytes : public DOMBuilder
    {
      public:
        using DOMBuilder::WriteXMLAttr;
        int WriteXMLAttr(const char*, unsigned char value) override
        {
            seen.push_back(value);
            return 0;
        }
        std::vector<int> seen;
    };
    Bytes builder;
    EXPECT_EQ(builder.WriteXMLVersionAttr(ClassVersion{200, 7}), 0);
    EXPECT_EQ(builder.seen, (std::vector<int>{200, 7}));
}

} // namespace
