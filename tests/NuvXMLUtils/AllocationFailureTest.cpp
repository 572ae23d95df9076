// Makes each allocation of each operation of the channels and of document loading fail in turn.

#include "InputOutput/File.hpp"
#include "NuvXMLUtils/LocationInputSource.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/FailingAllocator.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

/// Xerces leaves blocks behind when an allocation fails in it. The tests count them; the leak sanitizer would
/// report them once more.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() { return 1; }

namespace
{

using namespace NuvTest::FailingAllocator;
using Nuv::UniString;
using NuvTest::ScratchFolder;
using Parser = ValidatingXMLParser::LineInfoParser;

constexpr std::string_view Document =
    "<?xml version='1.0'?>\n"
    "<Wall Mv='1' Sv='2' Guid='00112233-4455-6677-8899-AABBCCDDEEFF' Count='12'>\n"
    "<Name>the northern wall of the house</Name><!-- comment -->\n"
    "<Height>275</Height><Flag>yes</Flag><![CDATA[4142434445464748]]></Wall>";

constexpr std::string_view Schema = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                    "<xs:element name='Wall' type='xs:string'/></xs:schema>";

const unsigned char* Data(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned int Size(std::string_view text) { return static_cast<unsigned int>(text.size()); }

/// The same calls of Xerces as ours, without us.
template <class Calls>
auto Bare(Calls calls)
{
    return [calls]
    {
        try
        {
            calls();
        }
        catch (const xercesc_3_0::OutOfMemoryException&)
        {
        }
    };
}

NuvXML::XercesPtr<xercesc_3_0::DOMDocument> BareDocument()
{
    return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(
            nullptr, nullptr, nullptr, xercesc_3_0::XMLPlatformUtils::fgMemoryManager));
}

void BareParse(const xercesc_3_0::InputSource& source)
{
    const auto parser = std::make_unique<xercesc_3_0::XercesDOMParser>();
    parser->parse(source);
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(parser->adoptDocument()).reset();
}

void BareParseOfMemory()
{
    BareParse(
        *std::make_unique<xercesc_3_0::MemBufInputSource>(Data(Document), Document.size(), u"system id"));
}

/// Expects that the call succeeds or throws the application's exception for lack of memory.
template <class Call>
void ExpectOutOfMemoryOnly(Call call)
{
    try
    {
        call();
    }
    catch (const Nuv::OutOfMemoryException&)
    {
    }
}

/// Expects that the factory makes a channel or throws the exception with this message.
template <class Exception, class Create, class Dispose>
void ExpectMessage(const char16_t* message, Create create, Dispose dispose)
{
    try
    {
        dispose(create());
    }
    catch (const Exception& exception)
    {
        const Pause pause;
        EXPECT_EQ(exception.GetMessage(), UniString(message));
    }
    catch (const Nuv::OutOfMemoryException&)
    {
        // There was no memory for the exception with the message either.
    }
}

template <class Create>
void ExpectOutputMessage(Create create)
{
    ExpectMessage<NuvXML::XMLOChannelException>(u"Not enough memory in CreateXMLOChannel", create,
                                                NuvXML::DisposeXMLOChannel);
}

template <class Create>
void ExpectInputMessage(Create create)
{
    ExpectMessage<NuvXML::XMLIChannelException>(u"Not enough memory in CreateXMLIChannel", create,
                                                NuvXML::DisposeXMLIChannel);
}

// Output.

TEST(AllocationFailure, OfAnOutputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(Bare([] { BareDocument(); }),
                [] { ExpectOutputMessage([] { return NuvXML::CreateXMLOChannel(true); }); });
}

TEST(AllocationFailure, OfAnOutputChannelIsNullUnlessItIsToThrow)
{
    SweepBeside(Bare([] { BareDocument(); }),
                [] { NuvXML::DisposeXMLOChannel(NuvXML::CreateXMLOChannel(false)); });
}

TEST(AllocationFailure, OfAnOutputChannelToAFileLeavesTheFileAlone)
{
    const ScratchFolder folder;
    const IO::Location location(folder.PathOf("no folder/file.xml"));
    SweepBeside(Bare([] { BareDocument(); }),
                [&]
                {
                    ExpectOutputMessage(
                        [&]
                        {
                            Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(location, true);
                            const Pause pause; // the document is written in another test
                            NuvXML::DisposeXMLOChannel(channel);
                            return static_cast<Nuv::XMLOChannel*>(nullptr);
                        });
                });
}

TEST(AllocationFailure, OfABuilderThatABuilderCreatesThrowsTheApplicationsException)
{
    NuvXML::DOMBuilder builder;
    SweepBeside(Bare([] { BareDocument(); }),
                [&] { ExpectOutOfMemoryOnly([&] { delete builder.Create(UniString(), UniString()); }); });
}

/// Calls the operation on a builder with two open elements, which is made and disposed of with memory enough.
template <class Operation>
void SweepBuilder(Operation operation)
{
    Sweep(
        [&]
        {
            std::unique_ptr<NuvXML::DOMBuilder> builder;
            {
                const Pause pause;
                builder = std::make_unique<NuvXML::DOMBuilder>();
                builder->WriteStartElement("Project");
                builder->WriteStartElement("Wall");
                builder->WriteXML("Name", UniString(u"a"));
                builder->AddMessage(UniString(u"a message that is longer than a short string"));
            }
            ExpectOutOfMemoryOnly([&] { operation(*builder); });
            const Pause pause;
            builder->Export(); // it is still whole
            builder.reset();
        });
}

/// A named call of a channel.
template <class Channel>
struct Operation
{
    const char* name;
    void (*call)(Channel&);

