#include "InputOutput/Location.hpp"

#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string_view>
#include <utility>

namespace
{

using namespace std::string_view_literals;
using IO::Location;
using IO::Name;
using IO::RelativeLocation;
using Nuv::UniString;

/// Makes a folder the current one until the end of the scope.
class CurrentFolderScope
{
  public:
    explicit CurrentFolderScope(const std::filesystem::path& folder)
    {
        std::filesystem::current_path(folder);
    }
    CurrentFolderScope(const CurrentFolderScope&) = delete;
    CurrentFolderScope& operator=(const CurrentFolderScope&) = delete;
    ~CurrentFolderScope() { std::filesystem::current_path(saved); }

  private:
    std::filesystem::path saved = std::filesystem::current_path();
};

UniString PathOf(const char16_t* pathOrURL) { return Location(pathOrURL).ToPath(); }
UniString URLOf(const char16_t* pathOrURL) { return Location(pathOrURL).ToURL(); }

TEST(Location, IsEmptyWhenDefaultConstructed)
{
    const Location location;
    EXPECT_TRUE(location.IsEmpty());
    EXPECT_EQ(location.ToPath(), u"");
    EXPECT_EQ(location.ToURL(), u"");
    EXPECT_EQ(location.ToLogText(), u"");
    EXPECT_TRUE(Location(u"").IsEmpty());
}

TEST(Location, KeepsAPathAsItIs)
{
    for (const char16_t* path :
         {u"/a/b", u"a/b", u"../a", u"/", u"/a b/%41%zz", u"/a#b?c", u"/\u00E4\u4E2D\U0001F600", u"/a/",
          u"//a", u"http://host/a", u"files:/a", u"file"})
    {
        EXPECT_EQ(PathOf(path), path);
        EXPECT_EQ(Location(path).ToLogText(), path);
        EXPECT_FALSE(Location(path).IsEmpty());
    }
}

TEST(Location, IsReplacedBySet)
{
    Location location(u"/old");
    location.Set(u"/new");
    EXPECT_EQ(location.ToPath(), u"/new");
    location.Set(u"file:///newer");
    EXPECT_EQ(location.ToPath(), u"/newer");
    location.Set(u"");
    EXPECT_TRUE(location.IsEmpty());
}

TEST(Location, TakesAFileURL)
{
    EXPECT_EQ(PathOf(u"file:///a/b"), u"/a/b");
    EXPECT_EQ(PathOf(u"file://localhost/a/b"), u"/a/b");
    EXPECT_EQ(PathOf(u"file:/a/b"), u"/a/b");
    EXPECT_EQ(PathOf(u"FILE:///a/b"), u"/a/b");
    EXPECT_EQ(PathOf(u"fIlE://LocalHost/a/b"), u"/a/b");
    EXPECT_EQ(PathOf(u"file:////a/b"), u"//a/b");
    EXPECT_EQ(PathOf(u"file:///"), u"/");
    EXPECT_EQ(PathOf(u"file:"), u"");
    EXPECT_EQ(PathOf(u"file://"), u"");
    EXPECT_EQ(PathOf(u"file://localhost"), u"");
}

TEST(Location, TakesOnlyASCIILettersForTheSchemeAndTheHost)
{
    for (const char16_t* path :
         {u"\uFB01le:", u"\uFB01le:/a", u"f\u0131le:/a", u"fil\u1E9E:/a", u"\uFF46ile:/a"})
        EXPECT_EQ(PathOf(path), path);
    EXPECT_EQ(PathOf(u"file://localho\uFB06/a"), u"");
    EXPECT_EQ(PathOf(u"file://local\u212Aost/a"), u"");
}

TEST(Location, IsEmptyForAFileURLOfAnotherHost)
{
    for (const char16_t* url :
         {u"file://server/share/a.xml", u"file://server", u"FILE://Server/a", u"file://localhost:80/a",
          u"file://user@localhost/a", u"file://localhost./a", u"file://127.0.0.1/a", u"file://C:/a",
          u"file://./a", u"file://../a", u"file://%6Cocalhost/a", u"file://\\\\server\\share", u"file://?/a"})
        EXPECT_TRUE(Location(url).IsEmpty()) << UniString(url);
    Location location(u"/old");
    location.Set(u"file://server/a");
    EXPECT_TRUE(location.IsEmpty());
}

TEST(Location, IsEmptyForTheDisplayFormOfARelativeLocation)
{
    EXPECT_TRUE(Location(RelativeLocation(Name(u"a")).ToURL()).IsEmpty());
}

TEST(Location, IsEmptyForAFileURLThatIsNotUTF8)
{
    for (const char16_t* url : {u"file:///a%FF", u"file:///%C3", u"file:///%C0%80", u"file:///%ED%A0%80"})
        EXPECT_TRUE(Location(url).IsEmpty()) << UniString(url);
    EXPECT_EQ(PathOf(u"file:///%EF%BF%BD"), u"/\uFFFD");
}

TEST(Location, HasNoNativePathAndNoURLWhereNoFileCanHaveThePath)
{
    for (const std::u16string_view path : {u"/a\0b"sv, u"\0"sv, u"/a\0"sv, u"/a\xD800"sv, u"\xDC00/a"sv})
    {
        EXPECT_EQ(Location(path).ToPath(), path);
        EXPECT_EQ(Location(path).ToNativePath(), "");
        EXPECT_EQ(Location(path).ToURL(), u"");
    }
    EXPECT_EQ(Location(u"/a\uFFFD").ToNativePath(), "/a\xEF\xBF\xBD");
}

TEST(Location, DecodesAFileURLAsUTF8)
{
    EXPECT_EQ(PathOf(u"file:///a%20b"), u"/a b");
    EXPECT_EQ(PathOf(u"file:///%C3%A4%e4%b8%ad%F0%9F%98%80"), u"/\u00E4\u4E2D\U0001F600");
    EXPECT_EQ(PathOf(u"file:///%2541"), u"/%41");
    EXPECT_EQ(PathOf(u"file:///\u00E4 b"), u"/\u00E4 b") << "what is not encoded stands for itself";
}

TEST(Location, KeepsWhatIsNoPercentEncodingInAFileURL)
{
    EXPECT_EQ(PathOf(u"file:///100%"), u"/100%");
    EXPECT_EQ(PathOf(u"file:///%4"), u"/%4");
    EXPECT_EQ(PathOf(u"file:///%4g%g4%-1%+1"), u"/%4g%g4%-1%+1");
    EXPECT_EQ(PathOf(u"file:///a?b#c"), u"/a?b#c");
    EXPECT_EQ(PathOf(u"file:///a%00b"), u"/a%00b") << "no name holds a zero byte";
}

TEST(Location, GivesAnEncodedURL)
{
    EXPECT_EQ(URLOf(u"/a/b.xml"), u"file:///a/b.xml");
    EXPECT_EQ(URLOf(u"/a b"), u"file:///a%20b");
    EXPECT_EQ(URLOf(u"/%41 100%"), u"file:///%2541%20100%25");
    EXPECT_EQ(URLOf(u"/a#b?c"), u"file:///a%23b%3Fc");
    EXPECT_EQ(URLOf(u"/\u00E4\u4E2D\U0001F600"), u"file:///%C3%A4%E4%B8%AD%F0%9F%98%80");
    EXPECT_EQ(URLOf(u"/\"<>[\\]^`{|}\n"), u"file:///%22%3C%3E%5B%5C%5D%5E%60%7B%7C%7D%0A");
    EXPECT_EQ(URLOf(u"/-._~!$&'()*+,;=:@"), u"file:///-._~!$&'()*+,;=:@");
}

TEST(Location, GivesTheURLOfTheAbsolutePath)
{
    const NuvTest::ScratchFolder scratch;
    const CurrentFolderScope scope(scratch.Path());
    const UniString folder = UniString::FromUTF8(std::filesystem::current_path().string());
    EXPECT_EQ(URLOf(u"a b"), Location(folder).ToURL() + u"/a%20b");
    EXPECT_EQ(Location(URLOf(u"a b")).ToPath(), folder + u"/a b");
    EXPECT_EQ(PathOf(u"a b"), u"a b") << "the path stays relative";
}

TEST(Location, GivesTheURLOfAPathInTheRootFolder)
{
    const CurrentFolderScope scope("/");
    EXPECT_EQ(URLOf(u"a"), u"file:///a");
}

TEST(Location, HasNoURLInAFolderThatIsDeleted)
{
    const NuvTest::ScratchFolder scratch;
    std::filesystem::create_directory(scratch.Path() / "deleted");
    const CurrentFolderScope scope(scratch.Path() / "deleted");
    std::filesystem::remove(scratch.Path() / "deleted");
    EXPECT_EQ(URLOf(u"a"), u"");
    EXPECT_EQ(URLOf(u"/a"), u"file:///a");
}

TEST(Location, KeepsUTF8WhateverTheLocalCodePage)
{
    const NuvTest::LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(URLOf(u"/\u00E4"), u"file:///%C3%A4");
    EXPECT_EQ(Location(u"/\u00E4").ToNativePath(), "/\xC3\xA4");
}

TEST(Location, ComesBackThroughItsURL)
{
    for (const char16_t* path :
         {u"/", u"/a", u"//a", u"//localhost/a", u"///a", u"/a//b/", u"/./a/../b", u"/file:/a", u"/%",
          u"/%%%25", u"/%41", u"/%00", u"/a b\tc\nd", u"/\u0085\u2028\uFEFF"})
        EXPECT_EQ(Location(URLOf(path)).ToPath(), path) << URLOf(path);
}

TEST(Location, ComesBackThroughItsURLWithGeneratedNames)
{
    std::mt19937 random(17);
    constexpr std::u16string_view Characters =
        u"%%%4125eEfF00 /#?&+;:@=\\\"'<>[]{}|^`~\t\n\x7F\u00E4\u00FF\u4E2D\uFFFD";
    for (int i = 0; i < 5000; ++i)
    {
        UniString path(u"/");
        for (size_t length = random() % 30; length != 0; --length)
            path += Characters[random() % Characters.size()];
        ASSERT_EQ(Location(Location(path).ToURL()).ToPath(), path);
    }
}

TEST(Location, GoesDownByNamesAndRelativeLocations)
{
    Location location(u"/a");
    location.AppendToLocal(Name(u"b c"));
    EXPECT_EQ(location.ToPath(), u"/a/b c");
    RelativeLocation down(Name(u"d"));
    down.AppendToLocal(Name(u"e%41"));
    location.AppendToLocal(down);
    EXPECT_EQ(location.ToPath(), u"/a/b c/d/e%41");
    location.AppendToLocal(RelativeLocation());
    EXPECT_EQ(location.ToPath(), u"/a/b c/d/e%41");
}

TEST(Location, AddsNoSecondSlash)
{
    Location root(u"/");
    root.AppendToLocal(Name(u"a"));
    EXPECT_EQ(root.ToPath(), u"/a");
    Location folder(u"/a/");
    folder.AppendToLocal(Name(u"b"));
    EXPECT_EQ(folder.ToPath(), u"/a/b");
}

TEST(Location, IsRelativeWhenItGrewFromNothing)
{
    Location location;
    location.AppendToLocal(Name(u"file:a"));
    location.AppendToLocal(Name(u"b"));
    EXPECT_EQ(location.ToPath(), u"file:a/b") << "a name is no URL";
}

TEST(Location, TellsItsLastName)
{
    Name name;
    EXPECT_TRUE(Location(u"/a/b c.xml").GetLastLocalName(name));
    EXPECT_EQ(name.ToUniString(), u"b c.xml");
    EXPECT_TRUE(Location(u"/a/b///").GetLastLocalName(name));
    EXPECT_EQ(name.ToUniString(), u"b");
    EXPECT_TRUE(Location(u"\u00E4").GetLastLocalName(name));
    EXPECT_EQ(name.ToUniString(), u"\u00E4");
    EXPECT_TRUE(Location(u"file:///a/%2541").GetLastLocalName(name));
    EXPECT_EQ(name.ToUniString(), u"%41");
}

TEST(Location, TellsNoLastNameWhenThereIsNone)
{
    Name name(u"old");
    for (const char16_t* path : {u"", u"/", u"//"})
        EXPECT_FALSE(Location(path).GetLastLocalName(name));
    EXPECT_EQ(name.ToUniString(), u"old");
}

TEST(Location, TellsTheFolderOfItsLastName)
{
    const std::pair<const char16_t*, const char16_t*> folders[] = {
        {u"/a/b c.xml", u"/a"}, {u"a/b", u"a"},     {u"a", u"."},     {u"/a", u"/"},
        {u"//a", u"/"},         {u"/a//b/", u"/a"}, {u"../a", u".."}, {u"file:///a/%2541/b", u"/a/%41"}};
    for (const auto& [path, expected] : folders)
    {
        Location folder(path);
        EXPECT_TRUE(folder.GetFolder(folder));
        EXPECT_EQ(folder.ToPath(), expected) << UniString(path);
    }
    Location afterwards;
    afterwards.AppendToLocal(Name(u"file:a"));
    afterwards.AppendToLocal(Name(u"b"));
    EXPECT_TRUE(afterwards.GetFolder(afterwards));
    EXPECT_EQ(afterwards.ToPath(), u"file:a") << "a name is no URL";
}

TEST(Location, TellsNoFolderWhenThereIsNoLastName)
{
    Location folder(u"/old");
    for (const char16_t* path : {u"", u"/", u"//"})
        EXPECT_FALSE(Location(path).GetFolder(folder));
    EXPECT_EQ(folder.ToPath(), u"/old");
}

TEST(Location, IsEqualByItsPath)
{
    EXPECT_TRUE(Location(u"/a b") == Location(u"file:///a%20b"));
    EXPECT_TRUE(Location(u"/a") != Location(u"/A"));
    EXPECT_TRUE(Location() == Location(u""));
}

} // namespace
