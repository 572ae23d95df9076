#include "CompareSupport.hpp"

#include <pthread.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using namespace CompareTests;
using namespace NuvXML;
using Standard = StrictOrderAutoValueCompareOptions;

constexpr int DeepLevels = 5'000;

std::string DeepText(const std::string& inner)
{
    std::string text;
    for (int i = 0; i < DeepLevels; ++i)
        text += "<a>";
    text += inner;
    for (int i = 0; i < DeepLevels; ++i)
        text += "</a>";
    return text;
}

/// Runs `work` on a thread with a stack of 8 MB, whatever the process has.
void RunOnSmallStack(const std::function<void()>& work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 8 << 20);
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

TEST(DoXMLCompare, ComparesDeepTreesOnAnOrdinaryStack)
{
    const Document one = Parse(DeepText("1"));
    const Document other = Parse(DeepText("1.0"));
    RunOnSmallStack([&] { EXPECT_NO_THROW(Compare(one, other)); });
    RunOnSmallStack([&] { EXPECT_NO_THROW(Compare(one, other, AttrRuledCompareOptions())); });
}

TEST(DoXMLCompare, ReportsADifferenceDeepInATree)
{
    const Document one = Parse(DeepText("1"));
    const Document other = Parse(DeepText("2"));
    RunOnSmallStack(
        [&]
        {
            try
            {
                Compare(one, other, AttrRuledCompareOptions());
                ADD_FAILURE() << "no difference";
            }
            catch (const TextNodeValuesDontMatchException& difference)
            {
                EXPECT_EQ(difference.GetNodePath(Left).GetNames().size(), static_cast<size_t>(DeepLevels));
            }
        });
}

/// Notes how far the stack reaches when each pair is prepared.
class StackWatchingOptions : public Standard
{
  public:
    explicit StackWatchingOptions(std::vector<const char*>& positions)
        : stack(positions)
    {
    }

  protected:
    StackWatchingOptions* Clone() const override { return new StackWatchingOptions(*this); }
    XMLNodeComparator* PrepareNodeComparator(const DOMElement*, const DOMElement*) override
    {
        stack.push_back(static_cast<const char*>(__builtin_frame_address(0)));
        return new XMLCompareStrictOrder;
    }

  private:
    std::vector<const char*>& stack;
};

TEST(DoXMLCompare, UsesLittleStackForALevel)
{
    const Document document = Parse("<a><a><a/></a></a>");
    std::vector<const char*> positions;
    Compare(document, document, StackWatchingOptions(positions));
    ASSERT_EQ(positions.size(), 3u);
    const auto bytes = positions[1] - positions[2];
    RecordProperty("BytesOfStackForALevel", std::to_string(bytes));
    EXPECT_LE(bytes, 1'000);
}

} // namespace
