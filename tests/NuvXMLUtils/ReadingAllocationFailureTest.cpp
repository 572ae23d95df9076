// Makes each allocation of each operation of the input channels fail in turn.

#include "NuvXMLUtils/NuvXMLDOMReader.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "tests/NuvXMLUtils/AllocationFailureSupport.hpp"

namespace
{

using namespace AllocationFailureTests;
using Channel = std::unique_ptr<Nuv::XMLIChannel>;

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
                reader = NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), true);
                reader->AddMessage(UniString(u"a message that is longer than a short string"));
            }
            ExpectOutOfMemoryOnly([&] { GetParam().call(*reader); });
            const Pause pause;
            EXPECT_EQ(reader->GetErrorStatus(), Nuv::XMLIChannel::NoError);
            EXPECT_NE(reader->GetTokenType(), Nuv::XMLNoToken);
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
    {"ReadXMLOfDouble", [](auto& reader) { ReadElement<double>(reader, "Height"); }},
    {"ReadXMLOfCharacter", [](auto& reader) { ReadElement<char>(reader, "Height"); }},
    {"ReadXMLOfWrongBool", [](auto& reader) { ReadElement<bool>(reader, "Name"); }},
    {"ReadXMLAttrOfGuid", [](auto& reader) { ReadAttribute<Nuv::Guid>(reader, "Guid"); }},
    {"ReadXMLAttrOfNumber", [](auto& reader) { ReadAttribute<int>(reader, "Count"); }},
    {"ReadXMLAttrThatIsMissing", [](auto& reader) { ReadAttribute<int>(reader, "NotThereAtAll"); }},
    {"ReadXMLAttrOfString", [](auto& reader) { ReadAttribute<UniString>(reader, "Guid"); }},
    {"ReadXMLAttrOfWrongNumber", [](auto& reader) { ReadAttribute<int>(reader, "Guid"); }},
    {"ReadXMLAttrOfWrongBool", [](auto& reader) { ReadAttribute<bool>(reader, "Guid"); }},
    {"ReadXMLAttrIntoBuffer",
     [](auto& reader)
     {
         char buffer[64];
         reader.ReadXMLAttr("Guid", buffer, sizeof buffer);
     }},
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
    {"ReadXMLCDATAStringIntoBuffer",
     [](auto& reader)
     {
         char buffer[64];
         reader.ReadXMLCDATAString(buffer, sizeof buffer);
     }},
    {"ReadXMLCDATAHexToBinIntoBuffer",
     [](auto& reader)
     {
         char buffer[64];
         reader.ReadXMLCDATAHexToBin(buffer, sizeof buffer);
     }},
    {"GetTokenTypeName",
     [](auto& reader)
     {
         UniString name;
         reader.GetTokenTypeName(name);
     }},
    {"ReadEndElementWithLongName", [](auto& reader) { reader.ReadEndElement(LongText(1'000).c_str()); }},
    {"AddMessage",
     [](auto& reader) { reader.AddMessage(UniString(u"a message that is longer than a short string")); }},
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
    Nuv::XMLIChannel* reader =
        NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), true);
    UniString text;
    FailAt(1, Mode::Once);
    EXPECT_THROW(reader->ReadXML("Name", text), Nuv::OutOfMemoryException);
    Disarm();
    UniString name;
    EXPECT_EQ(reader->GetTokenTypeName(name), Nuv::XMLStartElement);
    EXPECT_EQ(name, UniString(u"Wall"));
    NuvXML::DisposeXMLIChannel(reader);
}

TEST(AllocationFailure, OfACopyOfAReaderLeavesNothingBehind)
{
    const Document document = BareDocument();
    document->appendChild(document->createElement(u"Wall"));
    NuvXML::DOMReader reader(document->getDocumentElement());
    reader.AddMessage(UniString(u"a message that is longer than a short string"));
    EXPECT_GT(Sweep([&] { ExpectOutOfMemoryOnly([&] { NuvXML::DOMReader copy(reader); }); }), 0u);
    EXPECT_GT(Sweep(
                  [&]
                  {
                      NuvXML::DOMReader copy(document->getDocumentElement());
                      ExpectOutOfMemoryOnly([&] { copy = reader; });
                      EXPECT_EQ(copy.GetActualNode(), document->getDocumentElement());
                  }),
              0u);
}

TEST(AllocationFailure, OfAValueLeavesTheValueAsItWas)
{
    const Channel reader(NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), true));
    const UniString old(u"old, and longer than a short string");
    SweepKeeping(old, [&](UniString& value) { reader->ReadXMLAttr("Guid", value); });
    SweepKeeping(old, [&](UniString& value) { reader->ReadXMLCDATAString(value); });
    SweepKeeping(old, [&](UniString& value) { reader->ReadXML("Name", value); });
}

TEST(AllocationFailure, OfADividedCDATASectionLeavesTheValueAsItWas)
{
    constexpr std::string_view text =
        "<r><![CDATA[some text]]]]><![CDATA[>some more text]]]]><![CDATA[>]]></r>";
    const Channel reader(NuvXML::CreateXMLIChannelFromMemory(Data(text), Size(text), true));
    SweepKeeping(UniString(u"old"), [&](UniString& value) { reader->ReadXMLCDATAString(value); });
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
                channel = NuvXML::CreateXMLIChannelFromMemory(Data(DocumentText), Size(DocumentText), true);
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
} // namespace
