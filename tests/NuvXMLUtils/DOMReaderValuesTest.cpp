#include "DOMReaderSupport.hpp"

#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOM.hpp>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace
{

using namespace ReaderTests;

constexpr int Failed = -7003;

/// A reader in front of an element v and an attribute v, both with this text.
TextReader ReaderOf(const std::string& text)
{
    std::string document("<r v='");
    document.append(text).append("'><v>").append(text).append("</v></r>");
    return TextReader(document);
}

constexpr char16_t ElementIsNoNumber[] = u"Value should be number, but is not. In tag: v";
constexpr char16_t AttributeIsNoNumber[] = u"Attribute should be number, but is not. AttributeName: v";

// Both families, each member called through the same name.

struct Element
{
    template <class T>
    static int Read(DOMReader& reader, const char* name, T& value)
    {
        return reader.ReadXML(name, value);
    }
    static int Read(DOMReader& reader, const char* name, char* buffer, unsigned int size)
    {
        return reader.ReadXML(name, buffer, size);
    }
    static constexpr const char16_t* NoNumber = ElementIsNoNumber;
    static constexpr const char16_t* Missing = u"Start element for x tag not found";
    static constexpr const char* PlaceAfterwards = ">v";
};

struct Attribute
{
    template <class T>
    static int Read(DOMReader& reader, const char* name, T& value)
    {
        return reader.ReadXMLAttr(name, value);
    }
    static int Read(DOMReader& reader, const char* name, char* buffer, unsigned int size)
    {
        return reader.ReadXMLAttr(name, buffer, size);
    }
    static constexpr const char16_t* NoNumber = AttributeIsNoNumber;
    static constexpr const char16_t* Missing = u"Missing Attribute: x";
    static constexpr const char* PlaceAfterwards = "<r";
};

template <class Form>
class DOMReaderValues : public testing::Test
{
  protected:
    template <class T>
    static void ExpectValue(const std::string& text, T expected)
    {
        TextReader reader = ReaderOf(text);
        T value{};
        EXPECT_EQ(Form::Read(reader, "v", value), 0) << text;
        EXPECT_EQ(value, expected) << text;
        EXPECT_EQ(PlaceOf(reader), Form::PlaceAfterwards);
        EXPECT_TRUE(MessagesOf(reader).empty());
    }

    /// The value stays as it was; the reader is behind the element.
    template <class T>
    static void ExpectFailure(const std::string& text, T before, const Array<UniString>& messages)
    {
        TextReader reader = ReaderOf(text);
        T value = before;
        EXPECT_EQ(Form::Read(reader, "v", value), Failed) << text;
        EXPECT_EQ(value, before) << text;
        EXPECT_EQ(MessagesOf(reader), messages) << text;
        EXPECT_EQ(PlaceOf(reader), Form::PlaceAfterwards);
        EXPECT_EQ(reader.GetErrorStatus(), XMLIChannel::NoError);
    }

    template <class T>
    static void ExpectNoNumber(const std::string& text)
    {
        ExpectFailure<T>(text, T(42), {Form::NoNumber});
    }

    /// An integer type reads exactly the numbers that it holds.
    template <class T>
    static void ExpectBounds(const std::string& least, const std::string& greatest, const std::string& below,
                             const std::string& above)
    {
        ExpectValue<T>(least, std::numeric_limits<T>::min());
        ExpectValue<T>(greatest, std::numeric_limits<T>::max());
        ExpectNoNumber<T>(below);
        ExpectNoNumber<T>(above);
    }

    template <class T>
    static void ExpectToBeMissing()
    {
        TextReader reader("<r><v>1</v></r>");
        T value{};
        EXPECT_EQ(Form::Read(reader, "x", value), Failed);
        EXPECT_EQ(MessagesOf(reader), Array<UniString>{Form::Missing});
        EXPECT_EQ(PlaceOf(reader), "<r");
    }
};

using Forms = testing::Types<Element, Attribute>;

struct FormNames
{
    template <class Form>
    static std::string GetName(int)
    {
        return std::is_same_v<Form, Element> ? "Element" : "Attribute";
    }
};

TYPED_TEST_SUITE(DOMReaderValues, Forms, FormNames);

TYPED_TEST(DOMReaderValues, AreTextAsItStands)
{
    this->ExpectValue("text", UniString(u"text"));
    this->ExpectValue("  a  b  ", UniString(u"  a  b  "));
    this->ExpectValue("&lt;&#x1F600;\u00FC\u20AC", UniString(u"<\U0001F600\u00FC\u20AC"));
    this->ExpectValue("", UniString());
}

TYPED_TEST(DOMReaderValues, AreIntegersWithinTheirBounds)
{
    this->template ExpectBounds<short>("-32768", "32767", "-32769", "32768");
    this->template ExpectBounds<unsigned short>("0", "65535", "-1", "65536");
    this->template ExpectBounds<int>("-2147483648", "2147483647", "-2147483649", "2147483648");
    this->template ExpectBounds<unsigned int>("0", "4294967295", "-1", "4294967296");
    this->template ExpectBounds<long>("-9223372036854775808", "9223372036854775807", "-9223372036854775809",
                                      "9223372036854775808");
    this->template ExpectBounds<unsigned long>("0", "18446744073709551615", "-1", "18446744073709551616");
    this->template ExpectBounds<__int64>("-9223372036854775808", "9223372036854775807",
                                         "-9223372036854775809", "9223372036854775808");
    this->template ExpectBounds<unsigned __int64>("0", "18446744073709551615", "-1", "18446744073709551616");
}

TYPED_TEST(DOMReaderValues, AreNumbersWithAPoint)
{
    this->template ExpectValue<double>("-1.5e300", -1.5e300);
    this->template ExpectValue<double>("1.7976931348623157e308", std::numeric_limits<double>::max());
    this->template ExpectValue<double>("4.9406564584124654e-324", std::numeric_limits<double>::denorm_min());
    this->template ExpectValue<float>("0.1", 0.1f);
    this->template ExpectValue<float>("3.4028235e38", std::numeric_limits<float>::max());
    this->template ExpectNoNumber<double>("1.8e308");
    this->template ExpectNoNumber<float>("3.5e38");
    this->template ExpectNoNumber<double>("inf");
    this->template ExpectNoNumber<float>("nan");
    this->template ExpectNoNumber<double>("1,5");
}

TYPED_TEST(DOMReaderValues, AreNumbersWithWhiteSpaceAround)
{
    this->template ExpectValue<int>(" \n 12 \t", 12);
    this->template ExpectValue<double>(" 1.5 ", 1.5);
    this->template ExpectValue<unsigned char>(" 12 ", 12);
}

TYPED_TEST(DOMReaderValues, AreNoNumbersWithAnythingElse)
{
    for (const char* text : {"", " ", "twelve", "12x", "1 2", "0x10", "--1", "+-1", "1e", "\u0661"})
    {
        this->template ExpectNoNumber<short>(text);
        this->template ExpectNoNumber<unsigned short>(text);
        this->template ExpectNoNumber<int>(text);
        this->template ExpectNoNumber<unsigned int>(text);
        this->template ExpectNoNumber<__int64>(text);
        this->template ExpectNoNumber<unsigned __int64>(text);
        this->template ExpectNoNumber<float>(text);
        this->template ExpectNoNumber<double>(text);
        this->template ExpectNoNumber<char>(text);
        this->template ExpectNoNumber<unsigned char>(text);
    }
    this->template ExpectNoNumber<int>("1.5");
}

TYPED_TEST(DOMReaderValues, AreTheLowEightBitsForCharacters)
{
    this->template ExpectValue<unsigned char>("300", 44);
    this->template ExpectValue<unsigned char>("-1", 255);
    this->template ExpectValue<unsigned char>("255", 255);
    this->template ExpectValue<char>("65", 'A');
    this->template ExpectValue<char>("-1", static_cast<char>(-1));
    this->template ExpectValue<char>("255", static_cast<char>(-1));
    this->template ExpectValue<char>("-2147483648", 0);
    this->template ExpectNoNumber<char>("2147483648");
    this->template ExpectNoNumber<unsigned char>("A");
}

TYPED_TEST(DOMReaderValues, AreBooleanWordsInAnyCase)
{
    for (const char* text : {"false", "0", "no", "FALSE", "False", "No", "nO"})
        this->ExpectValue(text, false);
    for (const char* text : {"true", "1", "yes", "TRUE", "True", "Yes", "yeS"})
        this->ExpectValue(text, true);
}

TYPED_TEST(DOMReaderValues, AreNoBooleansWithoutAMessageOtherwise)
{
    for (const char* text : {"", "on", "off", " true", "true ", "2", "00", "t", "y", "n", "truefalse"})
    {
        this->ExpectFailure(text, true, {});
        this->ExpectFailure(text, false, {});
    }
}

TYPED_TEST(DOMReaderValues, AreGUIDs)
{
    Guid expected;
    ASSERT_EQ(expected.ConvertFromString(u"01234567-89AB-CDEF-0123-456789ABCDEF"), 0);
    this->ExpectValue("01234567-89AB-CDEF-0123-456789ABCDEF", expected);
    this->ExpectValue("{01234567-89ab-cdef-0123-456789abcdef}", expected);
    for (const char* text : {"", "01234567", "01234567-89AB-CDEF-0123-456789ABCDEG"})
        this->ExpectFailure(text, expected, {});
}

TYPED_TEST(DOMReaderValues, LeaveOneMessageWhenTheyAreMissing)
{
    this->template ExpectToBeMissing<Guid>();
    this->template ExpectToBeMissing<UniString>();
    this->template ExpectToBeMissing<double>();
    this->template ExpectToBeMissing<float>();
    this->template ExpectToBeMissing<unsigned __int64>();
    this->template ExpectToBeMissing<__int64>();
    this->template ExpectToBeMissing<unsigned long>();
    this->template ExpectToBeMissing<long>();
    this->template ExpectToBeMissing<unsigned int>();
    this->template ExpectToBeMissing<int>();
    this->template ExpectToBeMissing<unsigned short>();
    this->template ExpectToBeMissing<short>();
    this->template ExpectToBeMissing<bool>();
    this->template ExpectToBeMissing<char>();
    this->template ExpectToBeMissing<unsigned char>();
    TextReader reader("<r/>");
    char buffer[3] = "ab";
    EXPECT_EQ(TypeParam::Read(reader, "x", buffer, 2), Failed);
    EXPECT_STREQ(buffer, "ab");
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{TypeParam::Missing});
}

