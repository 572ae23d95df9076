/// What an object writes through the output channel it reads back through the input channel.

#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/Xerces.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <xercesc/dom/DOMLSException.hpp>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace Nuv;
using InputChannel = std::unique_ptr<XMLIChannel>;
using OutputChannel = std::unique_ptr<XMLOChannel>;

/// Generates values with a fixed seed, the awkward ones more often than chance would.
class Generator
{
  public:
    explicit Generator(unsigned int seed)
        : random(seed)
    {
    }

    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); }
    bool Coin() { return Below(2) == 0; }

    template <class T>
    T Integer()
    {
        constexpr T Extremes[] = {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T(0), T(1),
                                  T(-1)};
        return Coin() ? Extremes[Below(std::size(Extremes))] : static_cast<T>(random());
    }

    Guid AnyGuid()
    {
        static constexpr char16_t Digits[] = u"0123456789ABCDEF";
        UniString text(u"00000000-0000-0000-0000-000000000000");
        UniString random16;
        for (size_t i = 0; i < text.GetLength(); ++i)
            random16 += text[i] == u'-' ? u'-' : Digits[Below(16)];
        Guid guid;
        EXPECT_EQ(guid.ConvertFromString(random16), 0);
        return guid;
    }

    /// Any character that XML can hold.
    UniString Character()
    {
        static constexpr std::u16string_view Awkward[] = {
            u"\r\n",   u"\r",     u"\n",     u"\t",     u" ",      u"<",      u">",
            u"&",      u"'",      u"\"",     u"]]>",    u"]",      u"\u0085", u"\u2028",
            u"\u200B", u"\u00A0", u"\uFEFF", u"\uFFFD", u"\uD7FF", u"\uE000"};
        if (Coin())
            return Awkward[Below(std::size(Awkward))];
        const auto code =
            static_cast<char32_t>(Below(3) == 0 ? 0x10000 + Below(0x100000) : 0x20 + Below(0xFFDE));
        if (code >= 0xD800 && code < 0xE000)
            return u"\u20AC";
        if (code < 0x10000)
            return UniString(std::u16string_view(std::u16string(1, static_cast<char16_t>(code))));
        const char16_t pair[] = {static_cast<char16_t>(0xD7C0 + (code >> 10)),
                                 static_cast<char16_t>(0xDC00 + (code & 0x3FF)), 0};
        return pair;
    }

    UniString Text()
    {
        UniString text;
        for (size_t length = Below(4) == 0 ? 0 : Below(30); length > 0; --length)
            text += Character();
        return text;
    }

  private:
    std::mt19937_64 random;
};

/// What a text of an element reads back as: line ends are those of XML.
UniString WithLineFeeds(UniString text)
{
    text.ReplaceAll(u"\r\n", u"\n");
    text.ReplaceAll(u"\r", u"\n");
    return text;
}

/// A value of every type that both channels have.
struct Values
{
    Guid guid;
    UniString text;
    unsigned __int64 unsigned64 = 0;
    __int64 signed64 = 0;
    unsigned long unsignedLong = 0;
    long signedLong = 0;
    unsigned int unsigned32 = 0;
    int signed32 = 0;
    unsigned short unsigned16 = 0;
    short signed16 = 0;
    bool flag = false;
    unsigned char byte = 0;
    char character = 0;

    bool operator==(const Values&) const = default;
};

Values AnyValues(Generator& generator)
{
    Values values;
    values.guid = generator.AnyGuid();
    values.text = generator.Text();
    values.unsigned64 = generator.Integer<unsigned __int64>();
    values.signed64 = generator.Integer<__int64>();
    values.unsignedLong = generator.Integer<unsigned long>();
    values.signedLong = generator.Integer<long>();
    values.unsigned32 = generator.Integer<unsigned int>();
    values.signed32 = generator.Integer<int>();
    values.unsigned16 = generator.Integer<unsigned short>();
    values.signed16 = generator.Integer<short>();
    values.flag = generator.Coin();
    values.byte = generator.Integer<unsigned char>();
    values.character = generator.Integer<char>();
    return values;
}

