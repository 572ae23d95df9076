#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>

namespace
{

bool XercesIsUp() { return xercesc_3_0::DOMImplementation::getImplementation() != nullptr; }

TEST(XercescInitializer, HasStartedXercesWhenTheLibraryIsLoaded) { EXPECT_TRUE(XercesIsUp()); }

TEST(XercescInitializer, StopsXercesForEveryoneWhenASecondInstanceIsDestroyed)
{
    {
        const NuvXML::XercescInitializer second;
        EXPECT_TRUE(XercesIsUp());
    }
    EXPECT_FALSE(XercesIsUp());
    // A new instance starts Xerces again; it lives on so that Xerces stays up for the other tests.
    new NuvXML::XercescInitializer;
    EXPECT_TRUE(XercesIsUp());
}

} // namespace
