#include "NuvRoot/Debug.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/Xerces.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLMsgLoader.hpp>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>
#include <type_traits>

namespace
{

using Nuv::UniString;
using NuvXML::XercescInitializer;

bool XercesIsUp() { return xercesc_3_0::DOMImplementation::getImplementation() != nullptr; }

/// Stops Xerces, which the library has started, and starts it again at the end of the scope.
class XercesDown
{
  public:
    XercesDown() { const XercescInitializer stopsAtOnce; }
    XercesDown(const XercesDown&) = delete;
    XercesDown& operator=(const XercesDown&) = delete;
    ~XercesDown() { new (keptUp) XercescInitializer; }

  private:
    // The instance that starts Xerces again is never destroyed: the library's own stops Xerces in the end.
    alignas(XercescInitializer) static inline std::byte keptUp[sizeof(XercescInitializer)];
};

/// The message of the exception that `create` throws.
template <class Exception, class Create>
UniString MessageOf(Create create)
{
    try
    {
        create();
    }
    catch (const Exception& exception)
    {
        return exception.GetMessage();
    }
    return UniString(u"nothing was thrown");
}

const unsigned char document[] = "<a/>";
constexpr unsigned int documentSize = sizeof document - 1;

xercesc_3_0::DOMDocument* ParseFile(const IO::Location& file)
{
    return ParseXMLDoc(file, xercesc_3_0::XercesDOMParser::Val_Never, false, nullptr, nullptr, nullptr);
}

xercesc_3_0::DOMDocument* ParseMemory()
{
    return ParseXMLDoc(document, documentSize, xercesc_3_0::XercesDOMParser::Val_Never, false,
                       UniString(u"memory"), nullptr, nullptr, nullptr);
}

TEST(XercescInitializer, HasStartedXercesWhenTheLibraryIsLoaded) { EXPECT_TRUE(XercesIsUp()); }

TEST(XercescInitializer, HasAVirtualDestructorAndNoData)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<XercescInitializer>);
    EXPECT_EQ(sizeof(XercescInitializer), sizeof(void*));
}

TEST(XercescInitializer, StopsXercesForEveryoneWhenASecondInstanceIsDestroyed)
{
    std::optional<XercescInitializer> second(std::in_place);
    EXPECT_TRUE(XercesIsUp());
    second.reset();
    EXPECT_FALSE(XercesIsUp());
    second.emplace();
    EXPECT_TRUE(XercesIsUp()) << "the next instance starts it again";
    second.reset();
    EXPECT_FALSE(XercesIsUp());
    const XercesDown startsAgainAtTheEnd;
}

TEST(XercescInitializer, DoesNotCountItsInstances)
{
    {
        const XercesDown down;
        std::optional<XercescInitializer> first(std::in_place);
        std::optional<XercescInitializer> second(std::in_place);
        first.reset();
        EXPECT_FALSE(XercesIsUp());
        second.reset();
        EXPECT_FALSE(XercesIsUp());
    }
    EXPECT_TRUE(XercesIsUp());
}

TEST(XercescInitializer, DoesNotStartXercesWhenItIsCopiedOrAssigned)
{
    std::optional<XercescInitializer> original(std::in_place);
    const XercesDown down;
    XercescInitializer copy(*original);
    EXPECT_FALSE(XercesIsUp());
    copy = *original;
    EXPECT_FALSE(XercesIsUp());
    original.reset();
}

TEST(XercescInitializer, DoesNotStopXercesWhenItIsAssigned)
{
    {
        const XercescInitializer first;
        XercescInitializer second;
        second = first;
        EXPECT_TRUE(XercesIsUp());
    }
    const XercesDown startsAgainAtTheEnd;
}

TEST(XercescInitializer, StopsXercesWhenACopyIsDestroyed)
{
    std::optional<XercescInitializer> original(std::in_place);
    std::optional<XercescInitializer> copy(*original);
    copy.reset();
    EXPECT_FALSE(XercesIsUp());
    original.reset();
    const XercesDown startsAgainAtTheEnd;
}

