#include "NuvXMLUtils/LocationInputSource.hpp"

#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <xercesc/util/PlatformUtils.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace
{

using Stream = std::unique_ptr<xercesc_3_0::BinInputStream>;

class LocationInputSourceTest : public testing::Test
{
  protected:
    IO::Location LocationOf(std::string_view name) const { return IO::Location(scratch.PathOf(name)); }

    IO::Location Write(std::string_view name, std::string_view bytes) const
    {
        return IO::Location(scratch.Write(name, bytes));
    }

    NuvTest::ScratchFolder scratch;
};

Stream StreamOf(const IO::Location& location) { return Stream(LocationInputSource(location).makeStream()); }

Nuv::UniString SystemIdOf(const IO::Location& location)
{
    return LocationInputSource(location).getSystemId();
}

std::string ReadUpTo(xercesc_3_0::BinInputStream& stream, size_t count)
{
    std::string bytes(count, '?');
    bytes.resize(stream.readBytes(reinterpret_cast<XMLByte*>(bytes.data()), count));
    return bytes;
}

/// The code of Xerces' exception for a failing read; 0 when the read does not fail.
int ErrorCodeOfRead(xercesc_3_0::BinInputStream& stream)
{
    XMLByte byte;
    try
    {
        stream.readBytes(&byte, 1);
        return 0;
    }
    catch (const xercesc_3_0::XMLPlatformUtilsException& exception)
    {
        EXPECT_NE(std::string_view(exception.getSrcFile()).find("LocationInputSource"),
                  std::string_view::npos);
        return exception.getCode();
    }
}

TEST_F(LocationInputSourceTest, HasTheURLOfTheLocationAsSystemId)
{
    EXPECT_EQ(SystemIdOf(IO::Location(u"/a/b.xml")), Nuv::UniString(u"file:///a/b.xml"));
    EXPECT_EQ(SystemIdOf(IO::Location(u"file:///a/b.xml")), Nuv::UniString(u"file:///a/b.xml"));
}

TEST_F(LocationInputSourceTest, EscapesWhatAURLCannotHoldInTheSystemId)
{
    EXPECT_EQ(SystemIdOf(IO::Location(u"/a b/c.xml")), Nuv::UniString(u"file:///a%20b/c.xml"));
    EXPECT_EQ(SystemIdOf(IO::Location(u"/a%41.xml")), Nuv::UniString(u"file:///a%2541.xml"));
    EXPECT_EQ(SystemIdOf(IO::Location(u"/\u00FC\u20AC.xml")), Nuv::UniString(u"file:///%C3%BC%E2%82%AC.xml"));
    EXPECT_EQ(SystemIdOf(IO::Location(u"/a?b#c.xml")), Nuv::UniString(u"file:///a%3Fb%23c.xml"));
}

TEST_F(LocationInputSourceTest, HasNoPublicIdAndNoEncoding)
{
    const LocationInputSource source(LocationOf("a.xml"));
    EXPECT_EQ(source.getPublicId(), nullptr);
    EXPECT_EQ(source.getEncoding(), nullptr);
}

TEST_F(LocationInputSourceTest, MakesAStreamOfTheBytesOfTheFile)
{
    const std::string bytes("\0\x80\xFFtext\r\n", 9);
    const Stream stream = StreamOf(Write("bytes", bytes));
    ASSERT_TRUE(stream);
    EXPECT_EQ(ReadUpTo(*stream, 100), bytes);
}

TEST_F(LocationInputSourceTest, ReadsFilesWhateverTheirName)
{
    for (const char* name : {"a b.xml", "%41.xml", "\u00FC\u20AC\U0001F600.xml", "a?b#c&d.xml"})
    {
        const Stream stream = StreamOf(Write(name, name));
        ASSERT_TRUE(stream) << name;
        EXPECT_EQ(ReadUpTo(*stream, 100), name);
    }
}

TEST_F(LocationInputSourceTest, CountsTheBytesThatWereDelivered)
{
    const Stream stream = StreamOf(Write("bytes", "0123456789"));
    EXPECT_EQ(stream->curPos(), 0u);
    EXPECT_EQ(ReadUpTo(*stream, 3), "012");
    EXPECT_EQ(stream->curPos(), 3u);
    EXPECT_EQ(ReadUpTo(*stream, 4), "3456");
    EXPECT_EQ(stream->curPos(), 7u);
    EXPECT_EQ(ReadUpTo(*stream, 4), "789");
    EXPECT_EQ(stream->curPos(), 10u);
}

TEST_F(LocationInputSourceTest, DeliversNothingAtTheEndOfTheFileAsOftenAsItIsAsked)
{
    const Stream stream = StreamOf(Write("bytes", "01"));
    ReadUpTo(*stream, 2);
    EXPECT_EQ(ReadUpTo(*stream, 1), "");
    EXPECT_EQ(ReadUpTo(*stream, 1), "");
    EXPECT_EQ(stream->curPos(), 2u);
}

TEST_F(LocationInputSourceTest, MakesAStreamOfAnEmptyFile)
{
    const Stream stream = StreamOf(Write("empty", ""));
    ASSERT_TRUE(stream);
    EXPECT_EQ(ReadUpTo(*stream, 10), "");
}

TEST_F(LocationInputSourceTest, KnowsNoContentType)
{
    EXPECT_EQ(StreamOf(Write("a.xml", "<a/>"))->getContentType(), nullptr);
}

TEST_F(LocationInputSourceTest, MakesStreamsThatDoNotDisturbEachOther)
{
    const LocationInputSource source(Write("bytes", "0123456789"));
    const Stream first(source.makeStream());
    ReadUpTo(*first, 5);
    const Stream second(source.makeStream());
    EXPECT_EQ(ReadUpTo(*second, 2), "01");
    EXPECT_EQ(ReadUpTo(*first, 2), "56");
}

TEST_F(LocationInputSourceTest, KeepsALocationOfItsOwn)
{
    IO::Location location = Write("bytes", "0123456789");
    const LocationInputSource source(location);
    location.Set(scratch.PathOf("other"));
    const Stream stream(source.makeStream());
    ASSERT_TRUE(stream);
    EXPECT_EQ(ReadUpTo(*stream, 2), "01");
}

TEST_F(LocationInputSourceTest, MakesNoStreamOfAFileThatCannotBeOpened)
{
    EXPECT_EQ(StreamOf(LocationOf("missing")), nullptr);
    EXPECT_EQ(StreamOf(IO::Location()), nullptr);
    EXPECT_EQ(StreamOf(IO::Location(scratch.PathOf(""))), nullptr) << "a folder";
}

TEST_F(LocationInputSourceTest, MakesNoStreamOfAFileThatMayNotBeRead)
{
    const IO::Location location = Write("secret", "text");
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0777));
    std::filesystem::permissions(scratch.Path() / "secret", std::filesystem::perms::none);
    const NuvTest::WithoutPrivileges unprivileged;
    EXPECT_EQ(StreamOf(location), nullptr);
}

