#include "NuvRoot/XMLChannels.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <gtest/gtest.h>

namespace
{

using namespace Nuv;
using NuvTest::SlotOf;
using NuvTest::SlotsFrom;
using Slots = std::vector<size_t>;

using SetVersion = void(const ClassVersion&);
using GetVersion = void(ClassVersion&);
using EightBitText = int(const char*, const char*, unsigned int);
using Buffer = int(const char*, char*, unsigned int);

// The types of the overloads, in the order of their slots.

template <class... Values>
Slots WriteXMLSlots()
{
    return {SlotOf<int(const char*, Values)>(&XMLOChannel::WriteXML)...};
}

template <class... Values>
Slots WriteXMLTextNodeSlots()
{
    return {SlotOf<int(Values)>(&XMLOChannel::WriteXMLTextNode)...};
}

template <class... Values>
Slots WriteXMLAttrSlots()
{
    return {SlotOf<int(const char*, Values)>(&XMLOChannel::WriteXMLAttr)...};
}

template <class... Values>
Slots ReadXMLSlots()
{
    return {SlotOf<int(const char*, Values&)>(&XMLIChannel::ReadXML)...};
}

template <class... Values>
Slots ReadXMLAttrSlots()
{
    return {SlotOf<int(const char*, Values&)>(&XMLIChannel::ReadXMLAttr)...};
}

TEST(XMLOChannelSlots, BeginWithDestructorVersionAndStructure)
{
    const Slots slots{SlotOf(&XMLOChannel::Create),
                      SlotOf<SetVersion>(&XMLOChannel::SetXMLShemaVersion),
                      SlotOf<GetVersion>(&XMLOChannel::GetXMLShemaVersion),
                      SlotOf(&XMLOChannel::GetLocation),
                      SlotOf(&XMLOChannel::WriteStartDocument),
                      SlotOf(&XMLOChannel::WriteEndDocument),
                      SlotOf(&XMLOChannel::WriteStartElement),
                      SlotOf(&XMLOChannel::WriteEndElement)};
    EXPECT_EQ(slots, SlotsFrom(2, 8));
}

TEST(XMLOChannelSlots, GoOnWithElements)
{
    EXPECT_EQ((WriteXMLSlots<const Guid&, const UniString&>()), SlotsFrom(10, 2));
    EXPECT_EQ(SlotOf<EightBitText>(&XMLOChannel::WriteXML), 12u);
    EXPECT_EQ((WriteXMLSlots<unsigned long long, long long, unsigned long, long, unsigned int, int,
                             unsigned short, short, bool, unsigned char, char>()),
              SlotsFrom(13, 11));
}

TEST(XMLOChannelSlots, GoOnWithTextNodes)
{
    EXPECT_EQ(SlotOf<int(const UniString&)>(&XMLOChannel::WriteXMLTextNode), 24u);
    EXPECT_EQ((SlotOf<int(const char*, unsigned int)>(&XMLOChannel::WriteXMLTextNode)), 25u);
    EXPECT_EQ((WriteXMLTextNodeSlots<unsigned long long, long long, unsigned long, long, unsigned int, int,
                                     unsigned short, short, bool, unsigned char, char>()),
              SlotsFrom(26, 11));
}

TEST(XMLOChannelSlots, GoOnWithCDATASections)
{
    const Slots slots{SlotOf<int(char**)>(&XMLOChannel::WriteXMLCDATABinToHex),
                      SlotOf<int(const char*, unsigned int)>(&XMLOChannel::WriteXMLCDATABinToHex),
                      SlotOf<int(const UniString&)>(&XMLOChannel::WriteXMLCDATAString),
                      SlotOf<int(const char*, unsigned int)>(&XMLOChannel::WriteXMLCDATAString)};
    EXPECT_EQ(slots, SlotsFrom(37, 4));
}

TEST(XMLOChannelSlots, GoOnWithAttributes)
{
    EXPECT_EQ(SlotOf(&XMLOChannel::WriteXMLVersionAttr), 41u);
    EXPECT_EQ((WriteXMLAttrSlots<const Guid&, const UniString&, unsigned long long, long long, unsigned int,
                                 int>()),
              SlotsFrom(42, 6));
    EXPECT_EQ(SlotOf<EightBitText>(&XMLOChannel::WriteXMLAttr), 48u);
    EXPECT_EQ((WriteXMLAttrSlots<unsigned short, short, bool, unsigned char, char>()), SlotsFrom(49, 5));
}

TEST(XMLOChannelSlots, EndWithMessagesAndErrors)
{
    const Slots slots{SlotOf(&XMLOChannel::AddMessage), SlotOf(&XMLOChannel::GetNumberOfMessage),
                      SlotOf(&XMLOChannel::GetMessage), SlotOf(&XMLOChannel::GetErrorStatus),
                      SlotOf(&XMLOChannel::ClearErrorStatus)};
    EXPECT_EQ(slots, SlotsFrom(54, 5));
}

TEST(XMLIChannelSlots, BeginWithErrors)
{
    const Slots slots{SlotOf(&XMLIChannel::GetErrorStatus), SlotOf(&XMLIChannel::ClearErrorStatus)};
    EXPECT_EQ(slots, SlotsFrom(0, 2));
}

TEST(XMLIChannelSlots, GoOnWithDestructorVersionTokensAndStructure)
{
    const Slots slots{SlotOf(&XMLIChannel::Create),
                      SlotOf<SetVersion>(&XMLIChannel::SetXMLShemaVersion),
                      SlotOf<GetVersion>(&XMLIChannel::GetXMLShemaVersion),
                      SlotOf(&XMLIChannel::GetLocation),
                      SlotOf(&XMLIChannel::GetTokenType),
                      SlotOf(&XMLIChannel::GetNextTokenType),
                      SlotOf(&XMLIChannel::GetTokenTypeName),
                      SlotOf(&XMLIChannel::GetNextTokenTypeName),
                      SlotOf(&XMLIChannel::ReadStartElement),
                      SlotOf(&XMLIChannel::ReadEndElement),
                      SlotOf(&XMLIChannel::ReadToken)};
    EXPECT_EQ(slots, SlotsFrom(4, 11));
}

TEST(XMLIChannelSlots, GoOnWithElements)
{
    EXPECT_EQ((ReadXMLSlots<Guid, UniString>()), SlotsFrom(15, 2));
    EXPECT_EQ(SlotOf<Buffer>(&XMLIChannel::ReadXML), 17u);
    EXPECT_EQ((ReadXMLSlots<double, float, unsigned long long, long long, unsigned long, long, unsigned int,
                            int, unsigned short, short, bool, char, unsigned char>()),
              SlotsFrom(18, 13));
}

TEST(XMLIChannelSlots, GoOnWithCDATASections)
{
    const Slots slots{SlotOf<int(char**)>(&XMLIChannel::ReadXMLCDATAHexToBin),
                      SlotOf<int(char*, unsigned int)>(&XMLIChannel::ReadXMLCDATAHexToBin),
                      SlotOf<int(UniString&)>(&XMLIChannel::ReadXMLCDATAString),
                      SlotOf<int(char*, unsigned int)>(&XMLIChannel::ReadXMLCDATAString)};
    EXPECT_EQ(slots, SlotsFrom(31, 4));
}

TEST(XMLIChannelSlots, GoOnWithAttributes)
{
    EXPECT_EQ(SlotOf(&XMLIChannel::ReadXMLVersionAttr), 35u);
    EXPECT_EQ((ReadXMLAttrSlots<Guid, UniString, unsigned long long, long long, unsigned int, int>()),
              SlotsFrom(36, 6));
    EXPECT_EQ(SlotOf<Buffer>(&XMLIChannel::ReadXMLAttr), 42u);
    EXPECT_EQ((ReadXMLAttrSlots<double, float, unsigned short, short, bool, char, unsigned char>()),
              SlotsFrom(43, 7));
}

TEST(XMLIChannelSlots, EndWithPlatformAndMessages)
{
    const Slots slots{SlotOf(&XMLIChannel::GetChannelPlatform), SlotOf(&XMLIChannel::SetChannelPlatform),
                      SlotOf(&XMLIChannel::AddMessage), SlotOf(&XMLIChannel::GetNumberOfMessage),
                      SlotOf(&XMLIChannel::GetMessage)};
    EXPECT_EQ(slots, SlotsFrom(50, 5));
}

} // namespace