TEST(XercesDown, LetsTheFactoriesReturnNull)
{
    const NuvTest::ScratchFolder folder;
    const IO::Location file(folder.Write("a.xml", "<a/>"));
    const IO::Location target(folder.PathOf("b.xml"));
    const XercesDown down;
    EXPECT_EQ(NuvXML::CreateXMLOChannel(false), nullptr);
    EXPECT_EQ(NuvXML::CreateXMLOChannel(target, false), nullptr);
    EXPECT_EQ(NuvXML::CreateXMLIChannel(file, false), nullptr);
    EXPECT_EQ(NuvXML::CreateXMLIChannelFromMemory(document, documentSize, false), nullptr);
    EXPECT_EQ(NuvXML::CreateXMLIChannelFromMemory(u"<a/>", false), nullptr);
    EXPECT_FALSE(folder.Has("b.xml"));
}

TEST(XercesDown, LetsTheOutputFactoriesThrow)
{
    using NuvXML::XMLOChannelException;
    const IO::Location target(u"/nowhere/b.xml");
    const XercesDown down;
    EXPECT_EQ(MessageOf<XMLOChannelException>([] { NuvXML::CreateXMLOChannel(true); }),
              UniString(u"NuvXML DOMBuilderException"));
    EXPECT_EQ(MessageOf<XMLOChannelException>([&] { NuvXML::CreateXMLOChannel(target, true); }),
              UniString(u"NuvXML DOMBuilderException"));
}

TEST(XercesDown, LetsTheInputFactoriesThrow)
{
    using NuvXML::XMLIChannelException;
    const NuvTest::ScratchFolder folder;
    const IO::Location file(folder.Write("a.xml", "<a/>"));
    const XercesDown down;
    EXPECT_EQ(MessageOf<XMLIChannelException>([&] { NuvXML::CreateXMLIChannel(file, true); }),
              UniString(u"NuvXML DOMReaderException"));
    EXPECT_EQ(MessageOf<XMLIChannelException>(
                  [] { NuvXML::CreateXMLIChannelFromMemory(document, documentSize, true); }),
              UniString(u"NuvXML DOMReaderException"));
}

TEST(XercesDown, LetsTheConstructorsOfTheBuilderThrow)
{
    using NuvXML::DOMBuilder;
    using NuvXML::DOMBuilderException;
    const IO::Location target(u"/nowhere/b.xml");
    const XercesDown down;
    EXPECT_EQ(MessageOf<DOMBuilderException>([&] { DOMBuilder builder(target); }),
              UniString(u"Creating document failed."));
    EXPECT_EQ(MessageOf<DOMBuilderException>([] { DOMBuilder builder; }),
              UniString(u"Xerces is not running."));
}

TEST(XercesDown, LetsParseXMLDocReturnNull)
{
    const NuvTest::ScratchFolder folder;
    const IO::Location file(folder.Write("a.xml", "<a/>"));
    const XercesDown down;
    EXPECT_EQ(ParseFile(file), nullptr);
    EXPECT_EQ(ParseMemory(), nullptr);
}

TEST(XercesDown, LeavesChannelsUsableThatAreMadeAfterTheNextStart)
{
    {
        const XercesDown down;
    }
    NuvXML::DOMBuilder builder;
    EXPECT_EQ(builder.WriteStartElement("a"), 0);
    EXPECT_EQ(builder.WriteEndElement(), 0);
    EXPECT_EQ(builder.Export(), UniString(u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n"
                                          u"<a/>"));
}

/// What an application may give to Xerces when it starts it.
class OwnMemory : public xercesc_3_0::MemoryManager
{
  public:
    xercesc_3_0::MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t size) override
    {
        ++blocks;
        ++taken;
        return ::operator new(size);
    }
    void deallocate(void* block) override
    {
        blocks -= block ? 1 : 0;
        ::operator delete(block);
    }

    long blocks = 0;
    long taken = 0;
};

class OwnPanicHandler : public xercesc_3_0::PanicHandler
{
  public:
    void panic(PanicReasons) override { std::abort(); }
};

