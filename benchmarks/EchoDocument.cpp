/// @file
/// A SAX2 parse that is echoed beside the same parse with an empty handler: 15 MB, to memory.
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "benchmarks/Ratios.hpp"
#include "benchmarks/Records.hpp"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <memory>

namespace
{

using namespace xercesc_3_0;

constexpr size_t DocumentSize = 15'000'000;

const std::string& Source()
{
    static const std::string source = Benchmarks::MakeRecords(DocumentSize);
    return source;
}

void Parse(ContentHandler& handler)
{
    const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&handler);
    const MemBufInputSource input(reinterpret_cast<const XMLByte*>(Source().data()), Source().size(),
                                  "source");
    reader->parse(input);
}

void ParseOnly(benchmark::State& state)
{
    for (auto _ : state)
    {
        DefaultHandler handler;
        Parse(handler);
    }
}

/// Memory that is there already, as it would be for a channel with a buffer: what a growing text costs the
/// system is not the writer's.
class MemoryOfOneSize : public Nuv::OChannel
{
  public:
    MemoryOfOneSize() { bytes.reserve(2 * DocumentSize); }

    int Write(const void* written, size_t count) override
    {
        bytes.append(static_cast<const char*>(written), count);
        return 0;
    }

    std::string bytes;
};

void ParseAndEcho(benchmark::State& state)
{
    MemoryOfOneSize channel;
    for (auto _ : state)
    {
        channel.bytes.clear();
        NuvXML::OChannelXMLFormatTarget target(channel);
        XMLFormatter formatter(XMLUni::fgUTF8EncodingString, &target, XMLFormatter::NoEscapes,
                               XMLFormatter::UnRep_CharRef);
        NuvXML::SAX2Writer writer(formatter, false);
        Parse(writer);
        if (channel.bytes.size() < DocumentSize)
            state.SkipWithError("the echo is too short");
    }
}

BENCHMARK(ParseOnly)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseAndEcho)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return Benchmarks::RunAndCompare(argc, argv,
                                     {{"A SAX2 parse with the echo / the same parse with an empty handler",
                                       "ParseAndEcho", "ParseOnly", 1.5}});
}
