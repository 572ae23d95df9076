#include "NuvXMLUtils/NodeLocations.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

#include <pthread.h>

namespace
{

using xercesc_3_0::DOMNode;

constexpr size_t EntriesInABlock = 255;

static_assert(std::is_same_v<decltype(NodeLocationInfo::lineNumber), unsigned int>);
static_assert(sizeof(NodeLocationInfo) == 4);
static_assert(!std::is_copy_constructible_v<NodeLocations> && !std::is_copy_assignable_v<NodeLocations>);

/// Addresses that stand for nodes. There are no nodes behind them: a store must not look.
class Nodes
{
  public:
    explicit Nodes(size_t count)
        : bytes(count)
    {
    }
    const DOMNode* operator[](size_t index) const { return reinterpret_cast<const DOMNode*>(&bytes[index]); }

  private:
    std::vector<char> bytes;
};

/// A store that has node i on line i + 1.
void AddNodes(NodeLocations& store, const Nodes& nodes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        store.AddNew(nodes[i], static_cast<unsigned int>(i + 1));
}

/// 0 when the node is not found.
unsigned int LineOf(const NodeLocations& store, const DOMNode* node)
{
    const NodeLocationInfo* location = store.Find(node);
    return location ? location->lineNumber : 0;
}

TEST(NodeLocationInfo, IsUnknownAtFirst) { EXPECT_EQ(NodeLocationInfo().lineNumber, 0u); }

TEST(NodeLocations, FindsNothingInAnEmptyStore)
{
    const NodeLocations store;
    const Nodes nodes(1);
    EXPECT_EQ(store.Find(nodes[0]), nullptr);
    EXPECT_EQ(store.Find(nullptr), nullptr);
}

TEST(NodeLocations, FindsWhatWasAddedAndNothingElse)
{
    NodeLocations store;
    const Nodes nodes(3);
    store.AddNew(nodes[0], 12);
    store.AddNew(nodes[1], 4294967295u);
    EXPECT_EQ(LineOf(store, nodes[0]), 12u);
    EXPECT_EQ(LineOf(store, nodes[1]), 4294967295u);
    EXPECT_EQ(store.Find(nodes[2]), nullptr);
    EXPECT_EQ(store.Find(nullptr), nullptr);
}

TEST(NodeLocations, FindsTheFirstEntryOfANodeThatWasAddedAgain)
{
    NodeLocations store;
    const Nodes nodes(2);
    store.AddNew(nodes[0], 3);
    store.AddNew(nodes[1], 4);
    store.AddNew(nodes[0], 5);
    EXPECT_EQ(LineOf(store, nodes[0]), 3u);
    EXPECT_EQ(LineOf(store, nodes[1]), 4u);
}

TEST(NodeLocations, FindsTheFirstEntryWhenTheNextOneIsInALaterBlock)
{
    NodeLocations store;
    const Nodes nodes(EntriesInABlock);
    AddNodes(store, nodes, EntriesInABlock);
    store.AddNew(nodes[0], 9999);
    EXPECT_EQ(LineOf(store, nodes[0]), 1u);
}

TEST(NodeLocations, FindsEveryEntryOnBothSidesOfAFullBlock)
{
    for (const size_t count : {EntriesInABlock - 1, EntriesInABlock, EntriesInABlock + 1, 2 * EntriesInABlock,
                               2 * EntriesInABlock + 1})
    {
        NodeLocations store;
        const Nodes nodes(count + 1);
        AddNodes(store, nodes, count);
        for (size_t i = 0; i < count; ++i)
            ASSERT_EQ(LineOf(store, nodes[i]), i + 1) << "of " << count;
        EXPECT_EQ(store.Find(nodes[count]), nullptr);
    }
}

TEST(NodeLocations, LeavesARecordWhereItIsWhileTheStoreGrows)
{
    NodeLocations store;
    const Nodes nodes(10 * EntriesInABlock);
    store.AddNew(nodes[0], 7);
    const NodeLocationInfo* record = store.Find(nodes[0]);
    AddNodes(store, nodes, 10 * EntriesInABlock);
    EXPECT_EQ(store.Find(nodes[0]), record);
    EXPECT_EQ(record->lineNumber, 7u);
}

TEST(NodeLocations, HoldsManyEntries)
{
    constexpr size_t Count = 1'000'000;
    const Nodes nodes(Count);
    NodeLocations store;
    AddNodes(store, nodes, Count);
    EXPECT_EQ(LineOf(store, nodes[Count - 1]), Count);
}

TEST(NodeLocations, AreFreedOnASmallStack)
{
    auto store = std::make_unique<NodeLocations>();
    const Nodes nodes(1);
    for (int i = 0; i < 5'000'000; ++i)
        store->AddNew(nodes[0], 1);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    const auto destroy = [](void* owner) -> void*
    {
        static_cast<std::unique_ptr<NodeLocations>*>(owner)->reset();
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, destroy, &store), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(store, nullptr);
}

} // namespace
