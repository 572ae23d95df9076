#include "CompareSupport.hpp"

#include "NuvXMLUtils/XMLDifferences.hpp"

#include <pthread.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

/// So deep that not even a few bytes of stack for each level would do.
constexpr int DeepLevels = 100'000;
constexpr size_t SmallStack = 256 << 10;

/// What recurses with the levels can do with these and the ordinary stack.
constexpr int ModerateLevels = 5'000;
constexpr size_t OrdinaryStack = 8 << 20;

std::string DeepText(int levels, const std::string& inner)
{
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += "<a>";
    text += inner;
    for (int i = 0; i < levels; ++i)
        text += "</a>";
    return text;
}

/// Runs `work` on a thread with a stack of that size, whatever the process has.
void RunOnStack(size_t size, const std::function<void()>& work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    pthread_t thread;
    const auto run = [](void* argument) -> void*
    {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(DoXMLCompare, NeedsNoStackForTheLevelsOfATree)
{
    const Document one = Parse(DeepText(DeepLevels, "1"));
    const Document other = Parse(DeepText(DeepLevels, "1.0"));
    RunOnStack(SmallStack, [&] { EXPECT_NO_THROW(Compare(one, other)); });
    RunOnStack(SmallStack, [&] { EXPECT_NO_THROW(Compare(one, other, AttrRuledCompareOptions())); });
}

TEST(DoXMLCompare, ReportsADifferenceDeepInATree)
{
    const Document one = Parse(DeepText(DeepLevels, "1"));
    const Document other = Parse(DeepText(DeepLevels, "2"));
    RunOnStack(SmallStack,
               [&]
               {
                   try
                   {
                       Compare(one, other, AttrRuledCompareOptions());
                       ADD_FAILURE() << "no difference";
                   }
                   catch (const TextNodeValuesDontMatchException& difference)
                   {
                       EXPECT_EQ(difference.GetNodePath(Left).GetNames().size(),
                                 static_cast<size_t>(DeepLevels));
                   }
               });
}

TEST(FindDifferences, NeedsNoStackForTheLevelsOfATree)
{
    const Document one = Parse(DeepText(DeepLevels, "1"));
    const Document other = Parse(DeepText(DeepLevels, "<a/>"));
    RunOnStack(SmallStack,
               [&]
               {
                   const DOMNode* found = nullptr;
                   FindDifferences(one.get(), other.get(), nullptr, Standard(),
                                   [&](const XMLDifference& difference)
                                   {
                                       found = difference.left;
                                       return true;
                                   });
                   ASSERT_NE(found, nullptr);
                   EXPECT_STREQ(Nuv::UniString(found->getNodeValue()).ToUTF8().c_str(), "1");
               });
}

/// Pairs children by position, as the library does, and notes how far the stack reaches at each level.
class OwnStrategy : public XMLNodeComparator
{
  public:
    explicit OwnStrategy(std::vector<const char*>& positions)
        : stack(positions)
    {
    }

  private:
    void WalkThrough() override
    {
        stack.push_back(static_cast<const char*>(__builtin_frame_address(0)));
        const DOMNode* left = LeftWalker()->firstChild();
        const DOMNode* right = RightWalker()->firstChild();
        while (left && right)
        {
            ControlNodeComparison();
            left = LeftWalker()->nextSibling();
            right = RightWalker()->nextSibling();
        }
    }

    std::vector<const char*>& stack;
};

/// Has every other level compared by a strategy of its own, which takes more stack than all of them.
class OwnStrategyOptions : public Standard
{
  public:
    explicit OwnStrategyOptions(std::vector<const char*>& positions)
        : stack(positions)
    {
    }

  protected:
    OwnStrategyOptions* Clone() const override { return new OwnStrategyOptions(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        isOwn = !isOwn;
        if (isOwn)
            return new OwnStrategy(stack);
        return new XMLCompareStrictOrder;
    }

  private:
    std::vector<const char*>& stack;
    bool isOwn = false;
};

TEST(OwnNodeComparators, CompareDeepTreesOnAnOrdinaryStack)
{
    const Document document = Parse(DeepText(ModerateLevels, "1"));
    std::vector<const char*> positions;
    RunOnStack(OrdinaryStack,
               [&] { EXPECT_NO_THROW(Compare(document, document, OwnStrategyOptions(positions))); });
    ASSERT_EQ(positions.size(), static_cast<size_t>(ModerateLevels / 2 - 1)); // the first is for the root
    const auto bytes = (positions[1] - positions[2]) / 2;
    RecordProperty("BytesOfStackForALevel", std::to_string(bytes));
    EXPECT_LE(bytes, 1'500);
}

} // namespace
