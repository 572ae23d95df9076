#include "NuvRoot/Exceptions.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"
#include "tests/support/FailingAllocator.hpp"

#include <xercesc/util/OutOfMemoryException.hpp>

namespace
{

using namespace NuvTest;
using FailingAllocator::Pause;
using FailingAllocator::Sweep;

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
    for (const char16_t* const encoding : {u"UTF-8", u"ISO-8859-1", u"KOI8-R"})
        Sweep(
            [&]
            {
                CountingChannel channel;
                try
                {
                    if (!FormatXMLDoc(document.get(), &channel, encoding, true))
                        EXPECT_EQ(channel.count, 0u);
                }
                catch (const Nuv::OutOfMemoryException&)
                {
                }
            });
}

TEST(PrinterAllocation, OfAStreamWriterLeavesNothingBehind)
{
    Sweep(
        []
        {
            CountingChannel channel;
            try
            {
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
