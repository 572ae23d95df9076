#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOMText.hpp>

#include <random>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;

/// Adds text that a file need not be allowed to hold.
void AddText(const Tree& tree, const char* text)
{
    tree.root->appendChild(tree.document->createTextNode(Nuv::UniString(text).ToUTF16()));
}

std::string TextRead(const Tree& tree, const char* name)
{
    Nuv::String value = "old";
    EXPECT_TRUE(ReadTextNode(tree.root, name, value));
    return value;
}

Nuv::UniString TextReadU(const Tree& tree, const char16_t* name)
{
    Nuv::UniString value = u"old";
    EXPECT_TRUE(ReadTextNode(tree.root, name, value));
    return value;
}

TEST(ReadTextNode, ReadsTheTextOfTheExpectedElement)
{
    const Tree tree("<a> x\ny </a>");
    EXPECT_EQ(TextReadU(tree, u"a"), u" x\ny ");
    EXPECT_EQ(TextRead(tree, "a"), " x\ny ");
}

TEST(ReadTextNode, LeavesUnicodeTextAndEmptiesEightBitTextOnAMismatch)
{
    for (const char* xml :
         {"<b>x</b>", "<a></a>", "<a><b/>x</a>", "<a><!--c-->x</a>", "<a><![CDATA[x]]></a>"})
    {
        EXPECT_EQ(TextReadU(Tree(xml), u"a"), u"old") << xml;
        EXPECT_EQ(TextRead(Tree(xml), "a"), "") << xml;
    }
}

TEST(ReadTextNode, TakesNullAndOtherNodesForAMismatch)
{
    const Tree tree("<r>x</r>");
    for (const xercesc_3_0::DOMNode* node :
         {static_cast<const xercesc_3_0::DOMNode*>(nullptr),
          static_cast<const xercesc_3_0::DOMNode*>(tree.root->getFirstChild()),
          static_cast<const xercesc_3_0::DOMNode*>(tree.document.get())})
    {
        Nuv::UniString value = u"old";
        EXPECT_TRUE(ReadTextNode(node, u"r", value));
        EXPECT_EQ(value, u"old");
    }
}

TEST(ReadTextNode, ReadsTheFirstTextNodeOnly)
{
    const Tree tree("<a>x<b/>y</a>");
    tree.root->insertBefore(tree.document->createTextNode(u"z"),
                            tree.root->getFirstChild()->getNextSibling());
    EXPECT_EQ(TextReadU(tree, u"a"), u"x");
}

TEST(ReadTextNode, ReadsAnEmptyTextNode)
{
    const Tree tree("<a/>");
    AddText(tree, "");
    EXPECT_EQ(TextReadU(tree, u"a"), u"");
}

TEST(ReadTextNode, PassesTextThroughTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<gr\xC3\xB6\xC3\x9F"
                    "e>\xE2\x82\xAC \xE4\xB8\xAD\xF0\x9F\x98\x80</gr\xC3\xB6\xC3\x9F"
                    "e>");
    EXPECT_EQ(TextReadU(tree, u"größe"), u"\u20AC ??");
    EXPECT_EQ(TextRead(tree, "gr\xF6\xDF"
                             "e"),
              "\x80 ??");
}

TEST(ReadTextNode, LosesNothingInUTF8)
{
    const LocalCodePageScope codePage("UTF-8");
    const Tree tree("<a>\xE2\x82\xAC \xE4\xB8\xAD\xF0\x9F\x98\x80</a>");
    EXPECT_EQ(TextReadU(tree, u"a"), u"\u20AC \u4E2D\U0001F600");
    EXPECT_EQ(TextRead(tree, "a"), "\xE2\x82\xAC \xE4\xB8\xAD\xF0\x9F\x98\x80");
}

/// A text that is read as each kind of number.
struct NumberCase
{
    const char* text;
    short asShort;
    unsigned short asUShort;
    int asLong;
    unsigned int asULong;
    bool asBoolean;
};

