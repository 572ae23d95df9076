// Several threads at work, each with objects of its own, or with those that may be shared. What a data race
// does to a result can be seen here only by luck; the thread sanitizer sees the race itself.
#include "NuvRoot/Guid.hpp"
#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LimitedSAX2Reader.hpp"
#include "NuvXMLUtils/NodePlaces.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "NuvXMLUtils/SourceText.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"
#include "NuvXMLUtils/XMLDifferences.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <atomic>
#include <barrier>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using Nuv::UniString;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using Document = NuvXML::XercesPtr<DOMDocument>;

constexpr int ThreadCount = 4;
constexpr int Rounds = 25;

/// Calls `work` in all threads at once, as often as there are rounds, with a number that no other call is
/// given. An exception fails the test.
template <class Work>
void InThreads(Work work)
{
    std::barrier start(ThreadCount);
    const auto run = [&](int thread)
    {
        start.arrive_and_wait();
        for (int round = 0; round < Rounds; ++round)
        {
            EXPECT_NO_THROW(work(thread * Rounds + round));
        }
    };
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread)
        threads.emplace_back(run, thread);
}

UniString Numbered(const char16_t* text, int number)
{
    UniString numbered;
    numbered.Printf("%S %d", text, number);
    return numbered;
}

Document Load(std::string_view text, NodeLocations* lines = nullptr)
{
    return Document(ParseXMLDoc(
        reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned int>(text.size()),
        ValidatingXMLParser::LineInfoParser::Val_Auto, true, UniString(u"sample"), lines, nullptr, nullptr));
}

/// A document whose content tells the number; line 3 holds the element `n`.
std::string SampleText(int number)
{
    return "<?xml version='1.0' encoding='UTF-8'?>\n<r a='x&amp;y' b='€'>\n  <n>" + std::to_string(number) +
           "</n>\n  <!-- c --><t>łąka &#x1F600; " + std::to_string(number) + "</t>\n</r>";
}

const DOMElement* ChildOf(const Document& document, const char16_t* name)
{
    return dynamic_cast<const DOMElement*>(document->getElementsByTagName(name)->item(0));
}

// Channels.

void WriteObject(Nuv::XMLOChannel& channel, int number)
{
    channel.WriteStartElement("Wall");
    channel.WriteXMLAttr("Id", number);
    channel.WriteXML("Name", Numbered(u"łąka", number));
    channel.WriteXML("Height", number * 10);
    channel.WriteEndElement();
}

void ExpectObject(Nuv::XMLIChannel& channel, int number)
{
    int identifier = 0;
    int height = 0;
    UniString name;
    EXPECT_EQ(channel.ReadXMLAttr("Id", identifier), Nuv::Success);
    EXPECT_EQ(channel.ReadXML("Height", height), Nuv::Success);
    EXPECT_EQ(channel.ReadXML("Name", name), Nuv::Success);
    EXPECT_EQ(identifier, number);
    EXPECT_EQ(height, number * 10);
    EXPECT_EQ(name, Numbered(u"łąka", number));
}

TEST(Threads, WriteAndReadThroughChannelsOfTheirOwn)
{
    InThreads(
        [](int number)
        {
            Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(true);
            const NuvXML::XMLOChannelGuard outputGuard(&output);
            WriteObject(*output, number);
            Nuv::XMLIChannel* input =
                NuvXML::CreateXMLIChannelFromMemory(NuvXML::ExportOChannelToUniString(output), true);
            const NuvXML::XMLIChannelGuard inputGuard(&input);
            ExpectObject(*input, number);
        });
}

TEST(Threads, WriteAndReadFilesOfTheirOwn)
{
    const NuvTest::ScratchFolder scratch;
    InThreads(
        [&](int number)
        {
            const IO::Location file(scratch.PathOf(std::to_string(number) + ".xml"));
            Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(file, true);
            WriteObject(*output, number);
            NuvXML::DisposeXMLOChannel(output);
            Nuv::XMLIChannel* input = NuvXML::CreateXMLIChannel(file, true);
            const NuvXML::XMLIChannelGuard inputGuard(&input);
            ExpectObject(*input, number);
        });
}

