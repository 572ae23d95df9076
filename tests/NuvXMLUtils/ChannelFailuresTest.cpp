// Makes each write to a channel fail in turn, for everything that writes to channels.

#include "InputOutput/File.hpp"
#include "NuvXMLUtils/ChannelFormatTargets.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/NuvXMLUtils/FailingChannels.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"

#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include <memory>

namespace
{

using namespace NuvTest;
using namespace xercesc_3_0;
using Nuv::UniString;
using NuvXML::NuvSAX2Writer;

/// Markup and text of every kind, more than one block of any writer.
std::string SampleText()
{
    const std::string text(150'000, 'x');
    return "<r a='1&lt;\xE2\x82\xAC'><!--c--><?p d?><e>" + text + "\xF0\x9F\x98\x80]]&gt;</e><f b=''/>" +
           text + "</r>";
}

// The printer.

TEST(FailingChannel, EndsPrintingInEveryEncoding)
{
    const Document document = Parse(SampleText());
    for (const char16_t* const encoding : {u"UTF-8", u"UTF-16BE", u"ISO-8859-1", u"KOI8-R"})
        ExpectToStopAtEachFailure<FailingOChannel>(
            [&](FailingOChannel& channel)
            {
                const bool isPrinted = FormatXMLDoc(document.get(), &channel, encoding, true);
                EXPECT_EQ(isPrinted, !channel.HasFailed());
            },
            4);
}

TEST(FailingChannel, EndsPrintingInUTF16)
{
    const Document document = Parse(SampleText());
    ExpectToStopAtEachFailure<FailingOChannel>(
        [&](FailingOChannel& channel)
        {
            const bool isPrinted = FormatXMLDocUC(document.get(), &channel);
            EXPECT_EQ(isPrinted, !channel.HasFailed());
        },
        4);
}

TEST(ThrowingChannel, EndsPrintingByItsException)
{
    const Document document = Parse(SampleText());
    ExpectEachExceptionToPass<FailingOChannel>(
        [&](FailingOChannel& channel) { FormatXMLDocUC(document.get(), &channel); }, 4);
}

TEST(FailingDevice, IsToldByThePrinterOnly)
{
    const Document document = Parse(SampleText());
    IO::File full(IO::Location(UniString(u"/dev/full")), IO::FailWhenNotFound);
    ASSERT_EQ(full.Open(IO::WriteMode, IO::ReportAccessDenied), IO::NoError);
    EXPECT_FALSE(FormatXMLDoc(document.get(), &full, nullptr, false));
    NuvXML::OChannelXMLFormatTarget target(full);
    const XMLFormatter formatter(u"UTF-8", &target);
    target.writeChars(reinterpret_cast<const XMLByte*>("x"), 1, nullptr);
    EXPECT_EQ(target.GetErrorCode(), IO::NoSpace);
    NuvSAX2Writer writer(full);
    writer.SimpleElement(u"element", u"text");
    NuvXML::DOMBuilder().Export(full);
}

// Everything that stands on a format target, with both kinds of channels.

template <class TargetClass, class ChannelClass>
struct TargetAndChannel
{
    using Target = TargetClass;
    using Channel = FailingChannel<ChannelClass>;
};

template <class Types>
class FailingChannelOfATarget : public testing::Test
{
  protected:
    using Channel = typename Types::Channel;

    /// Writes through a formatter, and expects that the target tells the error.
    template <class Write>
    static auto ThroughFormatter(Write write)
    {
        return [write](Channel& channel)
        {
            typename Types::Target target(channel);
            XMLFormatter formatter(u"UTF-8", &target, XMLFormatter::NoEscapes, XMLFormatter::UnRep_CharRef);
            write(formatter);
            EXPECT_EQ(target.GetErrorCode(), channel.HasFailed() ? Channel::ErrorCode : 0);
        };
    }

    static MemBufInputSource Source(const std::string& text)
    {
        return MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "source");
    }
};

using TargetsAndChannels =
    testing::Types<TargetAndChannel<NuvXML::OChannelXMLFormatTarget, Nuv::OChannel>,
                   TargetAndChannel<NuvXML::OBinaryChannelXMLFormatTarget, Nuv::OBinaryChannel>>;
TYPED_TEST_SUITE(FailingChannelOfATarget, TargetsAndChannels);

TYPED_TEST(FailingChannelOfATarget, EndsTheEchoOfASAXParse)
{
    const std::string text = SampleText();
    const auto echo = this->ThroughFormatter(
        [&](XMLFormatter& formatter)
        {
            NuvXML::SAXWriter writer(formatter);
            SAXParser parser;
            parser.setDocumentHandler(&writer);
            parser.parse(this->Source(text));
        });
    ExpectToStopAtEachFailure<typename TypeParam::Channel>(echo, 20);
    ExpectEachExceptionToPass<typename TypeParam::Channel>(echo, 20);
}

TYPED_TEST(FailingChannelOfATarget, EndsTheEchoOfASAX2Parse)
{
    const std::string text = SampleText();
    const auto echo = this->ThroughFormatter(
        [&](XMLFormatter& formatter)
        {
            NuvXML::SAX2Writer writer(formatter, true);
            const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
            reader->setContentHandler(&writer);
            reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
            reader->parse(this->Source(text));
        });
    ExpectToStopAtEachFailure<typename TypeParam::Channel>(echo, 20);
    ExpectEachExceptionToPass<typename TypeParam::Channel>(echo, 20);
}

TYPED_TEST(FailingChannelOfATarget, EndsASerializerOfXerces)
{
    const Document document = Parse(SampleText());
    ExpectToStopAtEachFailure<typename TypeParam::Channel>(
        [&](typename TypeParam::Channel& channel)
        {
            typename TypeParam::Target target(channel);
            auto* implementation = DOMImplementation::getImplementation();
            const NuvXML::XercesPtr<DOMLSOutput> output(implementation->createLSOutput());
            output->setByteStream(&target);
            const NuvXML::XercesPtr<DOMLSSerializer> serializer(implementation->createLSSerializer());
            serializer->write(document.get(), output.get());
            EXPECT_EQ(target.GetErrorCode(), channel.HasFailed() ? channel.ErrorCode : 0);
        },
        20);
}

TYPED_TEST(FailingChannelOfATarget, EndsAStreamOfElements)
{
    const UniString text(std::u16string(10'000, u'x'));
    const auto write = [&](typename TypeParam::Channel& channel)
    {
        NuvSAX2Writer writer(channel);
        NuvSAX2Writer::Attrs attributes;
        attributes.Add(u"name", u"value \xD83D\xDE00 \"");
        writer.StartDocument();
        writer.StartElement(u"root", attributes);
        writer.SimpleElement(u"long", text);
        writer.SimpleElement(u"short", attributes, u"1 < 2");
        writer.processingInstruction(u"target", u"data");
        writer.ignorableWhitespace(u"\n", 1);
        writer.EndElement(u"root");
        writer.EndDocument();
    };
    ExpectToStopAtEachFailure<typename TypeParam::Channel>(write, 15);
    ExpectEachExceptionToPass<typename TypeParam::Channel>(write, 15);
}

// The builder and exceptions.

TEST(FailingChannel, LeavesABuilderWhole)
{
    NuvXML::DOMBuilder builder;
    builder.WriteStartElement("root");
    builder.WriteXML("value", UniString(std::u16string(100'000, u'x')));
    const UniString text = builder.Export();
    for (const Failure how : {Failure::Code, Failure::Exception})
    {
        FailingOChannel channel(1, how);
        if (how == Failure::Code)
            builder.Export(channel);
        else
            EXPECT_THROW(builder.Export(channel), std::runtime_error);
        EXPECT_EQ(channel.writes, 1u);
        EXPECT_EQ(builder.Export(), text);
    }
}

TEST(FailingChannel, IsIgnoredByExceptions)
{
    const Nuv::NuvException cause(u"cause");
    const NuvXML::DOMBuilderException exception(u"message", "file.cpp", 1, cause);
    const auto print = [&](FailingOChannel& channel) { exception.Print(channel); };
    const auto dump = [&](FailingOChannel& channel) { exception.Dump(channel); };
    ExpectToStopAtEachFailure<FailingOChannel>(print, 1);
    ExpectToStopAtEachFailure<FailingOChannel>(dump, 1);
    ExpectEachExceptionToPass<FailingOChannel>(print, 1);
    ExpectEachExceptionToPass<FailingOChannel>(dump, 1);
}

} // namespace
