#include "DOMBuilderSupport.hpp"

#include "InputOutput/File.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace BuilderTests;
using namespace NuvXML;

// Export.

TEST(DOMBuilder, ExportsAtAnyTimeAndAsOftenAsWanted)
{
    DOMBuilder builder;
    EXPECT_EQ(TextOf(builder), "");
    builder.WriteStartElement("r");
    EXPECT_EQ(TextOf(builder), "\n<r/>");
    builder.WriteXML("v", 1);
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v></r>");
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v></r>");
    builder.WriteEndElement();
    EXPECT_EQ(TextOf(builder), "\n<r>\n\t<v>1</v>\n</r>");
}

TEST(DOMBuilder, ExportsNonASCIITextAsTheSameCharacters)
{
    const NuvTest::LocalCodePageScope codePage("windows-1252");
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteXMLAttr("a", UniString(u"é\u200B\u4E2D\U0001F600"));
    builder.WriteXMLTextNode(UniString(u"é\u0085\u2028\u4E2D\uFFFD\U0010FFFF"));
    EXPECT_EQ(builder.Export(),
              UniString(Declaration) +
                  UniString(u"<r a=\"é\u200B\u4E2D\U0001F600\">é\u0085\u2028\u4E2D\uFFFD\U0010FFFF</r>"));
}

TEST(DOMBuilder, ExportsUTF8ToAChannelInOneCall)
{
    struct Counting : Nuv::MemoryOChannel
    {
        int Write(const void* bytes, size_t count) override
        {
            ++calls;
            return Nuv::MemoryOChannel::Write(bytes, count);
        }
        int calls = 0;
    };
    DOMBuilder builder;
    builder.SetAutoTabsHint(false);
    builder.WriteStartElement("r");
    builder.WriteXMLTextNode(UniString(std::u16string(5000, u'é')));
    Counting channel;
    builder.Export(channel);
    std::string expected = std::string(Declaration) + "<r>";
    for (int i = 0; i < 5000; ++i)
        expected += "\xC3\xA9";
    EXPECT_EQ(channel.GetBytes(), expected + "</r>");
    EXPECT_EQ(channel.calls, 1);
}

TEST(DOMBuilder, ExportsNothingForANullDocumentInOneCallToo)
{
    struct Counting : Nuv::OChannel
    {
        int Write(const void*, size_t count) override
        {
            counts.push_back(count);
            return 0;
        }
        std::vector<size_t> counts;
    };
    DOMBuilder builder(nullptr, nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.Export(), UniString());
    Counting channel;
    builder.Export(channel);
    EXPECT_EQ(channel.counts, std::vector<size_t>{0});
}

TEST(DOMBuilder, LeavesAFailingChannelToItsOwner)
{
    struct Failing : Nuv::OChannel
    {
        int Write(const void*, size_t) override { return -1; }
    };
    DOMBuilder builder;
    WriteRoot(builder, 1);
    Failing channel;
    builder.Export(channel);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, LetsTheExceptionOfAChannelThrough)
{
    struct Throwing : Nuv::OChannel
    {
        int Write(const void*, size_t) override { throw std::runtime_error("full"); }
    };
    DOMBuilder builder;
    Throwing channel;
    EXPECT_THROW(builder.Export(channel), std::runtime_error);
}