TYPED_TEST(DOMReaderValues, FailInAReaderWithoutANode)
{
    TextReader maker("<r/>");
    const auto fails = [&](auto value)
    {
        const std::unique_ptr<DOMReader> reader(maker.Create(UniString(), UniString()));
        EXPECT_EQ(TypeParam::Read(*reader, "v", value), Failed);
        EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NothingToRead);
        EXPECT_EQ(reader->GetNumberOfMessage(), 0);
    };
    fails(Guid());
    fails(UniString());
    fails(0.0);
    fails(0.0f);
    fails(0);
    fails(0u);
    fails(0l);
    fails(0ul);
    fails(0ll);
    fails(0ull);
    fails(short());
    fails(static_cast<unsigned short>(0));
    fails(false);
    fails('a');
    fails(static_cast<unsigned char>(0));
    const std::unique_ptr<DOMReader> reader(maker.Create(UniString(), UniString()));
    char buffer[2] = "a";
    EXPECT_EQ(TypeParam::Read(*reader, "v", buffer, 1), Failed);
    EXPECT_EQ(reader->GetErrorStatus(), XMLIChannel::NothingToRead);
    EXPECT_STREQ(buffer, "a");
}

TYPED_TEST(DOMReaderValues, ArePaddedWithZerosInABuffer)
{
    TextReader reader = ReaderOf("abc");
    char buffer[] = "????????";
    EXPECT_EQ(TypeParam::Read(reader, "v", buffer, 6), 0);
    EXPECT_EQ(std::string_view(buffer, 8), std::string_view("abc\0\0\0??", 8));
}

