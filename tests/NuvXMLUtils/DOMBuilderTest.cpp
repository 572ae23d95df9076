#include "DOMBuilderSupport.hpp"

#include "InputOutput/FileSystem.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <xercesc/dom/DOMUserDataHandler.hpp>

#include <filesystem>
#include <memory>

namespace
{

using namespace BuilderTests;
using namespace NuvXML;

// Constructors.

TEST(DOMBuilder, BeginsWithAnEmptyDocumentOfItsOwn)
{
    DOMBuilder builder;
    ASSERT_NE(builder.GetDOMDocument(), nullptr);
    EXPECT_EQ(builder.GetDOMDocument()->getFirstChild(), nullptr);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    EXPECT_TRUE(builder.GetReplaceCR());
    EXPECT_EQ(builder.GetNumberOfMessage(), 0);
    EXPECT_EQ(TextOf(builder), "");
}

TEST(DOMBuilder, IsNamedAfterAScratchFileByDefaultAndWritesNone)
{
    IO::Location folder;
    ASSERT_EQ(IO::FileSystem::GetSpecialLocation(IO::FileSystem::TemporaryFolder, folder), 0);
    IO::Location location;
    {
        DOMBuilder builder;
        ASSERT_TRUE(builder.GetLocation(location));
        WriteRoot(builder, 1);
    }
    const std::filesystem::path path(location.ToNativePath());
    EXPECT_EQ(path.parent_path(), std::filesystem::path(folder.ToNativePath()));
    EXPECT_EQ(path.filename().string().substr(0, 8), "Scratch_");
    EXPECT_EQ(path.extension(), ".xml");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(DOMBuilder, OfALocationBeginsWithAnEmptyDocumentToo)
{
    const NuvTest::ScratchFolder folder;
    DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
    EXPECT_EQ(builder.GetDOMDocument()->getFirstChild(), nullptr);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    EXPECT_TRUE(builder.GetReplaceCR());
    IO::Location location;
    EXPECT_TRUE(builder.GetLocation(location));
    EXPECT_EQ(location.ToPath(), folder.PathOf("a.xml"));
    WriteRoot(builder, 1);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, GoesOnWithTheDocumentOfTheCallerAndLeavesIt)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMElement* root = document->createElement(u"r");
    document->appendChild(root);
    {
        DOMBuilder builder(document.get(), root, DOMBuilder::LeaveDocumentToCaller, 3);
        EXPECT_EQ(builder.GetDOMDocument(), document.get());
        EXPECT_EQ(builder.GetActualNode(), root);
        EXPECT_TRUE(builder.GetReplaceCR());
        EXPECT_EQ(builder.WriteXML("v", 1), 0);
        EXPECT_EQ(builder.WriteEndElement(), 0);
        EXPECT_EQ(TextOf(builder), "<r>\n\t\t\t<v>1</v>\n\t\t</r>");
    }
    EXPECT_EQ(UniString(root->getTextContent()), UniString(u"\n\t\t\t1\n\t\t"))
        << "the document is still there";
}

TEST(DOMBuilder, BeginsTheRootElementInTheDocumentOfTheCaller)
{
    const XercesPtr<DOMDocument> document = NewDocument();
    DOMBuilder builder(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.GetActualNode(), nullptr);
    WriteRoot(builder, 1);
    EXPECT_EQ(Declaration + TextOf(builder), RootAsBytes(1));
}

TEST(DOMBuilder, HasNoLocationOverTheDocumentOfTheCaller)
{
    const NuvTest::ScratchFolder folder;
    const XercesPtr<DOMDocument> document = NewDocument();
    document->setDocumentURI(IO::Location(folder.PathOf("a.xml")).ToURL().ToUTF16());
    for (const int ownership : {0, 2})
    {
        DOMBuilder builder(document.get(), nullptr, static_cast<DOMBuilder::OwnershipType>(ownership), 0);
        IO::Location location(u"/before");
        EXPECT_FALSE(builder.GetLocation(location));
        EXPECT_TRUE(location.IsEmpty());
    }
    EXPECT_FALSE(folder.Has("a.xml")) << "only a document that is taken over is written";
}

TEST(DOMBuilder, WritesADocumentThatItTakesOverToItsURI)
{
    const NuvTest::ScratchFolder folder;
    const UniString path = folder.PathOf("a b%41é.xml");
    XercesPtr<DOMDocument> document = NewDocument();
    document->setDocumentURI(IO::Location(path).ToURL().ToUTF16());
    {
        DOMBuilder builder(document.release(), nullptr, DOMBuilder::TakeDocumentOver, 0);
        IO::Location location;
        EXPECT_TRUE(builder.GetLocation(location));
        EXPECT_EQ(location.ToPath(), path);
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(folder.Read("a b%41é.xml"), RootAsBytes(1));
}

/// Counts the documents that it is attached to and that are released.
class ReleaseCounter : public xercesc_3_0::DOMUserDataHandler
{
  public:
    void AttachTo(DOMDocument& document) { document.setUserData(u"counter", this, this); }

    void handle(DOMOperationType operation, const XMLCh*, void*, const DOMNode*, DOMNode*) override
    {
        if (operation == NODE_DELETED)
            ++released;
    }

    int released = 0;
};

TEST(DOMBuilder, ReleasesItsOwnDocument)
{
    const NuvTest::ScratchFolder folder;
    ReleaseCounter counter;
    {
        DOMBuilder builder;
        counter.AttachTo(*builder.GetDOMDocument());
        DOMBuilder withFile{IO::Location(folder.PathOf("a.xml"))};
        counter.AttachTo(*withFile.GetDOMDocument());
    }
    EXPECT_EQ(counter.released, 2);
}

TEST(DOMBuilder, ReleasesADocumentThatItTakesOverAndWritesNoneWithoutAURI)
{
    ReleaseCounter counter;
    {
        DOMBuilder builder(NewDocument().release(), nullptr, DOMBuilder::TakeDocumentOver, 0);
        counter.AttachTo(*builder.GetDOMDocument());
        IO::Location location;
        EXPECT_FALSE(builder.GetLocation(location));
        WriteRoot(builder, 1);
    }
    EXPECT_EQ(counter.released, 1);
}

TEST(DOMBuilder, ReleasesNoDocumentThatItDoesNotTakeOver)
{
    for (const int ownership : {0, 2, -1})
    {
        const XercesPtr<DOMDocument> document = NewDocument();
        ReleaseCounter counter;
        counter.AttachTo(*document);
        {
            const DOMBuilder builder(document.get(), nullptr,
                                     static_cast<DOMBuilder::OwnershipType>(ownership), 0);
        }
        EXPECT_EQ(counter.released, 0);
        document->setUserData(u"counter", nullptr, nullptr);
    }
}

TEST(DOMBuilder, SetsTheFieldsOfTheChannel)
{
    struct Fields : DOMBuilder
    {
        using DOMBuilder::DOMBuilder;
        int Mode() const { return channelMode; }
        int Precision() const { return channelPrecision; }
    };
    const XercesPtr<DOMDocument> document = NewDocument();
    const Fields builder;
    const Fields over(document.get(), nullptr, DOMBuilder::LeaveDocumentToCaller, 0);
    EXPECT_EQ(builder.Mode(), 0);
    EXPECT_EQ(builder.Precision(), 15);
    EXPECT_EQ(over.Mode(), 0);
    EXPECT_EQ(over.Precision(), 15);
}

TEST(DOMBuilder, CreatesAnotherBuilderAndIgnoresTheArguments)
{
    const NuvTest::ScratchFolder folder;
    {
        DOMBuilder builder{IO::Location(folder.PathOf("a.xml"))};
        const std::unique_ptr<DOMBuilder> created(
            builder.Create(folder.PathOf("b.xml"), UniString(u"UTF-16")));
        EXPECT_NE(created->GetDOMDocument(), builder.GetDOMDocument());
        IO::Location location;
        EXPECT_TRUE(created->GetLocation(location));
        EXPECT_NE(location.ToPath(), folder.PathOf("b.xml"));
        WriteRoot(*created, 2);
        EXPECT_EQ(Declaration + TextOf(*created), RootAsBytes(2));
        WriteRoot(builder, 1);
    }
    EXPECT_FALSE(folder.Has("b.xml"));
}

// Version, messages and errors.

TEST(DOMBuilder, StoresTheSchemaVersion)
{
    DOMBuilder builder;
    Nuv::ClassVersion version{9, 9, 9};
    builder.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 0);
    EXPECT_EQ(version.minorNumber, 0);
    builder.SetXMLShemaVersion(Nuv::ClassVersion{3, 1});
    builder.GetXMLShemaVersion(version);
    EXPECT_EQ(version.majorNumber, 3);
    EXPECT_EQ(version.minorNumber, 1);
}

TEST(DOMBuilder, CollectsMessagesAtLineOne)
{
    DOMBuilder builder;
    builder.AddMessage(UniString(u"first"));
    builder.WriteStartElement("r");
    builder.AddMessage(UniString(u"second"));
    EXPECT_EQ(builder.GetNumberOfMessage(), 2);
    UniString text;
    int line = 0;
    builder.GetMessage(0, text, line);
    EXPECT_EQ(text, UniString(u"first"));
    EXPECT_EQ(line, 1);
    line = 0;
    builder.GetMessage(1, text, line);
    EXPECT_EQ(text, UniString(u"second"));
    EXPECT_EQ(line, 1);
}

TEST(DOMBuilder, LeavesTheOutputsAloneForAMessageThatIsNotThere)
{
    DOMBuilder builder;
    builder.AddMessage(UniString(u"first"));
    UniString text(u"before");
    int line = 42;
    for (const int index : {1, 2, 1000, -1})
        builder.GetMessage(index, text, line);
    EXPECT_EQ(text, UniString(u"before"));
    EXPECT_EQ(line, 42);
}

TEST(DOMBuilder, NeverHasAnErrorStatus)
{
    DOMBuilder builder;
    EXPECT_EQ(builder.WriteEndElement(), Failure);
    EXPECT_EQ(builder.GetErrorStatus(), Nuv::XMLOChannel::NoError);
    builder.ClearErrorStatus();
    EXPECT_EQ(builder.GetErrorStatus(), 0);
}

} // namespace
