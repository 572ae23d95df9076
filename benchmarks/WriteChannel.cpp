// Building and exporting a document through the output channel, against bare DOM calls that make the same
// nodes.

#include "Documents.hpp"
#include "Ratios.hpp"

#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

namespace
{

using namespace Benchmarks;

constexpr size_t ValueCount = 400'000;

/// The values of the document, the integers also as the text that they become.
struct Values
{
    std::vector<Nuv::UniString> texts;
    std::vector<Nuv::UniString> integerTexts;

    Values()
        : texts(ValueCount)
        , integerTexts(ValueCount)
    {
        for (size_t i = 0; i < ValueCount; ++i)
        {
            texts[i] = TextAt(i);
            integerTexts[i].Printf("%d", IntegerAt(i));
        }
    }
};

const Values& GetValues()
{
    static const Values values;
    return values;
}

/// @param output receives the text
void WriteThroughChannel(Nuv::OChannel& output)
{
    const Values& values = GetValues();
    const OutputChannel channel(NuvXML::CreateXMLOChannel(true));
    channel->WriteStartDocument();
    channel->WriteStartElement("Values");
    for (size_t i = 0; i < ValueCount; ++i)
    {
        if (IsText(i))
            channel->WriteXML("Text", values.texts[i]);
        else
            channel->WriteXML("Integer", IntegerAt(i));
    }
    channel->WriteEndElement();
    channel->WriteEndDocument();
    dynamic_cast<NuvXML::DOMBuilder&>(*channel).Export(output);
}

void WriteThroughBareCalls(Nuv::OChannel& output)
{
    using namespace xercesc_3_0;
    const Values& values = GetValues();
    DOMImplementation* implementation = DOMImplementation::getImplementation();
    const NuvXML::XercesPtr<DOMDocument> document(implementation->createDocument());
    DOMElement* root = document->createElement(u"Values");
    document->appendChild(root);
    document->insertBefore(document->createTextNode(u"\n"), root);
    for (size_t i = 0; i < ValueCount; ++i)
    {
        root->appendChild(document->createTextNode(u"\n\t"));
        DOMElement* element = document->createElement(IsText(i) ? u"Text" : u"Integer");
        root->appendChild(element);
        const Nuv::UniString& text = IsText(i) ? values.texts[i] : values.integerTexts[i];
        element->appendChild(document->createTextNode(text.ToUTF16()));
    }
    root->appendChild(document->createTextNode(u"\n"));
    document->appendChild(document->createTextNode(u"\n"));

    const NuvXML::XercesPtr<DOMLSOutput> lsOutput(implementation->createLSOutput());
    MemBufFormatTarget target;
    lsOutput->setEncoding(u"UTF-8");
    lsOutput->setByteStream(&target);
    const NuvXML::XercesPtr<DOMLSSerializer> serializer(implementation->createLSSerializer());
    serializer->write(document.get(), lsOutput.get());
    output.Write(target.getRawBuffer(), static_cast<size_t>(target.getLen()));
}

void Measure(benchmark::State& state, void (*write)(Nuv::OChannel&))
{
    for (auto _ : state)
    {
        Nuv::MemoryOChannel memory;
        write(memory);
        benchmark::DoNotOptimize(memory.GetBytes().data());
    }
}

void Channel(benchmark::State& state) { Measure(state, WriteThroughChannel); }
BENCHMARK(Channel)->Unit(benchmark::kMillisecond);

void BareCalls(benchmark::State& state) { Measure(state, WriteThroughBareCalls); }
BENCHMARK(BareCalls)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    Nuv::MemoryOChannel ours;
    Nuv::MemoryOChannel peers;
    WriteThroughChannel(ours);
    WriteThroughBareCalls(peers);
    if (ours.GetBytes() != peers.GetBytes())
    {
        std::printf("The channel and the bare calls do not write the same document.\n");
        return 1;
    }
    return RunAndCompare(argc, argv,
                         {{"400,000 values: channel to bare DOM calls", "Channel", "BareCalls", 1.15}});
}
