// Makes each allocation of loading fail in turn.

#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LocationInputSource.hpp"
#include "NuvXMLUtils/NodeLocations.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/NuvXMLUtils/AllocationFailureSupport.hpp"
#include "tests/support/ScratchFolder.hpp"

namespace
{

using namespace AllocationFailureTests;
using NuvTest::ScratchFolder;
using Parser = ValidatingXMLParser::LineInfoParser;

constexpr std::string_view Schema = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                    "<xs:element name='Wall' type='xs:string'/></xs:schema>";

template <class Create>
void ExpectInputMessage(Create create)
{
    ExpectMessage<NuvXML::XMLIChannelException>(u"Not enough memory in CreateXMLIChannel", create,
                                                NuvXML::DisposeXMLIChannel);
}

TEST(AllocationFailure, OfAnInputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(Bare(BareParseOfMemory),
                []
                {
                    ExpectInputMessage(
                        [] {
                            return NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText),
                                                                       true);
                        });
                });
}

TEST(AllocationFailure, OfAnInputChannelThrowsTheApplicationsExceptionWithoutMemoryForItsOwn)
{
    FailAt(1, Mode::FromThere);
    EXPECT_THROW(NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), true),
                 Nuv::OutOfMemoryException);
    Disarm();
}

TEST(AllocationFailure, OfAnInputChannelIsNullUnlessItIsToThrow)
{
    SweepBeside(Bare(BareParseOfMemory),
                []
                {
                    NuvXML::DisposeXMLIChannel(
                        NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), false));
                });
}

TEST(AllocationFailure, OfAnInputChannelOverTextIsReportedAsNotEnoughMemory)
{
    const UniString text = UniString::FromUTF8(DocumentText);
    SweepBeside(Bare(BareParseOfMemory),
                [&] { ExpectInputMessage([&] { return NuvXML::CreateXMLIChannelFromMemory(text, true); }); });
}

TEST(AllocationFailure, OfAnInputChannelOverAFileIsReportedAsNotEnoughMemory)
{
    const ScratchFolder folder;
    const IO::Location location(folder.Write("document.xml", DocumentText));
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
        const Document document(parse(&lines, &place, &message));
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
                            return ParseXMLDoc(Data(DocumentText), Size(DocumentText), Parser::Val_Auto, true,
                                               UniString(u"system id"), lines, place, message);
                        },
                        [](const UniString& message) { return message == u"Failed to parse XML document"; });
                });
}

TEST(AllocationFailure, OfLoadingAFileIsReportedWithoutALine)
{
    const ScratchFolder folder;
    const IO::Location location(folder.Write("document.xml", DocumentText));
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
            return Document(parser.Parse(Data(DocumentText), Size(DocumentText), Parser::Val_Auto, true,
                                         UniString(u"x"), nullptr, nullptr, nullptr));
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
        ASSERT_TRUE(Document(parser.Parse(Data(valid), Size(valid), Parser::Val_Auto, true, UniString(u"x"),
                                          nullptr, nullptr, nullptr)))
            << "after allocation " << nth << " has failed";
    }
}

/// Makes each allocation of the call fail, until it runs through.
template <class Call>
void FailEachIn(Call call)
{
    for (const Mode mode : {Mode::Once, Mode::FromThere})
    {
        bool hasFailed = true;
        for (long nth = 1; hasFailed; ++nth)
        {
            FailAt(nth, mode);
            try
            {
                call();
                hasFailed = Disarm();
            }
            catch (const std::bad_alloc&)
            {
                Disarm();
                ADD_FAILURE() << "with allocation " << nth << " failing";
            }
        }
    }
}

std::string TextOf(const Document& document)
{
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDoc(document.get(), &channel, nullptr, false));
    return channel.GetBytes();
}

/// A document with an external entity and an external DTD.
IO::Location WriteDocumentWithEntities(const ScratchFolder& folder)
{
    const std::string entity = folder.Write("entity.xml", "<Name>from the entity</Name>").ToUTF8();
    const std::string dtd = folder.Write("wall.dtd", "<!ELEMENT Wall ANY><!ELEMENT Name ANY>").ToUTF8();
    return IO::Location(folder.Write("document.xml", "<!DOCTYPE Wall SYSTEM '" + dtd +
                                                         "' [<!ENTITY e SYSTEM '" + entity +
                                                         "'>]><Wall><Name>&e;</Name></Wall>"));
}

