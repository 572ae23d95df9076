#include "NuvRoot/XMLChannels.hpp"

#include "tests/NuvRoot/RecordingChannels.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>

namespace
{

using namespace std::string_literals;
using namespace Nuv;
using NuvTest::LocalCodePageScope;

template <class T>
constexpr T Lowest = std::numeric_limits<T>::lowest();
template <class T>
constexpr T Highest = std::numeric_limits<T>::max();

class XMLOChannelTest : public testing::Test
{
  protected:
    RecordingOChannel recorder;
    XMLOChannel& channel = recorder;

    /// What a call that returned `status` has written.
    const std::string& Written(int status)
    {
        EXPECT_EQ(status, recorder.status);
        return recorder.written;
    }
};

TEST_F(XMLOChannelTest, BeginsWithItsFieldsSet)
{
    EXPECT_EQ(recorder.ChannelMode(), 0);
    EXPECT_EQ(recorder.ChannelPrecision(), 15);
}

TEST_F(XMLOChannelTest, WritesBooleansAsWords)
{
    EXPECT_EQ(Written(channel.WriteXML("n", true)), "element n: UniString true");
    EXPECT_EQ(Written(channel.WriteXML("n", false)), "element n: UniString false");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", true)), "attribute n: UniString true");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", false)), "attribute n: UniString false");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(true)), "text: UniString true");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(false)), "text: UniString false");
}

TEST_F(XMLOChannelTest, WritesEightBitTextOfALength)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(Written(channel.WriteXML("n", "\x80uro and more", 4)), "element n: UniString \u20ACuro");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", "\x80uro and more", 4)), "attribute n: UniString \u20ACuro");
    EXPECT_EQ(Written(channel.WriteXMLTextNode("\x80uro and more", 4)), "text: UniString \u20ACuro");
    EXPECT_EQ(Written(channel.WriteXMLCDATAString("\x80uro and more", 4)), "CDATA: UniString \u20ACuro");
    EXPECT_EQ(Written(channel.WriteXML("n", "a\0z", 3)), "element n: UniString a\0z"s);
}

TEST_F(XMLOChannelTest, WritesNoTextForANullPointer)
{
    EXPECT_EQ(Written(channel.WriteXML("n", nullptr, 4)), "element n: UniString ");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", nullptr, 4)), "attribute n: UniString ");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(nullptr, 4)), "text: UniString ");
    EXPECT_EQ(Written(channel.WriteXMLCDATAString(nullptr, 4)), "CDATA: UniString ");
}

TEST_F(XMLOChannelTest, WritesIntegersAsTextNodes)
{
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Highest<unsigned long long>)),
              "text: UniString 18446744073709551615");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Lowest<long long>)), "text: UniString -9223372036854775808");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Highest<unsigned long>)),
              "text: UniString 18446744073709551615");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Lowest<long>)), "text: UniString -9223372036854775808");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Highest<unsigned int>)), "text: UniString 4294967295");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Lowest<int>)), "text: UniString -2147483648");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Highest<unsigned short>)), "text: UniString 65535");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(Lowest<short>)), "text: UniString -32768");
    EXPECT_EQ(Written(channel.WriteXMLTextNode(static_cast<unsigned char>(255))), "text: UniString 255");
    EXPECT_EQ(Written(channel.WriteXMLTextNode('\x80')), "text: UniString -128");
    EXPECT_EQ(Written(channel.WriteXMLTextNode('A')), "text: UniString 65");
}

TEST_F(XMLOChannelTest, WritesBytesAsUpperCaseHexadecimal)
{
    EXPECT_EQ(Written(channel.WriteXMLCDATABinToHex("\0\x1F\xAB\xFF", 4)), "CDATA: UniString 001FABFF");
    EXPECT_EQ(Written(channel.WriteXMLCDATABinToHex("x", 0)), "CDATA: UniString ");
    EXPECT_EQ(Written(channel.WriteXMLCDATABinToHex(nullptr, 0)), "CDATA: UniString ");
    char array[] = "\x7F\xABz\0not written";
    char* bytes = array;
    EXPECT_EQ(Written(channel.WriteXMLCDATABinToHex(&bytes)), "CDATA: UniString 7FAB7A");
}

TEST_F(XMLOChannelTest, FailsOnBytesAtNullPointers)
{
    char* bytes = nullptr;
    EXPECT_EQ(channel.WriteXMLCDATABinToHex(&bytes), -7003);
    EXPECT_EQ(channel.WriteXMLCDATABinToHex(nullptr), -7003);
    EXPECT_EQ(channel.WriteXMLCDATABinToHex(nullptr, 1), -7003);
    EXPECT_EQ(recorder.written, "");
}