TEST(DOMBuilder, LeavesAFullDeviceToItsOwner)
{
    DOMBuilder builder;
    WriteRoot(builder, 1);
    IO::File full(IO::Location(UniString(u"/dev/full")), IO::FailWhenNotFound);
    ASSERT_EQ(full.Open(IO::WriteMode, IO::ReportAccessDenied), 0);
    builder.Export(full);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

// Text that XML cannot hold.

TEST(DOMBuilder, RefusesToExportAnUnwritableValue)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXML("v", text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableAttribute)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLAttr("a", text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
        builder.WriteXMLAttr("a", UniString(u"x"));
        EXPECT_EQ(TextOf(builder), "\n<r a=\"x\"/>");
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableTextNode)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLTextNode(text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableCDATASection)
{
    for (const UniString& text : UnwritableTexts)
    {
        DOMBuilder builder;
        builder.SetAutoTabsHint(false);
        builder.WriteStartElement("r");
        EXPECT_EQ(builder.WriteXMLCDATAString(text), 0);
        EXPECT_THROW(builder.Export(), DOMLSException);
        DOMElement* root = builder.GetActualNode();
        root->removeChild(root->getFirstChild())->release();
        EXPECT_EQ(TextOf(builder), "<r/>") << "the text is gone";
    }
}

TEST(DOMBuilder, RefusesToExportAnUnwritableCDATASectionOfTheCaller)
{
    for (const UniString& text : UnwritableTexts)
    {
        const XercesPtr<DOMDocument> document = NewDocument();
        DOMElement* root = document->createElement(u"r");
        document->appendChild(root);
        root->appendChild(document->createCDATASection(text.ToUTF16()));
        DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, 1);
        EXPECT_THROW(builder.Export(), DOMLSException);
    }
}

TEST(DOMBuilder, WritesNothingToAChannelWhenTheTextIsUnwritable)
{
    DOMBuilder builder;
    builder.WriteStartElement("r");
    builder.WriteXML("v", UniString(u"\u0001"));
    Nuv::MemoryOChannel channel;
    EXPECT_THROW(builder.Export(channel), DOMLSException);
    EXPECT_EQ(channel.GetBytes(), "");
}

// The file.

TEST(DOMBuilder, WritesItsFileWhenItIsDestroyed)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
        builder.Export();
        EXPECT_FALSE(folder.Has("a.xml"));
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

TEST(DOMBuilder, ReplacesTheFileThatIsThere)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", std::string(1000, 'x'));
    {
        DOMBuilder builder{IO::Location(path)};
        WriteRoot(builder, 1);
        EXPECT_EQ(folder.Read("a.xml"), std::string(1000, 'x'));
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

TEST(DOMBuilder, DeletesTheOldFileInsteadOfWritingIntoIt)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    std::filesystem::create_hard_link(folder.Path() / "a.xml", folder.Path() / "kept.xml");
    {
        DOMBuilder builder{IO::Location(path)};
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
    EXPECT_EQ(folder.Read("kept.xml"), "old");
}

TEST(DOMBuilder, WritesAFileWithoutElementsToo)
{
    const NuvTest::ScratchFolder folder;
    {
        const DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
    }
    EXPECT_EQ(folder.Read("a.xml"), Declaration);
}

TEST(DOMBuilder, KeepsTheOldFileWhenTheTextIsUnwritable)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.Write("a.xml", "old");
    using Write = void (*)(DOMBuilder&);
    for (const Write write :
         {Write([](DOMBuilder& builder) { builder.WriteXML("v", UniString(u"\u0001")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLAttr("a", UniString(u"\xD800")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLTextNode(UniString(u"\uFFFE")); }),
          Write([](DOMBuilder& builder) { builder.WriteXMLCDATAString(UniString(u"\u0001")); })})
    {
        {
            DOMBuilder builder{IO::Location(path)};
            builder.WriteStartElement("r");
            write(builder);
        }
        EXPECT_EQ(folder.Read("a.xml"), "old");
    }
}

TEST(DOMBuilder, IsSilentAboutAFolderThatStandsInItsWay)
{
    const NuvTest::ScratchFolder folder;
    std::filesystem::create_directory(folder.Path() / "a.xml");
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "a.xml"));
}

TEST(DOMBuilder, IsSilentAboutAFolderThatIsMissing)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("missing/a.xml"))};
        WriteRoot(builder, 1);
    }
    EXPECT_FALSE(folder.Has("missing"));
}

TEST(DOMBuilder, WritesItsFileAfterAnExceptionToo)
{
    const NuvTest::ScratchFolder folder;
    try
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        WriteRoot(builder, 1);
        throw std::runtime_error("elsewhere");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(folder.Read("a.xml"), RootAsBytes(1));
}

} // namespace