/// Calls `visit(name, value)` for each of the values, in an order that depends on `order`.
template <class AnyValuesType, class Visitor>
void VisitInOrder(AnyValuesType& values, const std::vector<int>& order, Visitor visit)
{
    for (const int which : order)
        switch (which)
        {
        case 0:
            visit("guid", values.guid);
            break;
        case 1:
            visit("text", values.text);
            break;
        case 2:
            visit("unsigned64", values.unsigned64);
            break;
        case 3:
            visit("signed64", values.signed64);
            break;
        case 4:
            visit("unsignedLong", values.unsignedLong);
            break;
        case 5:
            visit("signedLong", values.signedLong);
            break;
        case 6:
            visit("unsigned32", values.unsigned32);
            break;
        case 7:
            visit("signed32", values.signed32);
            break;
        case 8:
            visit("unsigned16", values.unsigned16);
            break;
        case 9:
            visit("signed16", values.signed16);
            break;
        case 10:
            visit("flag", values.flag);
            break;
        case 11:
            visit("byte", values.byte);
            break;
        default:
            visit("character", values.character);
            break;
        }
}

constexpr int NumberOfValues = 13;

std::vector<int> WritingOrder()
{
    std::vector<int> order(NumberOfValues);
    for (int i = 0; i < NumberOfValues; ++i)
        order[static_cast<size_t>(i)] = i;
    return order;
}

std::vector<int> ShuffledOrder(Generator& generator)
{
    std::vector<int> order = WritingOrder();
    for (size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[generator.Below(i)]);
    return order;
}

/// An object of each kind of content: attributes, elements, CDATA and objects within it.
struct Object
{
    ClassVersion version;
    Values attributes;
    Values elements;
    UniString cdata;
    std::vector<Object> parts;

    bool operator==(const Object& other) const
    {
        return version.majorNumber == other.version.majorNumber &&
               version.minorNumber == other.version.minorNumber && attributes == other.attributes &&
               elements == other.elements && cdata == other.cdata && parts == other.parts;
    }
};

Object AnyObject(Generator& generator, int depth)
{
    Object object;
    object.version.majorNumber = generator.Integer<unsigned char>();
    object.version.minorNumber = generator.Integer<unsigned char>();
    object.attributes = AnyValues(generator);
    object.elements = AnyValues(generator);
    object.cdata = generator.Text();
    for (size_t count = depth > 0 ? generator.Below(4) : 0; count > 0; --count)
        object.parts.push_back(AnyObject(generator, depth - 1));
    return object;
}

void Write(XMLOChannel& channel, const Object& object)
{
    const auto succeed = [](int status) { EXPECT_EQ(status, 0); };
    succeed(channel.WriteStartElement("object"));
    succeed(channel.WriteXMLVersionAttr(object.version));
    const std::vector<int> order = WritingOrder();
    VisitInOrder(object.attributes, order,
                 [&](const char* name, const auto& value) { succeed(channel.WriteXMLAttr(name, value)); });
    VisitInOrder(object.elements, order,
                 [&](const char* name, const auto& value) { succeed(channel.WriteXML(name, value)); });
    succeed(channel.WriteStartElement("cdata"));
    succeed(channel.WriteXMLCDATAString(object.cdata));
    succeed(channel.WriteEndElement());
    // Between objects of one name there must be another element: an end is that of the innermost object.
    succeed(channel.WriteStartElement("parts"));
    for (const Object& part : object.parts)
        Write(channel, part);
    succeed(channel.WriteEndElement());
    succeed(channel.WriteEndElement());
}

/// Reads the values of the actual element in another order than they were written in. Of `written` it is only
/// told how many parts there are.
void Read(XMLIChannel& channel, Object& object, Generator& generator, const Object& written)
{
    const auto succeed = [](int status) { EXPECT_EQ(status, 0); };
    succeed(channel.ReadXMLVersionAttr(object.version));
    VisitInOrder(object.attributes, ShuffledOrder(generator),
                 [&](const char* name, auto& value) { succeed(channel.ReadXMLAttr(name, value)); });
    VisitInOrder(object.elements, ShuffledOrder(generator),
                 [&](const char* name, auto& value) { succeed(channel.ReadXML(name, value)); });
    succeed(channel.ReadStartElement("cdata"));
    succeed(channel.ReadXMLCDATAString(object.cdata));
    succeed(channel.ReadEndElement("cdata"));
    succeed(channel.ReadStartElement("parts"));
    object.parts.resize(written.parts.size());
    for (size_t i = 0; i < object.parts.size(); ++i)
    {
        succeed(channel.ReadStartElement("object"));
        Read(channel, object.parts[i], generator, written.parts[i]);
        succeed(channel.ReadEndElement("object"));
    }
    succeed(channel.ReadEndElement("parts"));
}

