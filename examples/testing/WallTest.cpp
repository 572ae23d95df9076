// Tests of a class that writes XML.

#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/testing/XMLMatchers.hpp"

#include <gtest/gtest.h>

namespace
{

using NuvXML::EqualsXML;
using NuvXML::EqualsXMLFile;

struct Wall
{
    Nuv::UniString name;
    int height = 0;

    void Write(Nuv::XMLOChannel& channel) const
    {
        channel.WriteStartElement("Wall");
        channel.WriteXML("Name", name);
        channel.WriteXML("Height", height);
        channel.WriteEndElement();
    }
};

Nuv::UniString Written(const Wall& wall)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    wall.Write(*channel);
    return NuvXML::ExportOChannelToUniString(channel);
}

//! [matchers]
TEST(Wall, WritesNameAndHeight)
{
    EXPECT_THAT(Written({u"North", 275}), EqualsXML("<Wall><Name>North</Name><Height>275</Height></Wall>"));
}

TEST(Wall, WritesVersion1OfTheFormat) { EXPECT_THAT(Written({u"North", 275}), EqualsXMLFile("wall.xml")); }
//! [matchers]

TEST(Wall, FailsWithBothLines)
{
    testing::StringMatchResultListener failure;
    EXPECT_FALSE(EqualsXMLFile("wall.xml").MatchAndExplain(Written({u"North", 276}), &failure));
    EXPECT_EQ(failure.str(), "which differs from the expected document:\n"
                             "Diff at nodes:\n"
                             "\t- Wall/Height\n"
                             "\t- Wall/Height\n"
                             "\tText node values \"275\" and \"276\" don't match.\n"
                             "expected (left), line 5, /Wall/Height/text(): <Height>275</Height>\n"
                             "actual (right), line 4, /Wall/Height/text(): <Height>276</Height>");
}

//! [options]
/// Numbers with a tolerance, all else with regard to case.
class CaseSensitive : public NuvXML::StrictOrderAutoValueCompareOptions
{
  protected:
    CaseSensitive* Clone() const override { return new CaseSensitive(*this); }

    bool AreNodeNamesEqual(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right) const override
    {
        return Nuv::UniString(left->getNodeName()) == right->getNodeName();
    }

    NuvXML::XMLValueComparator* GetValueComparator() const override
    {
        return new NuvXML::XMLCompareAutoCaseSensitive;
    }

    NuvXML::XMLValueComparator* GetAttributeValueComparator(const xercesc_3_0::DOMAttr*) const override
    {
        return new NuvXML::XMLCompareAutoCaseSensitive;
    }
};

TEST(Wall, KeepsTheCaseOfItsName)
{
    const auto lowerCase = [](const auto&... options)
    { return EqualsXML("<Wall><Name>north</Name><Height>275</Height></Wall>", options...); };
    EXPECT_THAT(Written({u"North", 275}), lowerCase());
    EXPECT_THAT(Written({u"North", 275}), testing::Not(lowerCase(CaseSensitive())));
}
//! [options]

} // namespace