TEST(Threads, CollectMessagesOfTheirOwn)
{
    InThreads(
        [](int number)
        {
            Nuv::Array<UniString> messages;
            {
                Nuv::XMLIChannel* input = NuvXML::CreateXMLIChannelFromMemory(UniString(u"<r/>"), true);
                const NuvXML::XMLIChannelGuard guard(&input, &messages);
                int value = 0;
                EXPECT_EQ(input->ReadXML(Numbered(u"n", number).ToString().c_str(), value), Nuv::Failure);
            }
            ASSERT_EQ(messages.size(), 1U);
            EXPECT_NE(messages[0].ToUTF8().find("n " + std::to_string(number)), std::string::npos);
        });
}

TEST(Threads, FailToMakeAChannelWithExceptionsOfTheirOwn)
{
    InThreads(
        [](int)
        {
            EXPECT_THROW(NuvXML::CreateXMLIChannelFromMemory(UniString(u"<r>"), true),
                         NuvXML::XMLIChannelException);
        });
}

// Loading.

TEST(Threads, LoadDocumentsWithTheLinesOfTheirNodes)
{
    InThreads(
        [](int number)
        {
            NodeLocations lines;
            const Document document = Load(SampleText(number), &lines);
            ASSERT_TRUE(document);
            const DOMElement* element = ChildOf(document, u"n");
            EXPECT_EQ(UniString(element->getTextContent()).ToString(), std::to_string(number));
            ASSERT_TRUE(lines.Find(element));
            EXPECT_EQ(lines.Find(element)->lineNumber, 3U);
        });
}

TEST(Threads, TellWhereTheirDocumentsAreDamaged)
{
    InThreads(
        [](int number)
        {
            const std::string text = std::string(static_cast<size_t>(number), '\n') + "<r>";
            NodeLocationInfo place;
            UniString reason;
            EXPECT_FALSE(ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<unsigned int>(text.size()),
                                     ValidatingXMLParser::LineInfoParser::Val_Never, true,
                                     UniString(u"sample"), nullptr, &place, &reason));
            EXPECT_EQ(place.lineNumber, static_cast<unsigned int>(number) + 1);
            EXPECT_FALSE(reason.IsEmpty());
        });
}

TEST(Threads, ValidateWithParsersOfTheirOwnAgainstTheSameSchemaFile)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location schema(scratch.Write("schema.xsd",
                                            "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                            "<xs:element name='n' type='xs:int'/></xs:schema>"));
    const auto parse = [](ValidatingXMLParser& parser, const std::string& text)
    {
        return Document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<unsigned int>(text.size()),
                                     ValidatingXMLParser::LineInfoParser::Val_Auto, true,
                                     UniString(u"sample"), nullptr, nullptr, nullptr));
    };
    InThreads(
        [&](int number)
        {
            ValidatingXMLParser parser;
            ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
            EXPECT_TRUE(parse(parser, "<n>" + std::to_string(number) + "</n>"));
            EXPECT_FALSE(parse(parser, "<n>" + std::to_string(number) + " walls</n>"));
        });
}

TEST(Threads, LookUpLinesInOneFilledStore)
{
    NodeLocations lines;
    std::string text = "<r>\n";
    for (int i = 0; i < 600; ++i)
        text += "<n/>\n";
    const Document document = Load(text + "</r>", &lines);
    std::vector<const xercesc_3_0::DOMNode*> nodes;
    const auto* list = document->getElementsByTagName(u"n");
    for (XMLSize_t i = 0; i < list->getLength(); ++i)
        nodes.push_back(list->item(i));

    InThreads(
        [&](int number)
        {
            const size_t index = static_cast<size_t>(number) * 5;
            ASSERT_TRUE(lines.Find(nodes[index]));
            EXPECT_EQ(lines.Find(nodes[index])->lineNumber, index + 2);
        });
}