TYPED_TEST(DOMReaderValues, FillABufferOfTheirLengthWithoutATerminator)
{
    TextReader reader = ReaderOf("abc");
    char buffer[] = "????";
    EXPECT_EQ(TypeParam::Read(reader, "v", buffer, 3), 0);
    EXPECT_STREQ(buffer, "abc?");
    EXPECT_TRUE(MessagesOf(reader).empty());
}

TYPED_TEST(DOMReaderValues, AreInTheLocalCodePageInABuffer)
{
    char buffer[] = "??????";
    {
        const NuvTest::LocalCodePageScope windows("windows-1252");
        TextReader reader = ReaderOf("\u20AC\u0416");
        EXPECT_EQ(TypeParam::Read(reader, "v", buffer, 3), 0);
        EXPECT_EQ(std::string_view(buffer, 4), std::string_view("\x80?\0?", 4));
    }
    const NuvTest::LocalCodePageScope utf8("UTF-8");
    TextReader reader = ReaderOf("\u20AC");
    EXPECT_EQ(TypeParam::Read(reader, "v", buffer, 4), 0);
    EXPECT_EQ(std::string_view(buffer, 5), std::string_view("\xE2\x82\xAC\0?", 5));
}

TYPED_TEST(DOMReaderValues, AreCutWhenTheyHaveMoreBytesThanTheBuffer)
{
    const NuvTest::LocalCodePageScope utf8("UTF-8");
    TextReader reader = ReaderOf("\u20AC\u20AC");
    char buffer[] = "????";
    EXPECT_EQ(TypeParam::Read(reader, "v", buffer, 2), 0);
    EXPECT_STREQ(buffer, "\xE2\x82??");
}