TEST(AllocationFailure, OfLoadingNeverThrowsWithoutAMessageAndNeverGivesAPartOfADocument)
{
    const ScratchFolder folder;
    const IO::Location file = WriteDocumentWithEntities(folder);
    const std::string whole =
        TextOf(Document(ParseXMLDoc(file, Parser::Val_Auto, false, nullptr, nullptr, nullptr)));
    FailEachIn(
        [&]
        {
            ValidatingXMLParser parser;
            const Document document(parser.Parse(file, Parser::Val_Auto, false, nullptr, nullptr, nullptr));
            const Pause pause;
            EXPECT_TRUE(document ? TextOf(document) == whole : parser.RanOutOfMemory());
        });
}

TEST(AllocationFailure, OfAnEntityOfAnInputChannelIsReportedAsNotEnoughMemory)
{
    const ScratchFolder folder;
    const IO::Location file = WriteDocumentWithEntities(folder);
    FailEachIn([&] { ExpectInputMessage([&] { return NuvXML::CreateXMLIChannel(file, true); }); });
}

TEST(AllocationFailure, OfLoadingFromMemoryNeverThrowsWithoutAMessage)
{
    FailEachIn(
        []
        {
            ValidatingXMLParser parser;
            const Document document(parser.Parse(Data(DocumentText), Size(DocumentText), Parser::Val_Auto,
                                                 true, UniString(), nullptr, nullptr, nullptr));
            EXPECT_TRUE(document || parser.RanOutOfMemory());
        });
}

TEST(AllocationFailure, OfLoadingAMalformedTextNeverThrowsWithoutAMessage)
{
    FailEachIn(
        []
        {
            const std::string_view malformed = "<Wall>\n<Name></Wall>";
            EXPECT_FALSE(ValidatingXMLParser().Parse(Data(malformed), Size(malformed), Parser::Val_Auto, true,
                                                     UniString(), nullptr, nullptr, nullptr));
        });
}

TEST(AllocationFailure, OfLoadingASchemaNeverThrowsWithoutAMessage)
{
    const ScratchFolder folder;
    const IO::Location schema(folder.Write("wall.xsd", Schema));
    FailEachIn(
        [&]
        {
            ValidatingXMLParser parser;
            const bool isLoaded = parser.LoadSchema(schema, nullptr, nullptr);
            EXPECT_TRUE(isLoaded || parser.RanOutOfMemory());
        });
}

TEST(AllocationFailure, OfASchemaIsReportedByEveryParseUntilItIsLoadedAgain)
{
    const ScratchFolder folder;
    const IO::Location schema(folder.Write("wall.xsd", Schema));
    const std::string_view invalid = "<Other/>";
    ValidatingXMLParser parser;
    ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
    FailEachIn([&] { parser.LoadSchema(schema, nullptr, nullptr); });
    for (long nth = 1; nth < 100; ++nth)
    {
        FailAt(nth, Mode::Once);
        parser.LoadSchema(schema, nullptr, nullptr);
        Disarm();
        EXPECT_FALSE(parser.Parse(Data(invalid), Size(invalid), Parser::Val_Never, true, UniString(), nullptr,
                                  nullptr, nullptr))
            << "is not taken for valid with allocation " << nth << " failing";
    }
}

TEST(AllocationFailure, OfASourceLeavesNothingBehind)
{
    const IO::Location location(u"/folder/a file with a long name.xml");
    EXPECT_GT(Sweep(
                  [&]
                  {
                      try
                      {
                          LocationInputSource source(location);
                      }
                      catch (const Nuv::OutOfMemoryException&)
                      {
                      }
                      catch (const xercesc_3_0::OutOfMemoryException&)
                      {
                      }
                  }),
              0u);
    EXPECT_GT(Sweep([&] { ExpectOutOfMemoryOnly([&] { LocationBinInputStream stream(location); }); }), 0u);
}

TEST(AllocationFailure, OfAStreamGivesNoStream)
{
    const ScratchFolder folder;
    const LocationInputSource source(IO::Location(folder.Write("document.xml", DocumentText)));
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
} // namespace