// Printing and streaming.

/// UTF-8, UTF-16 and windows-1252 have encoders of the library's own; ISO-8859-2 and cp1250 go through
/// transcoders.
constexpr const char16_t* Encodings[] = {u"UTF-8", u"UTF-16", u"windows-1252", u"ISO-8859-2", u"cp1250"};

TEST(Threads, PrintDocumentsInEveryKindOfEncoding)
{
    InThreads(
        [](int number)
        {
            const Document document = Load(SampleText(number));
            Nuv::MemoryOChannel channel;
            EXPECT_TRUE(FormatXMLDoc(document.get(), &channel,
                                     Encodings[static_cast<size_t>(number) % std::size(Encodings)], true));
            const Document printed = Load(channel.GetBytes());
            ASSERT_TRUE(printed);
            EXPECT_TRUE(printed->getDocumentElement()->isEqualNode(document->getDocumentElement()));
        });
}

TEST(Threads, StreamDocuments)
{
    InThreads(
        [](int number)
        {
            Nuv::MemoryOChannel channel;
            {
                NuvXML::NuvSAX2Writer writer(channel);
                NuvXML::NuvSAX2Writer::Attrs attributes;
                attributes.Add(u"number", Numbered(u"łąka", number));
                writer.StartDocument();
                writer.SimpleElement(u"Wall", attributes, Numbered(u"<", number));
                writer.EndDocument();
            }
            const std::string digits = std::to_string(number);
            EXPECT_EQ(channel.GetBytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Wall number=\"łąka " +
                                              digits + "\">&lt; " + digits + "</Wall>\n");
        });
}

/// What a SAX parse of the text writes in ISO-8859-2, with references for what that lacks.
template <class Parse>
std::string Echo(std::string_view text, Parse parse)
{
    Nuv::MemoryOChannel channel;
    NuvXML::OChannelXMLFormatTarget target(channel);
    xercesc_3_0::XMLFormatter formatter("ISO-8859-2", &target, xercesc_3_0::XMLFormatter::NoEscapes,
                                        xercesc_3_0::XMLFormatter::UnRep_CharRef);
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                                "sample");
    parse(formatter, source);
    return channel.GetBytes();
}

std::string EchoOfSAX(std::string_view text)
{
    return Echo(text,
                [](xercesc_3_0::XMLFormatter& formatter, const xercesc_3_0::InputSource& source)
                {
                    NuvXML::SAXWriter writer(formatter);
                    xercesc_3_0::SAXParser parser;
                    parser.setDocumentHandler(&writer);
                    parser.parse(source);
                });
}

std::string EchoOfSAX2(std::string_view text)
{
    return Echo(text,
                [](xercesc_3_0::XMLFormatter& formatter, const xercesc_3_0::InputSource& source)
                {
                    NuvXML::SAX2Writer writer(formatter, false);
                    const std::unique_ptr<xercesc_3_0::SAX2XMLReader> reader(
                        xercesc_3_0::XMLReaderFactory::createXMLReader());
                    reader->setContentHandler(&writer);
                    reader->parse(source);
                });
}

TEST(Threads, EchoParsesThroughFormattersOfTheirOwn)
{
    InThreads(
        [](int number)
        {
            const std::string text = SampleText(number);
            const Document document = Load(text);
            for (const std::string& echo : {EchoOfSAX(text), EchoOfSAX2(text)})
            {
                const Document echoed = Load(echo);
                ASSERT_TRUE(echoed);
                EXPECT_TRUE(echoed->getElementsByTagName(u"t")->item(0)->isEqualNode(
                    document->getElementsByTagName(u"t")->item(0)));
            }
        });
}

// Comparison.

/// Compares in strict order, the way of a caller who has one filter and one set of options for all
/// comparisons.
void Compare(const Document& left, const Document& right, xercesc_3_0::DOMNodeFilter& filter,
             const NuvXML::IXMLCompareOptions& options)
{
    NuvXML::XMLCompareStrictOrder comparator;
    NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, &filter, options);
}

