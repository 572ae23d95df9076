#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "tests/support/PrivateAccess.hpp"
#include "tests/support/VirtualSlots.hpp"

#include <gtest/gtest.h>

namespace NuvTest
{

struct FirstElementChildSlot
{
    using Member = xercesc_3_0::DOMElement* (NuvXML::DOMReader::*)();
    friend Member Reveal(FirstElementChildSlot);
};
template struct Revealed<FirstElementChildSlot, &NuvXML::DOMReader::GetFirstElementChild>;

struct NextElementSiblingSlot
{
    using Member = xercesc_3_0::DOMElement* (NuvXML::DOMReader::*)();
    friend Member Reveal(NextElementSiblingSlot);
};
template struct Revealed<NextElementSiblingSlot, &NuvXML::DOMReader::GetNextElementSibling>;

} // namespace NuvTest

namespace
{

using namespace Nuv;
using NuvTest::SlotOf;
using NuvTest::SlotsFrom;
using NuvXML::DOMReader;
using Slots = std::vector<size_t>;

using SetVersion = void(const ClassVersion&);
using GetVersion = void(ClassVersion&);
using Buffer = int(const char*, char*, unsigned int);

// The types of the overloads, in the order of their slots.

template <class... Values>
Slots ReadXMLSlots()
{
    return {SlotOf<int(const char*, Values&)>(&DOMReader::ReadXML)...};
}

template <class... Values>
Slots ReadXMLAttrSlots()
{
    return {SlotOf<int(const char*, Values&)>(&DOMReader::ReadXMLAttr)...};
}

TEST(DOMReaderSlots, BeginWithErrorsVersionTokensAndStructure)
{
    EXPECT_EQ((Slots{SlotOf(&DOMReader::GetErrorStatus), SlotOf(&DOMReader::ClearErrorStatus)}),
              SlotsFrom(0, 2));
    const Slots slots{SlotOf(&DOMReader::Create),
                      SlotOf<SetVersion>(&DOMReader::SetXMLShemaVersion),
                      SlotOf<GetVersion>(&DOMReader::GetXMLShemaVersion),
                      SlotOf(&DOMReader::GetLocation),
                      SlotOf(&DOMReader::GetTokenType),
                      SlotOf(&DOMReader::GetNextTokenType),
                      SlotOf(&DOMReader::GetTokenTypeName),
                      SlotOf(&DOMReader::GetNextTokenTypeName),
                      SlotOf(&DOMReader::ReadStartElement),
                      SlotOf(&DOMReader::ReadEndElement),
                      SlotOf<int(unsigned int)>(&DOMReader::ReadToken)};
    EXPECT_EQ(slots, SlotsFrom(4, 11));
}

TEST(DOMReaderSlots, GoOnWithElements)
{
    EXPECT_EQ((ReadXMLSlots<Guid, UniString>()), SlotsFrom(15, 2));
    EXPECT_EQ(SlotOf<Buffer>(&DOMReader::ReadXML), 17u);
    EXPECT_EQ((ReadXMLSlots<double, float, unsigned __int64, __int64, unsigned long, long, unsigned int, int,
                            unsigned short, short, bool, char, unsigned char>()),
              SlotsFrom(18, 13));
}

TEST(DOMReaderSlots, GoOnWithCDATASections)
{
    EXPECT_EQ((SlotOf<int(UniString&)>(&DOMReader::ReadXMLCDATAString)), 33u);
}

TEST(DOMReaderSlots, GoOnWithAttributes)
{
    EXPECT_EQ(SlotOf(&DOMReader::ReadXMLVersionAttr), 35u);
    EXPECT_EQ((ReadXMLAttrSlots<Guid, UniString, unsigned __int64, __int64, unsigned int, int>()),
              SlotsFrom(36, 6));
    EXPECT_EQ(SlotOf<Buffer>(&DOMReader::ReadXMLAttr), 42u);
    EXPECT_EQ((ReadXMLAttrSlots<double, float, unsigned short, short, bool, char, unsigned char>()),
              SlotsFrom(43, 7));
}

TEST(DOMReaderSlots, EndWithPlatformMessagesAndTheCursor)
{
    const Slots slots{SlotOf(&DOMReader::GetChannelPlatform),
                      SlotOf(&DOMReader::SetChannelPlatform),
                      SlotOf(&DOMReader::AddMessage),
                      SlotOf(&DOMReader::GetNumberOfMessage),
                      SlotOf(&DOMReader::GetMessage),
                      SlotOf(&DOMReader::GetActualNode),
                      SlotOf(Reveal(NuvTest::FirstElementChildSlot())),
                      SlotOf(Reveal(NuvTest::NextElementSiblingSlot()))};
    EXPECT_EQ(slots, SlotsFrom(50, 8));
}

} // namespace