/// What the object reads back as under the rules of XML's line ends.
Object AsRead(Object object)
{
    object.elements.text = WithLineFeeds(object.elements.text);
    object.cdata = WithLineFeeds(object.cdata);
    for (Object& part : object.parts)
        part = AsRead(part);
    return object;
}

Object ReadBack(XMLIChannel& channel, const Object& written, Generator& generator)
{
    Object object;
    Read(channel, object, generator, written);
    EXPECT_EQ(channel.GetNumberOfMessage(), 0);
    return object;
}

class RoundTrip : public testing::TestWithParam<unsigned int>
{
};

TEST_P(RoundTrip, ThroughMemoryGivesTheSameObject)
{
    Generator generator(GetParam());
    const Object object = AnyObject(generator, 2);
    const OutputChannel output(NuvXML::CreateXMLOChannel(true));
    Write(*output, object);
    const UniString text = NuvXML::ExportOChannelToUniString(output.get());
    const InputChannel input(NuvXML::CreateXMLIChannelFromMemory(text, true));
    EXPECT_TRUE(ReadBack(*input, object, generator) == AsRead(object)) << text;
}

TEST_P(RoundTrip, ThroughAFileGivesTheSameObject)
{
    Generator generator(GetParam());
    const Object object = AnyObject(generator, 2);
    const NuvTest::ScratchFolder scratch;
    const IO::Location file(scratch.PathOf("a b%41\u20AC.xml"));
    OutputChannel output(NuvXML::CreateXMLOChannel(file, true));
    Write(*output, object);
    output.reset();
    const InputChannel input(NuvXML::CreateXMLIChannel(file, true));
    EXPECT_TRUE(ReadBack(*input, object, generator) == AsRead(object));
    IO::Location location;
    EXPECT_TRUE(input->GetLocation(location));
    EXPECT_EQ(location, file);
}

TEST_P(RoundTrip, WithFieldsLeftOutGivesTheOthersAndOneMessageForEach)
{
    Generator generator(GetParam());
    const Values values = AnyValues(generator);
    std::vector<int> written = ShuffledOrder(generator);
    written.resize(generator.Below(NumberOfValues));
    const OutputChannel output(NuvXML::CreateXMLOChannel(true));
    output->WriteStartElement("object");
    VisitInOrder(values, written,
                 [&](const char* name, const auto& value) { output->WriteXML(name, value); });
    output->WriteEndElement();
    const InputChannel input(
        NuvXML::CreateXMLIChannelFromMemory(NuvXML::ExportOChannelToUniString(output.get()), true));

    const Values defaults = AnyValues(generator);
    Values read = defaults;
    int missing = 0;
    VisitInOrder(read, ShuffledOrder(generator),
                 [&](const char* name, auto& value) { missing += input->ReadXML(name, value) == 0 ? 0 : 1; });

    Values expected = defaults;
    VisitInOrder(expected, written,
                 [&](const char* name, auto& value)
                 {
                     VisitInOrder(values, WritingOrder(),
                                  [&](const char* otherName, const auto& otherValue)
                                  {
                                      if constexpr (std::is_same_v<std::decay_t<decltype(otherValue)>,
                                                                   std::decay_t<decltype(value)>>)
                                          if (std::strcmp(name, otherName) == 0)
                                              value = otherValue;
                                  });
                 });
    if (std::find(written.begin(), written.end(), 1) != written.end())
        expected.text = WithLineFeeds(expected.text);
    EXPECT_TRUE(read == expected);
    EXPECT_EQ(missing, NumberOfValues - static_cast<int>(written.size()));
    EXPECT_EQ(input->GetNumberOfMessage(), missing);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTrip, testing::Range(1u, 21u));

/// Text with each character that XML can hold, a thousand at a time.
std::vector<UniString> AllCharacters()
{
    std::vector<UniString> texts;
    std::u16string text;
    for (char32_t code = 0x9; code <= 0x10FFFF; ++code)
    {
        if ((code < 0x20 && code != 0x9 && code != 0xA && code != 0xD) || (code >= 0xD800 && code < 0xE000) ||
            code == 0xFFFE || code == 0xFFFF)
            continue;
        if (code >= 0x10000)
            text += static_cast<char16_t>(0xD7C0 + (code >> 10));
        text += static_cast<char16_t>(code < 0x10000 ? code : 0xDC00 + (code & 0x3FF));
        if (code % 1000 == 0 || code == 0x10FFFF)
            texts.emplace_back(std::exchange(text, std::u16string()));
    }
    return texts;
}