void StartXerces(OwnMemory& memory, OwnPanicHandler& panicHandler)
{
    xercesc_3_0::XMLPlatformUtils::Initialize("de_DE", nullptr, &panicHandler, &memory);
}

void UseTheLibrary()
{
    using namespace xercesc_3_0;
    const NuvTest::ScratchFolder folder;
    const UniString schema = folder.Write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                                   "<xs:element name='a' type='xs:string'/></xs:schema>");
    ValidatingXMLParser parser;
    EXPECT_TRUE(parser.LoadSchema(IO::Location(schema), nullptr, nullptr));
    const NuvXML::XercesPtr<DOMDocument> parsed(
        parser.Parse(document, documentSize, XercesDOMParser::Val_Never, false, UniString(u"memory"), nullptr,
                     nullptr, nullptr));
    ASSERT_TRUE(parsed);
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDoc(parsed.get(), &channel, u"KOI8-R", true));
    EXPECT_EQ(channel.GetBytes(), "<?xml version=\"1.0\" encoding=\"KOI8-R\"?>\n<a/>\n");
}

TEST(XercesOfTheApplication, ServesTheLibraryWhenItWasStoppedAndStarted)
{
    using namespace xercesc_3_0;
    OwnMemory memory;
    OwnPanicHandler panicHandler;
    XMLPlatformUtils::Terminate();
    StartXerces(memory, panicHandler);
    EXPECT_EQ(XMLPlatformUtils::fgUserPanicHandler, &panicHandler);
    EXPECT_STREQ(XMLMsgLoader::getLocale(), "de_DE");
    const long takenByStart = memory.taken;
    UseTheLibrary();
    EXPECT_GT(memory.taken, takenByStart);
    XMLPlatformUtils::Terminate();
    EXPECT_FALSE(XercesIsUp());
    EXPECT_EQ(memory.blocks, 0);
    XMLPlatformUtils::Initialize(); // for the other tests
}

TEST(XercesOfTheApplication, IsIgnoredWhileXercesIsUp)
{
    using namespace xercesc_3_0;
    OwnMemory memory;
    OwnPanicHandler panicHandler;
    StartXerces(memory, panicHandler);
    EXPECT_NE(XMLPlatformUtils::fgUserPanicHandler, &panicHandler);
    UseTheLibrary();
    XMLPlatformUtils::Terminate();
    EXPECT_TRUE(XercesIsUp());
    EXPECT_EQ(memory.taken, 0);
}

/// Stands in for Xerces' memory manager and has no memory, so that Xerces cannot start.
class NoMemory : public xercesc_3_0::MemoryManager
{
  public:
    xercesc_3_0::MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t) override { throw std::bad_alloc(); }
    void deallocate(void*) override {}
};

void PrintAssertion(const char* file, unsigned int line, const char* message, const char* function)
{
    std::fprintf(stderr, "%s|%s|%s|%s\n", file, line > 0 ? "line" : "no line", message, function);
}

/// Makes the start fail, in a process of its own, and ends the process with 0 when all that follows is as it
/// should be.
[[noreturn]] void FailToStart()
{
    Nuv::SetDBBreakHandler(PrintAssertion);
    static NoMemory noMemory;
    const XercesDown down;
    xercesc_3_0::XMLPlatformUtils::fgMemoryManager = &noMemory;
    const XercescInitializer failing;
    const bool failed = !XercesIsUp() && !NuvXML::CreateXMLOChannel(false) && !ParseMemory() &&
                        !NuvXML::CreateXMLIChannelFromMemory(document, documentSize, false);
    std::_Exit(failed ? 0 : 1);
}

TEST(XercescInitializerDeathTest, ReportsAFailedStartByAnAssertionAndLeavesXercesDown)
{
    EXPECT_EXIT(FailToStart(), testing::ExitedWithCode(0),
                "NuvXMLInterface\\|line\\|XML Initialize error\\|"
                "NuvXML::XercescInitializer::XercescInitializer");
}

} // namespace
