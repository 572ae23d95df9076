#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace
{

using namespace NuvTest;
using FailingAllocator::Sweep;
using FailingAllocator::SweepBeside;
using xercesc_3_0::XMLAttr;
using xercesc_3_0::XMLFormatter;
using xercesc_3_0::XMLUni;

/// Takes everything and needs no memory.
class CountingChannel : public Nuv::OChannel
{
  public:
    int Write(const void*, size_t bytes) override
    {
        count += bytes;
        return 0;
    }

    size_t count = 0;
};

TEST(PrinterAllocation, FailsWithTheExceptionOfTheApplicationOrWritesNothing)
{
    const Document document = Parse("<r a='\xE2\x82\xAC'><e>\xF0\x9F\x98\x80 &lt; ]]&gt;</e><f/></r>");
    for (const char16_t* const encoding : {u"UTF-8", u"ISO-8859-1", u"KOI8-R", u"437"})
        Sweep(
            [&]
            {
                CountingChannel channel;
                try
                {
                    const bool isPrinted = FormatXMLDoc(document.get(), &channel, encoding, true);
                    EXPECT_EQ(isPrinted, channel.count != 0);
                }
                catch (const Nuv::OutOfMemoryException&)
                {
                }
            });
}

/// What Xerces makes for a stream writer and an attribute. Its constructors leave blocks behind when they
/// fail.
void MakeFormatterAndAttribute()
{
    try
    {
        CountingChannel channel;
        NuvXML::OChannelXMLFormatTarget target(channel);
        const XMLFormatter formatter(XMLUni::fgUTF8EncodingString, &target);
        const XMLAttr attribute(0, u"name", u"", u"value");
    }
    catch (const xercesc_3_0::OutOfMemoryException&)
    {
    }
}

TEST(PrinterAllocation, OfAStreamWriterLeavesNothingBehind)
{
    SweepBeside(MakeFormatterAndAttribute,
                []
                {
                    try
                    {
                        CountingChannel channel;
                        NuvXML::NuvSAX2Writer writer(channel);
                        NuvXML::NuvSAX2Writer::Attrs attributes;
                        attributes.Add(u"name", u"value");
                        writer.SimpleElement(u"element", attributes, u"text");
                    }
                    catch (const Nuv::OutOfMemoryException&)
                    {
                    }
                    catch (const xercesc_3_0::OutOfMemoryException&)
                    {
                    }
                });
}

} // namespace
