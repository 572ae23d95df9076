/// @file
/// Building and exporting a document through the output channel, against bare DOM calls that make the same
/// nodes, and against pugixml.
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "benchmarks/Documents.hpp"
#include "benchmarks/Peers.hpp"
#include "benchmarks/Ratios.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

namespace
{

using namespace Benchmarks;

constexpr size_t ValueCount = 400'000;

/// The values of the document: the texts also in UTF-8, the integers also as the text that they become.
struct Values
{
    std::vector<Nuv::UniString> texts;
    std::vector<std::string> textsInUTF8;
    std::vector<Nuv::UniString> integerTexts;

    Values()
        : texts(ValueCount)
        , textsInUTF8(ValueCount)
        , integerTexts(ValueCount)
    {
        for (size_t i = 0; i < ValueCount; ++i)
        {
            texts[i] = TextAt(i);
            textsInUTF8[i] = texts[i].ToUTF8();
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
    const XercesDocument document(implementation->createDocument());
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

void WriteWithPugixml(Nuv::OChannel& output)
{
    struct ChannelWriter : pugi::xml_writer
    {
        explicit ChannelWriter(Nuv::OChannel& target)
            : channel(target)
        {
        }
        void write(const void* data, size_t size) override { channel.Write(data, size); }

        Nuv::OChannel& channel;
    };

    const Values& values = GetValues();
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Values");
    for (size_t i = 0; i < ValueCount; ++i)
    {
        if (IsText(i))
            root.append_child("Text").text().set(values.textsInUTF8[i].c_str());
        else
            root.append_child("Integer").text().set(IntegerAt(i));
    }
    ChannelWriter writer(output);
    document.save(writer);
}

std::string TextOf(void (*write)(Nuv::OChannel&))
{
    Nuv::MemoryOChannel memory;
    write(memory);
    return memory.GetBytes();
}

} // namespace

int main(int argc, char** argv)
{
    const std::string text = TextOf(WriteThroughChannel);
    Expect(text == TextOf(WriteThroughBareCalls), "the channel and the bare calls write different documents");
    const auto writing = [&text](void (*write)(Nuv::OChannel&))
    {
        // pugixml's declaration is shorter.
        return [&text, write] { Expect(TextOf(write).size() > text.size() - 100, "a value is missing"); };
    };
    const char* const input = "400,000 values";
    return RunAndCompare(argc, argv,
                         {
                             {input, "DOMBuilder", Whose::Ours, writing(WriteThroughChannel)},
                             {input, "bare DOM calls", Whose::Peers, writing(WriteThroughBareCalls)},
                             {input, "pugixml", Whose::Peers, writing(WriteWithPugixml)},
                         },
                         {LimitOf(input, "DOMBuilder", "bare DOM calls", 1.15)});
}
