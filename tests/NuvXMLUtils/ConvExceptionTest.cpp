#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include "NuvRoot/Exceptions.hpp"

#include <type_traits>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using xercesc_3_0::DOMNode;

const NodeLocationInfo LineSeven{7};

TEST(ConvException, IsEmptyByDefault)
{
    const ConvException exception;
    EXPECT_EQ(exception.message, u"");
    EXPECT_EQ(exception.line, 0u);
}

TEST(ConvException, TakesMessageAndLocation)
{
    EXPECT_EQ(ConvException(u"text", &LineSeven).message, u"text");
    EXPECT_EQ(ConvException(u"text", &LineSeven).line, 7u);
    EXPECT_EQ(ConvException("text", &LineSeven).message, u"text");
    EXPECT_EQ(ConvException("text", &LineSeven).line, 7u);
}

TEST(ConvException, HasNoLineWithoutALocation)
{
    const NodeLocationInfo* const noLocation = nullptr;
    const DOMNode* const noNode = nullptr;
    EXPECT_EQ(ConvException(u"text", noLocation).line, 0u);
    EXPECT_EQ(ConvException("text", nullptr).line, 0u);
    EXPECT_EQ(ConvException(u"text", noNode).line, 0u);
    EXPECT_EQ(ConvException(u"text", nullptr).line, 0u);
    EXPECT_EQ(ConvException(u"text", nullptr).message, u"text");
}

TEST(ConvException, TakesTheLineOfANode)
{
    const Tree tree("<r>\n<a\n/></r>");
    const ConvException exception(u"text", tree.Find(u"a"));
    EXPECT_EQ(exception.message, u"text");
    EXPECT_EQ(exception.line, 3u);
}

TEST(ConvException, KnowsNoLineWhereThereIsNoStoreOrNoEntry)
{
    const Tree tree("<r/>");
    const DOMNode* const unrecorded = tree.document->createElement(u"new");
    EXPECT_EQ(ConvException(u"", unrecorded).line, 0u);
    tree.document->setUserData(u"NodeLocations", nullptr, nullptr);
    EXPECT_EQ(ConvException(u"", tree.root).line, 0u);
}

TEST(ConvException, KnowsNoLineOfADocument)
{
    const Tree tree("<r/>");
    EXPECT_EQ(ConvException(u"", tree.document.get()).line, 0u);
    EXPECT_EQ(ConvException().StoreErrLoc(tree.document.get()).line, 0u);
}

TEST(ConvException, StoresALineOnlyWhenItHasNone)
{
    const Tree tree("<r>\n<a/>\n<b/></r>");
    ConvException exception(u"text", nullptr);
    EXPECT_EQ(exception.StoreErrLoc(nullptr).line, 0u);
    EXPECT_EQ(exception.StoreErrLoc(tree.Find(u"a")).line, 2u);
    EXPECT_EQ(exception.StoreErrLoc(tree.Find(u"b")).line, 2u);
    EXPECT_EQ(&exception.StoreErrLoc(nullptr), &exception);
}

TEST(ConvException, CopiesBothFields)
{
    const ConvException original(u"text", &LineSeven);
    const ConvException copy(original);
    ConvException assigned;
    assigned = original;
    EXPECT_EQ(copy.message, u"text");
    EXPECT_EQ(copy.line, 7u);
    EXPECT_EQ(assigned.message, u"text");
    EXPECT_EQ(assigned.line, 7u);
}

TEST(ConvException, HasAVirtualDestructorAndNoBaseOfTheApplication)
{
    static_assert(std::has_virtual_destructor_v<ConvException>);
    static_assert(!std::is_base_of_v<Nuv::NuvException, ConvException>);
    static_assert(!std::is_base_of_v<std::exception, ConvException>);
}

TEST(ConvException, TakesAnEightBitMessageInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(ConvException("\x80", nullptr).message, u"\u20AC");
}

} // namespace