TEST(RoundTripOfEveryCharacter, GivesTheSameTextInElementsAttributesAndCDATA)
{
    const std::vector<UniString> texts = AllCharacters();
    const OutputChannel output(NuvXML::CreateXMLOChannel(true));
    output->WriteStartElement("r");
    for (const UniString& text : texts)
    {
        output->WriteXML("element", text);
        output->WriteStartElement("rest");
        output->WriteXMLAttr("attribute", text);
        output->WriteXMLCDATAString(text);
        output->WriteEndElement();
    }
    output->WriteEndElement();
    const InputChannel input(
        NuvXML::CreateXMLIChannelFromMemory(NuvXML::ExportOChannelToUniString(output.get()), true));
    for (const UniString& text : texts)
    {
        UniString element;
        UniString attribute;
        UniString cdata;
        ASSERT_EQ(input->ReadXML("element", element), 0);
        ASSERT_EQ(input->ReadStartElement("rest"), 0);
        ASSERT_EQ(input->ReadXMLAttr("attribute", attribute), 0);
        ASSERT_EQ(input->ReadXMLCDATAString(cdata), 0);
        ASSERT_EQ(input->ReadEndElement("rest"), 0);
        EXPECT_TRUE(element == WithLineFeeds(text));
        EXPECT_TRUE(attribute == text);
        EXPECT_TRUE(cdata == WithLineFeeds(text));
    }
}

/// A text of markup above all, and now and then of what XML cannot hold.
UniString AnyUnits(Generator& generator)
{
    static constexpr std::u16string_view Pieces[] = {
        u"]", u"]]>", u">", u"<", u"&", u"-", u"?", u"\n", u" ", u"a", u"\u00E4", u"\u0085", u"\U0001F600"};
    static constexpr std::u16string_view Forbidden[] = {u"\x01", u"\xD83D", u"\xDE00", u"\uFFFE"};
    UniString text;
    for (size_t length = generator.Below(20); length > 0; --length)
        text += generator.Below(30) == 0 ? Forbidden[generator.Below(std::size(Forbidden))]
                                         : Pieces[generator.Below(std::size(Pieces))];
    return text;
}

/// UTF-8 has no half of a surrogate pair.
bool IsXMLText(const UniString& text)
{
    return UniString::FromUTF8(text.ToUTF8()) == text &&
           text.View().find_first_of(u"\x01\uFFFE") == std::u16string_view::npos;
}

TEST(RoundTripOfAnyText, GivesTheSameTextOrThrows)
{
    Generator generator(1);
    int refused = 0;
    for (int i = 0; i < 10'000; ++i)
    {
        const UniString text = AnyUnits(generator);
        const OutputChannel output(NuvXML::CreateXMLOChannel(true));
        output->WriteStartElement("r");
        output->WriteXMLCDATAString(text);
        output->WriteXML("element", text);
        output->WriteXMLAttr("attribute", text);
        if (!IsXMLText(text))
        {
            ++refused;
            EXPECT_THROW(NuvXML::ExportOChannelToUniString(output.get()), xercesc_3_0::DOMLSException);
            continue;
        }
        const InputChannel input(
            NuvXML::CreateXMLIChannelFromMemory(NuvXML::ExportOChannelToUniString(output.get()), true));
        UniString read[3];
        EXPECT_EQ(input->ReadXMLAttr("attribute", read[0]), 0);
        EXPECT_EQ(input->ReadXMLCDATAString(read[1]), 0);
        EXPECT_EQ(input->ReadXML("element", read[2]), 0);
        EXPECT_THAT(read, testing::Each(text));
    }
    EXPECT_GT(refused, 1000);
    EXPECT_LT(refused, 9000);
}

TEST(RoundTripOfNumbers, WithAPointGivesTheSameNumber)
{
    // The output channel has no such form: objects write the text of the number.
    std::mt19937_64 random(1);
    for (int i = 0; i < 1000; ++i)
    {
        double number = 0;
        const unsigned long long bits = random();
        std::memcpy(&number, &bits, sizeof number);
        UniChar text[256];
        if (!valuetostr(number, text, std::size(text)))
            continue;
        const OutputChannel output(NuvXML::CreateXMLOChannel(true));
        output->WriteStartElement("r");
        output->WriteXML("v", UniString(text));
        output->WriteEndElement();
        const InputChannel input(
            NuvXML::CreateXMLIChannelFromMemory(NuvXML::ExportOChannelToUniString(output.get()), true));
        double read = 0;
        EXPECT_EQ(input->ReadXML("v", read), 0);
        EXPECT_EQ(read, number);
    }
}

} // namespace