TEST(Threads, CompareDocumentsOfTheirOwnWithOneFilterAndOneSetOfOptions)
{
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::StrictOrderAutoValueCompareOptions options;
    options.SetDoubleEps(0.5);
    InThreads(
        [&](int number)
        {
            const Document left = Load(SampleText(number));
            const Document right = Load(SampleText(number));
            EXPECT_NO_THROW(Compare(left, right, filter, options));
            const Document other = Load(SampleText(number + 1));
            EXPECT_THROW(Compare(left, other, filter, options), NuvXML::TextNodeValuesDontMatchException);
        });
}

TEST(Threads, FindDifferencesAndTheirPlacesWithOneSetOfOptions)
{
    const NuvXML::StrictOrderAutoValueCompareOptions options;
    InThreads(
        [&](int number)
        {
            const std::string text = SampleText(number);
            const Document left = Load(text);
            const Document right = Load(SampleText(number + 1));
            NuvXML::NodePlaces places(nullptr);
            const NuvXML::SourceText source(text, *left);
            size_t differences = 0;
            NuvXML::FindDifferences(left.get(), right.get(), nullptr, options,
                                    [&](const NuvXML::XMLDifference& difference)
                                    {
                                        EXPECT_FALSE(places.PathOf(difference.left).IsEmpty());
                                        EXPECT_FALSE(source.Line(1).IsEmpty());
                                        ++differences;
                                        return true;
                                    });
            EXPECT_GT(differences, 0u);
        });
}

TEST(Threads, ReadWithinLimitsOfTheirOwn)
{
    InThreads(
        [](int number)
        {
            ParserLimits limits;
            limits.maxNesting = static_cast<size_t>(number) + 1;
            std::string text = "<a/>";
            for (int depth = 0; depth < number; ++depth)
                text = "<a>" + text + "</a>";
            const auto parse = [&](const std::string& document)
            {
                NuvXML::CreateSAX2Reader(limits)->parse(xercesc_3_0::MemBufInputSource(
                    reinterpret_cast<const unsigned char*>(document.data()), document.size(), u"memory"));
            };
            EXPECT_NO_THROW(parse(text));
            EXPECT_THROW(parse("<a>" + text + "</a>"), xercesc_3_0::SAXParseException);
        });
}

TEST(Threads, TakeTheErrorsOfInvalidDocuments)
{
    InThreads(
        [](int number)
        {
            std::string text = "<!DOCTYPE a [<!ELEMENT a ANY>]><a>";
            for (int element = 0; element < number; ++element)
                text += "<b/>";
            text += "</a>";
            int errors = 0;
            ValidatingXMLParser parser;
            parser.SetErrorHandler([&](const NodeLocationInfo&, const Nuv::UniString&) { ++errors; });
            const Document document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                                 static_cast<unsigned int>(text.size()),
                                                 ValidatingXMLParser::LineInfoParser::Val_Auto, false,
                                                 Nuv::UniString(u"memory"), nullptr, nullptr, nullptr));
            EXPECT_TRUE(document);
            EXPECT_EQ(errors, number);
        });
}

Document LoadMarked(const std::string& value)
{
    return Load("<r><n nuv_type='double' nuv_eps='0.1'>" + value + "</n></r>");
}

TEST(Threads, CompareMarkedDocumentsWithOneSetOfOptionsWhoseClonesShareTheMarkers)
{
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    const NuvXML::AttrRuledCompareOptions options;
    InThreads(
        [&](int number)
        {
            const std::string value = std::to_string(number);
            const Document left = LoadMarked(value);
            EXPECT_NO_THROW(Compare(left, LoadMarked(value + ".05"), filter, options));
            EXPECT_THROW(Compare(left, LoadMarked(value + ".2"), filter, options),
                         NuvXML::TextNodeValuesDontMatchException);
        });
}