const NumberCase NumberCases[] = {
    {"1", 1, 1, 1, 1, true},
    {"0", 0, 0, 0, 0, false},
    {"01", 1, 1, 1, 1, true},
    {" 1", 1, 1, 1, 1, true},
    {"+1", 1, 1, 1, 1, true},
    {"1x", 1, 1, 1, 1, true},
    {"2", 2, 2, 2, 2, false},
    {"-1", -1, 65535, -1, 4294967295u, false},
    {"true", 0, 0, 0, 0, false},
    {"false", 0, 0, 0, 0, false},
    {"- 1", 0, 0, 0, 0, false},
    {"0x1", 0, 0, 0, 0, false},
    {" \t\n\v\f 42abc", 42, 42, 42, 42, false},
    {"70000", 4464, 4464, 70000, 70000, false},
    {"65537", 1, 1, 65537, 65537, true},
    {"-32769", 32767, 32767, -32769, 4294934527u, false},
    {"2147483648", -1, 0, 2147483647, 2147483648u, false},
    {"-2147483649", 0, 65535, -2147483647 - 1, 2147483647u, false},
    {"4294967295", -1, 65535, 2147483647, 4294967295u, false},
    {"4294967296", -1, 65535, 2147483647, 4294967295u, false},
    {"-4294967295", 0, 1, -2147483647 - 1, 1u, false},
    {"-4294967296", 0, 65535, -2147483647 - 1, 4294967295u, false},
    {"99999999999999999999", -1, 65535, 2147483647, 4294967295u, false},
    {"-99999999999999999999", 0, 65535, -2147483647 - 1, 4294967295u, false},
};

template <class Name>
NumberCase Read(const Tree& tree, const Name& name)
{
    NumberCase read{nullptr, 9, 9, 9, 9, true};
    EXPECT_TRUE(ReadShortNode(tree.root, name, read.asShort));
    EXPECT_TRUE(ReadUShortNode(tree.root, name, read.asUShort));
    EXPECT_TRUE(ReadLongNode(tree.root, name, read.asLong));
    EXPECT_TRUE(ReadULongNode(tree.root, name, read.asULong));
    EXPECT_TRUE(ReadBooleanNode(tree.root, name, read.asBoolean));
    return read;
}

void ExpectEqual(const NumberCase& read, const NumberCase& expected)
{
    SCOPED_TRACE(expected.text);
    EXPECT_EQ(read.asShort, expected.asShort);
    EXPECT_EQ(read.asUShort, expected.asUShort);
    EXPECT_EQ(read.asLong, expected.asLong);
    EXPECT_EQ(read.asULong, expected.asULong);
    EXPECT_EQ(read.asBoolean, expected.asBoolean);
}

TEST(NumberReaders, ReadTheNumberThatTheTextStartsWith)
{
    for (const NumberCase& number : NumberCases)
    {
        const Tree tree("<a/>");
        AddText(tree, number.text);
        ExpectEqual(Read(tree, Nuv::UniString(u"a")), number);
        ExpectEqual(Read(tree, Nuv::String("a")), number);
    }
}

TEST(NumberReaders, TakeEightBitNamesInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<\xC3\xB6>1</\xC3\xB6>");
    ExpectEqual(Read(tree, Nuv::String("\xF6")), {"1", 1, 1, 1, 1, true});
}

TEST(NumberReaders, GiveZeroOnAMismatch)
{
    const NumberCase zero{"mismatch", 0, 0, 0, 0, false};
    for (const char* xml : {"<b>1</b>", "<a/>", "<a><b/>1</a>", "<a><!--c-->1</a>"})
    {
        ExpectEqual(Read(Tree(xml), Nuv::UniString(u"a")), zero);
        ExpectEqual(Read(Tree(xml), Nuv::String("a")), zero);
    }
}

TEST(NumberReaders, ReadBackWhatTheWritersWrite)
{
    std::mt19937 random(11);
    for (int i = 0; i < 2000; ++i)
    {
        const auto bits = static_cast<unsigned int>(random()) >> (random() % 32);
        const Tree tree;
        const NumberCase expected{"round trip",
                                  static_cast<short>(bits),
                                  static_cast<unsigned short>(bits),
                                  static_cast<int>(bits),
                                  bits,
                                  bits % 2 == 1};
        WriteShortElement(tree.root, u"s", expected.asShort, 0);
        WriteUShortElement(tree.root, u"us", expected.asUShort, 0);
        WriteLongElement(tree.root, u"l", expected.asLong, 0);
        WriteULongElement(tree.root, u"ul", expected.asULong, 0);
        WriteBooleanElement(tree.root, u"b", expected.asBoolean, 0);
        NumberCase read{nullptr, 9, 9, 9, 9, true};
        ReadShortNode(tree.Find(u"s"), u"s", read.asShort);
        ReadUShortNode(tree.Find(u"us"), u"us", read.asUShort);
        ReadLongNode(tree.Find(u"l"), u"l", read.asLong);
        ReadULongNode(tree.Find(u"ul"), u"ul", read.asULong);
        ReadBooleanNode(tree.Find(u"b"), u"b", read.asBoolean);
        ExpectEqual(read, expected);
    }
}

} // namespace