TYPED_TEST(DOMReaderValues, HaveNamesInTheLocalCodePage)
{
    const auto expectToFind = [](const char* name)
    {
        TextReader reader("<r \u00FC\u00E4='12'><\u00FC\u00E4>12</\u00FC\u00E4></r>");
        int value = 0;
        EXPECT_EQ(TypeParam::Read(reader, name, value), 0) << name;
        EXPECT_EQ(value, 12);
        EXPECT_EQ(TypeParam::Read(reader, "x\xC3\xBC", value), Failed);
    };
    {
        const NuvTest::LocalCodePageScope windows("windows-1252");
        expectToFind("\xFC\xE4");
    }
    const NuvTest::LocalCodePageScope utf8("UTF-8");
    expectToFind("\xC3\xBC\xC3\xA4");
}

TYPED_TEST(DOMReaderValues, HaveTheirNameFromTheLocalCodePageInMessages)
{
    const NuvTest::LocalCodePageScope windows("windows-1252");
    TextReader reader("<r/>");
    UniString value;
    EXPECT_EQ(TypeParam::Read(reader, "\x80", value), Failed);
    const UniString expected = std::is_same_v<TypeParam, Element> ? u"Start element for \u20AC tag not found"
                                                                  : u"Missing Attribute: \u20AC";
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{expected});
}

TYPED_TEST(DOMReaderValues, HaveNamesOfAnyLength)
{
    const std::string name(500, 'n');
    std::string text("<r ");
    text.append(name).append("='12'><").append(name).append(">12</").append(name).append("></r>");
    TextReader reader(text);
    int value = 0;
    EXPECT_EQ(TypeParam::Read(reader, name.c_str(), value), 0);
    EXPECT_EQ(value, 12);
}

TYPED_TEST(DOMReaderValues, AreNotFoundWithoutAName)
{
    TextReader reader = ReaderOf("12");
    UniString value;
    EXPECT_EQ(TypeParam::Read(reader, nullptr, value), Failed);
    EXPECT_EQ(PlaceOf(reader), "<r");
}

// Elements only.