TEST_F(XMLOChannelTest, WritesLongAttributesAsSixtyFourBits)
{
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", Lowest<long>)), "attribute n: i64 -9223372036854775808");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", Highest<unsigned long>)),
              "attribute n: u64 18446744073709551615");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", std::int64_t{-5})), "attribute n: i64 -5");
    EXPECT_EQ(Written(channel.WriteXMLAttr("n", std::size_t{5})), "attribute n: u64 5");
}

TEST_F(XMLOChannelTest, HandsTheStatusOfThePureOperationsOn)
{
    recorder.status = 17;
    EXPECT_EQ(channel.WriteXML("n", true), 17);
    EXPECT_EQ(channel.WriteXML("n", "text", 4), 17);
    EXPECT_EQ(channel.WriteXMLTextNode(5), 17);
    EXPECT_EQ(channel.WriteXMLTextNode("text", 4), 17);
    EXPECT_EQ(channel.WriteXMLCDATABinToHex("x", 1), 17);
    EXPECT_EQ(channel.WriteXMLCDATAString("text", 4), 17);
    EXPECT_EQ(channel.WriteXMLAttr("n", 5L), 17);
    EXPECT_EQ(channel.WriteXMLAttr("n", "text", 4), 17);
}

// Which calls compile.

template <class Channel, class Value>
concept WritesElement = requires(Channel& channel, Value value)
{
    channel.WriteXML("n", value);
};
template <class Channel, class Value>
concept WritesTextNode = requires(Channel& channel, Value value)
{
    channel.WriteXMLTextNode(value);
};
template <class Channel, class Value>
concept WritesAttribute = requires(Channel& channel, Value value)
{
    channel.WriteXMLAttr("n", value);
};

template <class Value>
constexpr bool IsWrittenByEveryFamily = WritesElement<XMLOChannel, Value>&&
    WritesTextNode<XMLOChannel, Value>&& WritesAttribute<XMLOChannel, Value>;
template <class Value>
constexpr bool IsWrittenByNoFamily =
    !WritesElement<XMLOChannel, Value> && !WritesTextNode<XMLOChannel, Value> &&
    !WritesAttribute<XMLOChannel, Value>;

TEST(XMLOChannel, TakesNoTextLiteralForABoolean)
{
    EXPECT_TRUE(IsWrittenByNoFamily<const char*>);
    EXPECT_TRUE(IsWrittenByNoFamily<char*>);
    EXPECT_TRUE(IsWrittenByNoFamily<const char16_t*>);
    EXPECT_TRUE(IsWrittenByNoFamily<char16_t*>);
}

TEST(XMLOChannel, TakesEveryIntegerTypeInEveryFamily)
{
    EXPECT_TRUE(IsWrittenByEveryFamily<bool>);
    EXPECT_TRUE(IsWrittenByEveryFamily<char> && IsWrittenByEveryFamily<unsigned char>);
    EXPECT_TRUE(IsWrittenByEveryFamily<short> && IsWrittenByEveryFamily<unsigned short>);
    EXPECT_TRUE(IsWrittenByEveryFamily<int> && IsWrittenByEveryFamily<unsigned int>);
    EXPECT_TRUE(IsWrittenByEveryFamily<long> && IsWrittenByEveryFamily<unsigned long>);
    EXPECT_TRUE(IsWrittenByEveryFamily<__int64> && IsWrittenByEveryFamily<unsigned __int64>);
    EXPECT_TRUE(IsWrittenByEveryFamily<UniString>);
}

TEST(XMLChannels, NameTheirTypesAsTheApplicationDoes)
{
    EXPECT_TRUE((std::is_same_v<__int64, long long>));
    EXPECT_TRUE((std::is_same_v<unsigned __int64, unsigned long long>));
    EXPECT_EQ(XMLStartElement, 1);
    EXPECT_EQ(XMLEndElement, 2);
    EXPECT_EQ(XMLNoToken, 128);
    EXPECT_EQ(XMLOChannel::ErrorStatus{}, XMLOChannel::NoError);
    EXPECT_EQ(XMLIChannel::ErrorStatus{}, XMLIChannel::NoError);
    EXPECT_EQ(XMLIChannel::NothingToRead, 3);
    EXPECT_TRUE(std::has_virtual_destructor_v<XMLOChannel>);
    EXPECT_TRUE(std::has_virtual_destructor_v<XMLIChannel>);
}

// Reading.

class XMLIChannelTest : public testing::Test
{
  protected:
    PlayingIChannel player;
    XMLIChannel& channel = player;
};

