#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

using namespace Nuv;
using NuvTest::SlotOf;
using NuvTest::SlotsFrom;
using NuvXML::DOMBuilder;
using Slots = std::vector<size_t>;

using SetVersion = void(const ClassVersion&);
using GetVersion = void(ClassVersion&);
using EightBitText = int(const char*, const char*, unsigned int);

/// An explicit instantiation may name a private member: this one hands it to SlotOfPrivateMember.
size_t SlotOfPrivateMember();

template <auto Member>
struct PrivateMember
{
    friend size_t SlotOfPrivateMember() { return SlotOf<void(unsigned int)>(Member); }
};

template struct PrivateMember<&DOMBuilder::WriteNewLineAndTabs>;

// The types of the overloads, in the order of their slots.

template <class... Values>
Slots WriteXMLSlots()
{
    return {SlotOf<int(const char*, Values)>(&DOMBuilder::WriteXML)...};
}

template <class... Values>
Slots WriteXMLTextNodeSlots()
{
    return {SlotOf<int(Values)>(&DOMBuilder::WriteXMLTextNode)...};
}

template <class... Values>
Slots WriteXMLAttrSlots()
{
    return {SlotOf<int(const char*, Values)>(&DOMBuilder::WriteXMLAttr)...};
}

TEST(DOMBuilderSlots, BeginWithDestructorVersionAndStructure)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<DOMBuilder>);
    const Slots slots{SlotOf<DOMBuilder*(const UniString&, const UniString&)>(&DOMBuilder::Create),
                      SlotOf<SetVersion>(&DOMBuilder::SetXMLShemaVersion),
                      SlotOf<GetVersion>(&DOMBuilder::GetXMLShemaVersion),
                      SlotOf<bool(IO::Location&)>(&DOMBuilder::GetLocation),
                      SlotOf<int()>(&DOMBuilder::WriteStartDocument),
                      SlotOf<int()>(&DOMBuilder::WriteEndDocument),
                      SlotOf<int(const char*)>(&DOMBuilder::WriteStartElement),
                      SlotOf<int()>(&DOMBuilder::WriteEndElement)};
    EXPECT_EQ(slots, SlotsFrom(2, 8));
}

TEST(DOMBuilderSlots, GoOnWithElements)
{
    EXPECT_EQ((WriteXMLSlots<const Guid&, const UniString&>()), SlotsFrom(10, 2));
    EXPECT_EQ(SlotOf<EightBitText>(&DOMBuilder::WriteXML), 12u);
    EXPECT_EQ((WriteXMLSlots<unsigned __int64, __int64, unsigned long, long, unsigned int, int,
                             unsigned short, short, bool, unsigned char, char>()),
              SlotsFrom(13, 11));
}

TEST(DOMBuilderSlots, GoOnWithTextNodes)
{
    EXPECT_EQ(SlotOf<int(const UniString&)>(&DOMBuilder::WriteXMLTextNode), 24u);
    EXPECT_EQ((SlotOf<int(const char*, unsigned int)>(&DOMBuilder::WriteXMLTextNode)), 25u);
    EXPECT_EQ((WriteXMLTextNodeSlots<unsigned __int64, __int64, unsigned long, long, unsigned int, int,
                                     unsigned short, short, bool, unsigned char, char>()),
              SlotsFrom(26, 11));
}

TEST(DOMBuilderSlots, GoOnWithCDATASections)
{
    const Slots slots{SlotOf<int(char**)>(&DOMBuilder::WriteXMLCDATABinToHex),
                      SlotOf<int(const char*, unsigned int)>(&DOMBuilder::WriteXMLCDATABinToHex),
                      SlotOf<int(const UniString&)>(&DOMBuilder::WriteXMLCDATAString),
                      SlotOf<int(const char*, unsigned int)>(&DOMBuilder::WriteXMLCDATAString)};
    EXPECT_EQ(slots, SlotsFrom(37, 4));
}

TEST(DOMBuilderSlots, GoOnWithAttributes)
{
    EXPECT_EQ(SlotOf<int(const ClassVersion&)>(&DOMBuilder::WriteXMLVersionAttr), 41u);
    EXPECT_EQ(
        (WriteXMLAttrSlots<const Guid&, const UniString&, unsigned __int64, __int64, unsigned int, int>()),
        SlotsFrom(42, 6));
    EXPECT_EQ(SlotOf<EightBitText>(&DOMBuilder::WriteXMLAttr), 48u);
    EXPECT_EQ((WriteXMLAttrSlots<unsigned short, short, bool, unsigned char, char>()), SlotsFrom(49, 5));
}

TEST(DOMBuilderSlots, GoOnWithMessagesAndErrors)
{
    const Slots slots{SlotOf<void(const UniString&)>(&DOMBuilder::AddMessage),
                      SlotOf<int()>(&DOMBuilder::GetNumberOfMessage),
                      SlotOf<void(int, UniString&, int&)>(&DOMBuilder::GetMessage),
                      SlotOf<XMLOChannel::ErrorStatus()>(&DOMBuilder::GetErrorStatus),
                      SlotOf<void()>(&DOMBuilder::ClearErrorStatus)};
    EXPECT_EQ(slots, SlotsFrom(54, 5));
}

TEST(DOMBuilderSlots, EndWithTheOperationsOfTheBuilderItself)
{
    const Slots slots{SlotOf<void(bool)>(&DOMBuilder::SetAutoTabsHint),
                      SlotOf<void(bool)>(&DOMBuilder::SetReplaceCR),
                      SlotOf<bool()>(&DOMBuilder::GetReplaceCR),
                      SlotOf<UniString()>(&DOMBuilder::Export),
                      SlotOf<void(OChannel&)>(&DOMBuilder::Export),
                      SlotOf<xercesc_3_0::DOMDocument*()>(&DOMBuilder::GetDOMDocument),
                      SlotOf<xercesc_3_0::DOMElement*()>(&DOMBuilder::GetActualNode),
                      SlotOfPrivateMember()};
    EXPECT_EQ(slots, SlotsFrom(59, 8));
}

} // namespace