TEST(DOMReaderElements, GiveTheTextOfTheirFirstChildOnly)
{
    TextReader reader(
        "<r><a>one<!--c-->two</a><b><![CDATA[ c ]]>two</b><c><!--comment-->text</c><d><e>x</e></d>"
        "<f><?p q?></f></r>");
    UniString value;
    for (const auto& [name, expected] :
         {std::pair("a", u"one"), {"b", u" c "}, {"c", u"comment"}, {"d", u""}, {"f", u"q"}})
    {
        value = UniString(u"before");
        EXPECT_EQ(reader.ReadXML(name, value), 0);
        EXPECT_EQ(value, UniString(expected)) << name;
        EXPECT_EQ(PlaceOf(reader).front(), '>');
    }
}

TEST(DOMReaderElements, AreReadInAnyOrderAndAsOftenAsWanted)
{
    TextReader reader("<r><a>1</a><b>2</b><c>3</c></r>");
    for (const auto& [name, expected] :
         {std::pair("c", 3), {"a", 1}, {"b", 2}, {"b", 2}, {"a", 1}, {"c", 3}, {"c", 3}})
    {
        int value = 0;
        EXPECT_EQ(reader.ReadXML(name, value), 0);
        EXPECT_EQ(value, expected);
    }
    EXPECT_TRUE(MessagesOf(reader).empty());
}

TEST(DOMReaderElements, OfOneNameAreReadInTheirOrder)
{
    TextReader reader("<r><v>1</v><v>2</v><x/><v>3</v></r>");
    for (const int expected : {1, 2, 3, 1})
    {
        int value = 0;
        EXPECT_EQ(reader.ReadXML("v", value), 0);
        EXPECT_EQ(value, expected);
    }
}