TEST_F(XMLIChannelTest, ReadsHexadecimalIntoANewArray)
{
    player.cdata = UniString(u"7FaBff");
    char* bytes = nullptr;
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(&bytes), 0);
    const std::unique_ptr<char[]> owner(bytes);
    EXPECT_STREQ(bytes, "\x7F\xAB\xFF");
}

TEST_F(XMLIChannelTest, ReadsHexadecimalIntoABufferAndFillsItWithZeros)
{
    player.cdata = UniString(u"00FF1a");
    std::string buffer(5, 'x');
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 5), 0);
    EXPECT_EQ(buffer, "\0\xFF\x1A\0\0"s);
    buffer = "xxxxx";
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 3), 0);
    EXPECT_EQ(buffer, "\0\xFF\x1Axx"s);
}

TEST_F(XMLIChannelTest, ReadsNoBytesFromAnEmptySection)
{
    char* bytes = nullptr;
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(&bytes), 0);
    const std::unique_ptr<char[]> owner(bytes);
    EXPECT_STREQ(bytes, "");
    std::string buffer(2, 'x');
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 2), 0);
    EXPECT_EQ(buffer, "\0\0"s);
}

TEST_F(XMLIChannelTest, FailsOnBytesThatDoNotFit)
{
    player.cdata = UniString(u"010203");
    std::string buffer("xx");
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 2), -7003);
    EXPECT_EQ(channel.ReadXMLCDATAString(buffer.data(), 2), -7003);
    EXPECT_EQ(buffer, "xx");
}

TEST_F(XMLIChannelTest, FailsOnTextThatIsNotHexadecimal)
{
    for (const char16_t* text : {u"1", u"123", u"0G", u"G0", u" 00", u"00 ", u"0x00", u"\uFF10\uFF10"})
    {
        player.cdata = UniString(text);
        std::string buffer("xx");
        char* bytes = buffer.data();
        EXPECT_EQ(channel.ReadXMLCDATAHexToBin(&bytes), -7003) << player.cdata;
        EXPECT_EQ(bytes, buffer.data());
        EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 2), -7003) << player.cdata;
        EXPECT_EQ(buffer, "xx");
    }
}

TEST_F(XMLIChannelTest, ReadsACDATASectionAsEightBitText)
{
    const LocalCodePageScope scope("windows-1252");
    player.cdata = UniString(u"\u20ACuro");
    std::string buffer(6, 'x');
    EXPECT_EQ(channel.ReadXMLCDATAString(buffer.data(), 6), 0);
    EXPECT_EQ(buffer, "\x80uro\0\0"s);
}

TEST_F(XMLIChannelTest, HandsTheFailureOfThePureOperationsOn)
{
    player.status = 17;
    std::string buffer("xx");
    char* bytes = buffer.data();
    long value = 42;
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(&bytes), 17);
    EXPECT_EQ(channel.ReadXMLCDATAHexToBin(buffer.data(), 2), 17);
    EXPECT_EQ(channel.ReadXMLCDATAString(buffer.data(), 2), 17);
    EXPECT_EQ(channel.ReadXMLAttr("n", value), 17);
    EXPECT_EQ(bytes, buffer.data());
    EXPECT_EQ(buffer, "xx");
    EXPECT_EQ(value, 42);
}

TEST_F(XMLIChannelTest, ReadsLongAttributesThroughSixtyFourBits)
{
    player.signedAttribute = Lowest<long long>;
    player.unsignedAttribute = Highest<unsigned long long>;
    long signedValue = 0;
    unsigned long unsignedValue = 0;
    EXPECT_EQ(channel.ReadXMLAttr("n", signedValue), 0);
    EXPECT_EQ(signedValue, Lowest<long>);
    EXPECT_EQ(channel.ReadXMLAttr("n", unsignedValue), 0);
    EXPECT_EQ(unsignedValue, Highest<unsigned long>);
}

TEST(XMLChannels, ReadBackTheBytesThatTheyWrite)
{
    std::mt19937 random(5);
    for (unsigned int length = 0; length < 300; ++length)
    {
        std::string bytes(length, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        RecordingOChannel output;
        ASSERT_EQ(static_cast<XMLOChannel&>(output).WriteXMLCDATABinToHex(bytes.data(), length), 0);
        PlayingIChannel input;
        input.cdata = UniString(output.written.substr("CDATA: UniString "s.size()), CC_UTF8);
        std::string read(length, 'x');
        ASSERT_EQ(static_cast<XMLIChannel&>(input).ReadXMLCDATAHexToBin(read.data(), length), 0);
        ASSERT_EQ(read, bytes);
    }
}

} // namespace