TEST_F(LocationInputSourceTest, ClosesTheFileWithTheStream)
{
    const auto countOpenFiles = []
    { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const IO::Location location = Write("bytes", "01");
    const auto before = countOpenFiles();
    Stream stream = StreamOf(location);
    EXPECT_EQ(countOpenFiles(), before + 1);
    stream.reset();
    EXPECT_EQ(countOpenFiles(), before);
}

TEST_F(LocationInputSourceTest, ReadsNothingFromAStreamWhoseFileCouldNotBeOpened)
{
    LocationBinInputStream missing(LocationOf("missing"));
    EXPECT_FALSE(missing.IsOpened());
    EXPECT_EQ(ErrorCodeOfRead(missing), 34);
    LocationBinInputStream folder(LocationOf(""));
    EXPECT_FALSE(folder.IsOpened());
    EXPECT_EQ(ErrorCodeOfRead(folder), 34);
    EXPECT_EQ(folder.curPos(), 0u);
}

TEST_F(LocationInputSourceTest, TellsXercesThatReadingFailed)
{
    // The kernel refuses to read what stands at address 0 of the process.
    LocationBinInputStream stream(IO::Location(u"/proc/self/mem"));
    ASSERT_TRUE(stream.IsOpened());
    EXPECT_EQ(ErrorCodeOfRead(stream), 34);
    EXPECT_EQ(stream.curPos(), 0u);
}

} // namespace