TEST(DOMReaderElements, AreFoundInElementsOfTheSameName)
{
    TextReader reader("<v><v>1</v></v>");
    int value = 0;
    EXPECT_EQ(reader.ReadXML("v", value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(reader.ReadEndElement("v"), 0);
    EXPECT_EQ(PlaceOf(reader), ">v");
}

TEST(DOMReaderElements, ThatAreMissingLeaveTheReaderWhereItIs)
{
    TextReader reader("<r><a>1</a><b>2</b></r>");
    int value = 42;
    EXPECT_EQ(reader.ReadXML("x", value), Failed);
    EXPECT_EQ(PlaceOf(reader), "<r");
    EXPECT_EQ(reader.ReadXML("a", value), 0);
    EXPECT_EQ(reader.ReadXML("x", value), Failed);
    EXPECT_EQ(PlaceOf(reader), ">a");
    EXPECT_EQ(reader.ReadXML("b", value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(MessagesOf(reader), (Array<UniString>(2, UniString(u"Start element for x tag not found"))));
}

TEST(DOMReaderElements, WithTextLongerThanTheBufferFailWithoutAMessage)
{
    TextReader reader = ReaderOf("abcd");
    char buffer[] = "????";
    EXPECT_EQ(reader.ReadXML("v", buffer, 3), Failed);
    EXPECT_STREQ(buffer, "????");
    EXPECT_TRUE(MessagesOf(reader).empty());
    EXPECT_EQ(PlaceOf(reader), ">v");
}

TEST(DOMReaderElements, WithoutTextStoreASingleZeroInABuffer)
{
    TextReader reader("<r><v/></r>");
    char buffer[] = "????";
    EXPECT_EQ(reader.ReadXML("v", buffer, 4), 0);
    EXPECT_EQ(std::string_view(buffer, 4), std::string_view("\0???", 4));
    EXPECT_EQ(reader.ReadXML("v", nullptr, 0), 0) << "there is no room for it";
}

TEST(DOMReaderElements, FindNothingWithoutANameAndAddTheMessage)
{
    TextReader reader("<r/>");
    UniString value;
    EXPECT_EQ(reader.ReadXML(nullptr, value), Failed);
    EXPECT_EQ(MessagesOf(reader), Array<UniString>{u"Start element for  tag not found"});
}

// Attributes only.

TEST(DOMReaderAttributes, AreThoseOfTheActualNode)
{
    TextReader reader("<r i='1'><a i='2' j='3'/></r>");
    int value = 0;
    EXPECT_EQ(reader.ReadXMLAttr("i", value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(reader.ReadXMLAttr("j", value), Failed);
    reader.ReadStartElement("a");
    EXPECT_EQ(reader.ReadXMLAttr("j", value), 0);
    EXPECT_EQ(value, 3);
    reader.ReadEndElement("a");
    EXPECT_EQ(reader.ReadXMLAttr("i", value), 0) << "also on the end of the element";
    EXPECT_EQ(value, 2);
    EXPECT_EQ(PlaceOf(reader), ">a");
}

TEST(DOMReaderAttributes, AreCutToTheBuffer)
{
    TextReader reader("<r v='abcdef' e=''/>");
    char buffer[] = "????";
    EXPECT_EQ(reader.ReadXMLAttr("v", buffer, 3), 0);
    EXPECT_STREQ(buffer, "abc?");
    EXPECT_EQ(reader.ReadXMLAttr("e", buffer, 3), 0);
    EXPECT_EQ(std::string_view(buffer, 4), std::string_view("\0\0\0?", 4));
    EXPECT_TRUE(MessagesOf(reader).empty());
}

TEST(DOMReaderAttributes, GiveTheirDefaultFromTheDTD)
{
    TextReader reader("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA '12'>]><r/>");
    int value = 0;
    EXPECT_EQ(reader.ReadXMLAttr("a", value), 0);
    EXPECT_EQ(value, 12);
}

TEST(DOMReaderAttributes, MayConsistOfSeveralTexts)
{
    using namespace xercesc_3_0;
    const NuvXML::XercesPtr<DOMDocument> document(
        DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr));
    DOMAttr* const several = document->createAttribute(u"several");
    several->appendChild(document->createTextNode(u"1"));
    several->appendChild(document->createTextNode(u"2"));
    DOMAttr* const reference = document->createAttribute(u"reference");
    reference->appendChild(static_cast<DOMNode*>(document->createEntityReference(u"unknown")));
    for (DOMAttr* const attribute : {several, reference, document->createAttribute(u"none")})
        document->getDocumentElement()->setAttributeNode(attribute);

    DOMReader reader(document->getDocumentElement());
    UniString value;
    EXPECT_EQ(reader.ReadXMLAttr("several", value), 0);
    EXPECT_EQ(value, UniString(u"12"));
    EXPECT_EQ(reader.ReadXMLAttr("reference", value), 0);
    EXPECT_EQ(value, UniString());
    EXPECT_EQ(reader.ReadXMLAttr("none", value), 0);
    EXPECT_EQ(value, UniString());
}

TEST(DOMReaderAttributes, HaveTheTextOfAnEntityThatTheyReferTo)
{
    TextReader reader("<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e '12'>]><r>&e;</r>");
    xercesc_3_0::DOMElement& root = *reader.GetActualNode();
    xercesc_3_0::DOMAttr* const attribute = root.getOwnerDocument()->createAttribute(u"v");
    attribute->appendChild(root.getFirstChild()->cloneNode(true));
    root.setAttributeNode(attribute);
    int value = 0;
    EXPECT_EQ(reader.ReadXMLAttr("v", value), 0);
    EXPECT_EQ(value, 12);
}

TEST(DOMReaderAttributes, AreReadThroughTheFormsForLong)
{
    TextReader reader("<r a='-9223372036854775808' b='18446744073709551615'/>");
    std::int64_t signedValue = 0;
    std::uint64_t unsignedValue = 0;
    EXPECT_EQ(reader.ReadXMLAttr("a", signedValue), 0);
    EXPECT_EQ(signedValue, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(reader.ReadXMLAttr("b", unsignedValue), 0);
    EXPECT_EQ(unsignedValue, std::numeric_limits<std::uint64_t>::max());
}

} // namespace