/// Counts the objects of its kind.
class Counted : public Nuv::SharedObject
{
  public:
    explicit Counted(std::atomic<int>& counter)
        : count(counter)
    {
        ++count;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { --count; }

  private:
    std::atomic<int>& count;
};

TEST(Threads, TakeAndDropReferencesToOneObject)
{
    std::atomic<int> count = 0;
    Nuv::Ref<Counted> held(new Counted(count));
    InThreads(
        [&](int)
        {
            const Nuv::Ref<Counted> another = held;
            EXPECT_GE(another->GetReferenceCount(), 2);
            EXPECT_EQ(count, 1);
        });
    EXPECT_EQ(held->GetReferenceCount(), 1);
    held = nullptr;
    EXPECT_EQ(count, 0);
}

TEST(Threads, DeleteAnObjectOnceWhoeverDropsTheLastReference)
{
    std::atomic<int> count = 0;
    for (int i = 0; i < Rounds; ++i)
    {
        std::barrier start(ThreadCount);
        std::vector<std::jthread> threads;
        const Nuv::Ref<Counted> first(new Counted(count));
        for (int thread = 0; thread < ThreadCount; ++thread)
            threads.emplace_back(
                [&start, held = first]() mutable
                {
                    start.arrive_and_wait();
                    held = nullptr;
                });
    }
    EXPECT_EQ(count, 0);
}

// DOM helper functions.

TEST(Threads, BuildAndReadTagsByHand)
{
    InThreads(
        [](int number)
        {
            const NuvXMLUtils::DOMDocumentSentry document(
                xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"r", nullptr));
            DOMElement* root = document->getDocumentElement();
            const UniString text = Numbered(u"łąka ]]>", number);
            EXPECT_EQ(NuvXMLUtils::GetDoubleTag(NuvXMLUtils::NewDoubleTag(root, "d", number + 0.5, 1)),
                      number + 0.5);
            EXPECT_EQ(NuvXMLUtils::GetSLongTag(NuvXMLUtils::NewSLongTag(root, "n", -number, 1)), -number);
            const std::unique_ptr<unsigned short[]> read(
                NuvXMLUtils::GetStringTagU(NuvXMLUtils::NewStringTag(root, "s", text.ToUTF16(), 1)));
            EXPECT_EQ(UniString(reinterpret_cast<const char16_t*>(read.get())), text);
        });
}

TEST(Threads, TellTheLineOfATagThatIsNoNumber)
{
    InThreads(
        [](int number)
        {
            NodeLocations lines;
            const Document document = Load(SampleText(number), &lines);
            document->setUserData(u"NodeLocations", &lines, nullptr);
            try
            {
                NuvXMLUtils::GetSLongTag(ChildOf(document, u"t"));
                ADD_FAILURE() << "no exception";
            }
            catch (const NuvXMLUtils::ConvException& exception)
            {
                EXPECT_EQ(exception.line, 4U);
                EXPECT_NE(exception.message.ToUTF8().find("Tag 't'"), std::string::npos);
            }
        });
}

// Text.

TEST(Threads, ConvertTextInTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope codePage("ISO-8859-2");
    const UniString shared(u"łąka");
    InThreads(
        [&](int number)
        {
            EXPECT_EQ(shared.ToString(), "\xB3\xB1ka");
            const UniString text = UniString("\xB3\xB1ka ") + UniString(std::to_string(number));
            EXPECT_EQ(UniString(text.ToString()), text);
            EXPECT_EQ(UniString(u"€").ToString(), "?");
        });
}

TEST(Threads, MakeGuidsThatDiffer)
{
    std::vector<Nuv::Guid> guids(ThreadCount * Rounds);
    InThreads([&](int number) { guids[static_cast<size_t>(number)] = Nuv::Guid::Generate(); });
    std::set<std::string> texts;
    for (const Nuv::Guid& guid : guids)
        texts.insert(guid.ToUniString().ToString());
    EXPECT_EQ(texts.size(), guids.size());
}

} // namespace
