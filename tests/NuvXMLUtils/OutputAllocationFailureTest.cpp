// Makes each allocation of each operation of the output channels fail in turn.

#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/NuvXMLUtils/AllocationFailureSupport.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include <filesystem>
#include <iterator>

namespace
{

using namespace AllocationFailureTests;
using NuvTest::ScratchFolder;

template <class Create>
void ExpectOutputMessage(Create create)
{
    ExpectMessage<NuvXML::XMLOChannelException>(u"Not enough memory in CreateXMLOChannel", create,
                                                NuvXML::DisposeXMLOChannel);
}

TEST(AllocationFailure, OfAnOutputChannelIsReportedAsNotEnoughMemory)
{
    SweepBeside(Bare([] { BareDocument(); }),
                [] { ExpectOutputMessage([] { return NuvXML::CreateXMLOChannel(true); }); });
}

TEST(AllocationFailure, OfAnOutputChannelThrowsTheApplicationsExceptionWithoutMemoryForItsOwn)
{
    FailAt(1, Mode::FromThere);
    EXPECT_THROW(NuvXML::CreateXMLOChannel(true), Nuv::OutOfMemoryException);
    Disarm();
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

class AllocationFailureOfBuilder : public testing::TestWithParam<Operation<NuvXML::DOMBuilder>>
{
};

TEST_P(AllocationFailureOfBuilder, ThrowsTheApplicationsExceptionAndLeavesNothingBehind)
{
    SweepBuilder(GetParam().call);
}

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
    builder.WriteXMLCDATAString(UniString(u"some text that holds ]]> and so is divided"));
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

void ExpectOneFile(const ScratchFolder& folder)
{
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
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
                    ExpectOneFile(folder);
                });
}

TEST(AllocationFailure, OfSavingTheFileIsToldAndLeavesTheOldFile)
{
    const ScratchFolder folder;
    const IO::Location location(folder.PathOf("project.xml"));
    NuvXML::DOMBuilder builder(location);
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("Wall");
    SweepBeside(Bare([&] { BareExport(*builder.GetDOMDocument()); }),
                [&]
                {
                    UniString reason;
                    {
                        const Pause pause;
                        folder.Write("project.xml", "old");
                    }
                    const bool isSaved = NuvXML::SaveXMLOChannel(&builder, &reason);
                    const Pause pause;
                    EXPECT_THAT(reason, testing::AnyOf(UniString(), u"Not enough memory in SaveXMLOChannel"));
                    EXPECT_TRUE(reason.IsEmpty() || !isSaved);
                    EXPECT_THAT(folder.Read("project.xml"), testing::EndsWith(isSaved ? "<Wall/>" : "old"));
                    ExpectOneFile(folder);
                    reason = UniString();
                });
    NuvXML::DiscardXMLOChannel(&builder);
}

TEST(AllocationFailure, OfAnAttributeLeavesWhatItAddedToTheEndOfTheChannel)
{
    const ScratchFolder folder;
    auto builder = std::make_unique<NuvXML::DOMBuilder>(IO::Location(folder.PathOf("project.xml")));
    builder->WriteStartElement("Wall");
    ASSERT_TRUE(NuvXML::SaveXMLOChannel(builder.get(), nullptr));
    folder.Write("project.xml", "");
    int failures = 0;
    for (int nth = 1; nth <= 5 && !builder->GetActualNode()->hasAttribute(u"a"); ++nth)
    {
        FailAt(nth, Mode::Once);
        ExpectOutOfMemoryOnly([&] { builder->WriteXMLAttr("a", HugeText); });
        failures += Disarm() ? 1 : 0;
    }
    EXPECT_GT(failures, 0);
    builder.reset();
    EXPECT_THAT(folder.Read("project.xml"), testing::HasSubstr("<Wall a="));
}

TEST(AllocationFailure, OfABuilderOverADocumentLeavesTheDocumentToTheCaller)
{
    using NuvXML::DOMBuilder;
    const size_t failures = Sweep(
        []
        {
            Document document;
            {
                const Pause pause;
                document = BareDocument();
                document->setDocumentURI(u"/no such folder/file.xml");
            }
            ExpectOutOfMemoryOnly(
                [&]
                {
                    auto builder = std::make_unique<DOMBuilder>(document.get(), nullptr,
                                                                DOMBuilder::TakeDocumentOver, 0);
                    const Pause pause;
                    document.release();
                    builder.reset();
                });
            const Pause pause;
            document.reset();
        });
    EXPECT_GT(failures, 1u);
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

} // namespace