    friend void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.name; }
};

class AllocationFailureOfBuilder : public testing::TestWithParam<Operation<NuvXML::DOMBuilder>>
{
};

TEST_P(AllocationFailureOfBuilder, ThrowsTheApplicationsExceptionAndLeavesNothingBehind)
{
    SweepBuilder(GetParam().call);
}

std::string LongText(size_t length) { return std::string(length, 'x'); }

/// Long enough that the document needs another block for it.
const UniString HugeText(LongText(200'000));

const Operation<NuvXML::DOMBuilder> BuilderOperations[] = {
    {"GetLocation",
     [](auto& builder)
     {
         IO::Location location;
         builder.GetLocation(location);
     }},
    {"WriteStartElement", [](auto& builder) { builder.WriteStartElement("Element"); }},
    {"WriteStartElementWithLongName",
     [](auto& builder) { builder.WriteStartElement(LongText(100'000).c_str()); }},
    {"WriteEndElement",
     [](auto& builder)
     {
         builder.WriteEndElement();
         builder.WriteEndElement();
         builder.WriteEndDocument();
     }},
    {"WriteXML", [](auto& builder) { builder.WriteXML("Text", HugeText); }},
    {"WriteXMLWithLineEnds", [](auto& builder) { builder.WriteXML("Text", HugeText + UniString(u"\r\n")); }},
    {"WriteXMLOfNumber", [](auto& builder) { builder.WriteXML("Number", 1234567890123456789LL); }},
    {"WriteXMLOfGuid", [](auto& builder) { builder.WriteXML("Guid", Nuv::Guid()); }},
    {"WriteXMLOfBytes", [](auto& builder) { builder.WriteXML("Bytes", "eight-bit text", 14); }},
    {"WriteXMLOfBool", [](auto& builder) { builder.WriteXML("Bool", true); }},
    {"WriteXMLTextNode", [](auto& builder) { builder.WriteXMLTextNode(HugeText); }},
    {"WriteXMLCDATAString",
     [](auto& builder) { builder.WriteXMLCDATAString(HugeText + UniString(u"]]>") + HugeText); }},
    {"WriteXMLCDATABinToHex", [](auto& builder) { builder.WriteXMLCDATABinToHex("ABCDEFGHIJ", 10); }},
    {"WriteXMLAttr", [](auto& builder) { builder.WriteXMLAttr("Text", HugeText); }},
    {"WriteXMLAttrOfGuid", [](auto& builder) { builder.WriteXMLAttr("Guid", Nuv::Guid()); }},
    {"WriteXMLVersionAttr",
     [](auto& builder) {
         builder.WriteXMLVersionAttr({1, 2, 3});
     }},
    {"AddMessage",
     [](auto& builder) { builder.AddMessage(UniString(u"another message, longer than a short string")); }},
    {"GetMessage",
     [](auto& builder)
     {
         UniString text;
         int line = 0;
         builder.GetMessage(0, text, line);
     }},
};

INSTANTIATE_TEST_SUITE_P(Operations, AllocationFailureOfBuilder, testing::ValuesIn(BuilderOperations),
                         [](const auto& test) { return std::string(test.param.name); });

void BareExport(const xercesc_3_0::DOMDocument& document)
{
    auto* implementation = xercesc_3_0::DOMImplementation::getImplementation();
    const NuvXML::XercesPtr<xercesc_3_0::DOMLSOutput> output(implementation->createLSOutput());
    xercesc_3_0::MemBufFormatTarget target(1023);
    output->setEncoding(u"UTF-8");
    output->setByteStream(&target);
    const NuvXML::XercesPtr<xercesc_3_0::DOMLSSerializer> serializer(implementation->createLSSerializer());
    serializer->write(&document, output.get());
}

/// Exports one builder again and again.
template <class Export>
void SweepExport(Export exportDocument)
{
    NuvXML::DOMBuilder builder;
    builder.WriteStartElement("Wall");
    builder.WriteXMLAttr("Name", UniString(u"north"));
    builder.WriteXMLCDATAString(UniString(u"text"));
    builder.WriteXML("Text", UniString(LongText(5'000)));
    SweepBeside(Bare([&] { BareExport(*builder.GetDOMDocument()); }),
                [&] { ExpectOutOfMemoryOnly([&] { exportDocument(builder); }); });
}

TEST(AllocationFailure, OfAnExportToAStringThrowsTheApplicationsException)
{
    SweepExport([](NuvXML::DOMBuilder& builder) { builder.Export(); });
}

TEST(AllocationFailure, OfAnExportToAChannelThrowsTheApplicationsException)
{
    SweepExport(
        [](NuvXML::DOMBuilder& builder)
        {
            Nuv::MemoryOChannel channel;
            builder.Export(channel);
        });
}

TEST(AllocationFailure, OfAnExportThroughTheFrontDoorThrowsTheApplicationsException)
{
    SweepExport([](NuvXML::DOMBuilder& builder) { NuvXML::ExportOChannelToUniString(&builder); });
}

TEST(AllocationFailure, OfWritingTheFileIsSilentAndLeavesTheWholeOldFileOrTheWholeNewOne)
{
    const ScratchFolder folder;
    const IO::Location location(folder.PathOf("project.xml"));
    const auto document = BareDocument();
    document->appendChild(document->createElement(u"Wall"));
    SweepBeside(Bare([&] { BareExport(*document); }),
                [&]
                {
                    std::unique_ptr<NuvXML::DOMBuilder> builder;
                    {
                        const Pause pause;
                        folder.Write("project.xml", "old");
                        builder = std::make_unique<NuvXML::DOMBuilder>(location);
                        builder->SetAutoTabsHint(false);
                        builder->WriteStartElement("Wall");
                        builder->WriteEndElement();
                    }
                    builder.reset();
                    const Pause pause;
                    EXPECT_THAT(folder.Read("project.xml"),
                                testing::AnyOf("old", testing::HasSubstr("<Wall/>")));
                });
}

TEST(AllocationFailure, OfAnOutputGuardDeletesTheChannelAllTheSame)
{
    Sweep(
        []
        {
            Nuv::XMLOChannel* channel = nullptr;
            Nuv::Array<UniString> messages;
            {
                const Pause pause;
                channel = NuvXML::CreateXMLOChannel(true);
                channel->AddMessage(UniString(u"a message that is longer than a short string"));
                channel->AddMessage(UniString(u"another message that is longer than a short string"));
            }
            {
                const NuvXML::XMLOChannelGuard guard(&channel, &messages);
            }
            const Pause pause;
            EXPECT_EQ(channel, nullptr);
            messages = {};
        });
}

// Loading.

TEST(AllocationFailure, OfAnInputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(
        Bare(BareParseOfMemory),
        []
        {
            ExpectInputMessage(
                [] { return NuvXML::CreateXMLIChannelFromMemory(Data(Document), Size(Document), true); });
        });
}

TEST(AllocationFailure, OfAnInputChannelIsNullUnlessItIsToThrow)
{
    SweepBeside(Bare(BareParseOfMemory),
                [] {
                    NuvXML::DisposeXMLIChannel(
                        NuvXML::CreateXMLIChannelFromMemory(Data(Document), Size(Document), false));
                });
}

TEST(AllocationFailure, OfAnInputChannelOverTextIsReportedAsNotEnoughMemory)
{
    const UniString text = UniString::FromUTF8(Document);
    SweepBeside(Bare(BareParseOfMemory),
                [&] { ExpectInputMessage([&] { return NuvXML::CreateXMLIChannelFromMemory(text, true); }); });
}

TEST(AllocationFailure, OfAnInputChannelOverAFileIsReportedAsNotEnoughMemory)
{
    const ScratchFolder folder;
    const IO::Location location(folder.Write("document.xml", Document));
    SweepBeside(
        Bare(
            [&]
            { ExpectOutOfMemoryOnly([&] { BareParse(*std::make_unique<LocationInputSource>(location)); }); }),
        [&] { ExpectInputMessage([&] { return NuvXML::CreateXMLIChannel(location, true); }); });
}

/// Expects a document, or null with such a message; there may be no memory for the message itself.
template <class Parse, class Matcher>
void ExpectDocumentOrMessage(Parse parse, Matcher isExpected)
{
    NodeLocations lines;
    NodeLocationInfo place{77};
    UniString message;
    try
    {
        const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(parse(&lines, &place, &message));
        const Pause pause;
        EXPECT_EQ(place.lineNumber, document ? 77u : 0u);
        EXPECT_TRUE(document ? message.IsEmpty() : isExpected(message)) << message;
    }
    catch (const Nuv::OutOfMemoryException&)
    {
    }
    const Pause pause;
    message = UniString();
}

TEST(AllocationFailure, OfLoadingFromMemoryIsReportedWithoutALine)
{
    SweepBeside(Bare(BareParseOfMemory),
                []
                {
                    ExpectDocumentOrMessage(
                        [](auto* lines, auto* place, auto* message)
                        {
                            return ParseXMLDoc(Data(Document), Size(Document), Parser::Val_Auto, true,
                                               UniString(u"system id"), lines, place, message);
                        },
                        [](const UniString& message) { return message == u"Failed to parse XML document"; });
                });
}

TEST(AllocationFailure, OfLoadingAFileIsReportedWithoutALine)
{
    const ScratchFolder folder;
    const IO::Location location(folder.Write("document.xml", Document));
    SweepBeside(
        Bare(
            [&]
            { ExpectOutOfMemoryOnly([&] { BareParse(*std::make_unique<LocationInputSource>(location)); }); }),
        [&]
        {
            ExpectDocumentOrMessage(
                [&](auto* lines, auto* place, auto* message)
                { return ParseXMLDoc(location, Parser::Val_Auto, true, lines, place, message); },
                [](const UniString& message)
                {
                    return message == u"Memory error" || message == u"Failed to parse XML document" ||
                           message.View().starts_with(u"unable to open primary document entity");
                });
        });
}

TEST(AllocationFailure, OfAParseLeavesTheParserUsable)
{
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        const auto parse = [&]
        {
            return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
                parser.Parse(Data(Document), Size(Document), Parser::Val_Auto, true, UniString(u"x"), nullptr,
                             nullptr, nullptr));
        };
        FailAt(nth, Mode::Once);
        const auto document = parse();
        if (!Disarm())
            return;
        ASSERT_TRUE(document || parser.RanOutOfMemory()) << "with allocation " << nth << " failing";
        ASSERT_TRUE(parse()) << "after allocation " << nth << " has failed";
        ASSERT_FALSE(parser.RanOutOfMemory());
    }
}

TEST(AllocationFailure, OfLoadingASchemaIsReportedAndLeavesTheParserUsable)
{
    const ScratchFolder folder;
    const IO::Location schema(folder.Write("wall.xsd", Schema));
    const std::string_view valid = "<Wall>text</Wall>";
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        UniString message;
        bool isLoaded = false;
        FailAt(nth, Mode::Once);
        ExpectOutOfMemoryOnly([&] { isLoaded = parser.LoadSchema(schema, nullptr, &message); });
        if (!Disarm())
            return;
        ASSERT_THAT(message, testing::AnyOf(UniString(isLoaded ? u"" : u"Could not load the XML Schema."),
                                            UniString()))
            << "with allocation " << nth << " failing";
        ASSERT_TRUE(NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(parser.Parse(
            Data(valid), Size(valid), Parser::Val_Auto, true, UniString(u"x"), nullptr, nullptr, nullptr)))
            << "after allocation " << nth << " has failed";
    }
}

TEST(AllocationFailure, OfAStreamGivesNoStream)
{
    const ScratchFolder folder;
    const LocationInputSource source(IO::Location(folder.Write("document.xml", Document)));
    Sweep([&] { delete source.makeStream(); });
}

TEST(AllocationFailure, OfANodeLocationLeavesTheStoreAsItWas)
{
    const auto document = BareDocument();
    Sweep(
        [&]
        {
            NodeLocations lines;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    for (unsigned int line = 1; line <= 300; ++line)
                        lines.AddNew(document.get(), line);
                });
            const NodeLocationInfo* found = lines.Find(document.get());
            EXPECT_TRUE(!found || found->lineNumber == 1);
        });
}

// Reading.

class AllocationFailureOfReader : public testing::TestWithParam<Operation<Nuv::XMLIChannel>>
{
};

TEST_P(AllocationFailureOfReader, ThrowsTheApplicationsExceptionAndLeavesNothingBehind)
{
    Sweep(
        []
        {
            Nuv::XMLIChannel* reader = nullptr;
            {
                const Pause pause;
                reader = NuvXML::CreateXMLIChannelFromMemory(Data(Document), Size(Document), true);
                reader->AddMessage(UniString(u"a message that is longer than a short string"));
            }
            ExpectOutOfMemoryOnly([&] { GetParam().call(*reader); });
            const Pause pause;
            NuvXML::DisposeXMLIChannel(reader);
        });
}

template <class T>
void ReadElement(Nuv::XMLIChannel& reader, const char* name)
{
    T value{};
    reader.ReadXML(name, value);
}

template <class T>
void ReadAttribute(Nuv::XMLIChannel& reader, const char* name)
{
    T value{};
    reader.ReadXMLAttr(name, value);
}

const Operation<Nuv::XMLIChannel> ReaderOperations[] = {
    {"Create", [](auto& reader) { delete reader.Create(UniString(), UniString()); }},
    {"GetLocation",
     [](auto& reader)
     {
         IO::Location location;
         reader.GetLocation(location);
     }},
    {"GetNextTokenTypeName",
     [](auto& reader)
     {
         UniString name;
         reader.GetNextTokenTypeName(name);
     }},
    {"ReadStartElementWithLongName", [](auto& reader) { reader.ReadStartElement(LongText(1'000).c_str()); }},
    {"ReadToTheEnd",
     [](auto& reader)
     {
         while (reader.ReadToken(0) == Nuv::Success)
             continue;
     }},
    {"ReadXMLOfString", [](auto& reader) { ReadElement<UniString>(reader, "Name"); }},
    {"ReadXMLOfNumber", [](auto& reader) { ReadElement<int>(reader, "Height"); }},
    {"ReadXMLOfWrongNumber", [](auto& reader) { ReadElement<int>(reader, "Name"); }},
    {"ReadXMLOfBool", [](auto& reader) { ReadElement<bool>(reader, "Flag"); }},
    {"ReadXMLOfGuid", [](auto& reader) { ReadElement<Nuv::Guid>(reader, "Name"); }},
    {"ReadXMLOfMissingElement", [](auto& reader) { ReadElement<int>(reader, "NotThereAtAll"); }},
    {"ReadXMLIntoBuffer",
     [](auto& reader)
     {
         char buffer[64];
         reader.ReadXML("Name", buffer, sizeof buffer);
     }},
    {"ReadXMLAttrOfGuid", [](auto& reader) { ReadAttribute<Nuv::Guid>(reader, "Guid"); }},
    {"ReadXMLAttrOfNumber", [](auto& reader) { ReadAttribute<int>(reader, "Count"); }},
    {"ReadXMLAttrThatIsMissing", [](auto& reader) { ReadAttribute<int>(reader, "NotThereAtAll"); }},
    {"ReadXMLVersionAttr",
     [](auto& reader)
     {
         Nuv::ClassVersion version;
         reader.ReadXMLVersionAttr(version);
     }},
    {"ReadXMLCDATAString",
     [](auto& reader)
     {
         UniString text;
         reader.ReadXMLCDATAString(text);
     }},
    {"ReadXMLCDATAHexToBin",
     [](auto& reader)
     {
         char* bytes = nullptr;
         if (reader.ReadXMLCDATAHexToBin(&bytes) == Nuv::Success)
             delete[] bytes;
     }},
    {"GetMessage",
     [](auto& reader)
     {
         UniString text;
         int code = 0;
         reader.GetMessage(0, text, code);
     }},
};

INSTANTIATE_TEST_SUITE_P(Operations, AllocationFailureOfReader, testing::ValuesIn(ReaderOperations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(AllocationFailure, OfAReadLeavesTheReaderWhereItWas)
{
    Nuv::XMLIChannel* reader = NuvXML::CreateXMLIChannelFromMemory(Data(Document), Size(Document), true);
    UniString text;
    FailAt(1, Mode::Once);
    EXPECT_THROW(reader->ReadXML("Name", text), Nuv::OutOfMemoryException);
    Disarm();
    UniString name;
    EXPECT_EQ(reader->GetTokenTypeName(name), Nuv::XMLStartElement);
    EXPECT_EQ(name, UniString(u"Wall"));
    NuvXML::DisposeXMLIChannel(reader);
}

TEST(AllocationFailure, OfAnInputGuardDeletesTheChannelAllTheSame)
{
    Sweep(
        []
        {
            Nuv::XMLIChannel* channel = nullptr;
            Nuv::Array<UniString> messages;
            {
                const Pause pause;
                channel = NuvXML::CreateXMLIChannelFromMemory(Data(Document), Size(Document), true);
                channel->AddMessage(UniString(u"a message that is longer than a short string"));
            }
            {
                const NuvXML::XMLIChannelGuard guard(&channel, &messages);
            }
            const Pause pause;
            EXPECT_EQ(channel, nullptr);
            messages = {};
        });
}

// Exceptions.

TEST(AllocationFailure, OfAnExceptionsCloneLeavesNothingBehind)
{
    const Nuv::NuvException cause(UniString(u"a cause that is longer than a short string"));
    const NuvXML::XMLOChannelException exception("a message that is longer than a short string", "file", 1,
                                                 cause);
    Sweep([&] { ExpectOutOfMemoryOnly([&] { delete exception.Clone(); }); });
}

} // namespace
