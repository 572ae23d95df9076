#include "NuvRoot/SharedObject.hpp"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace
{

using Nuv::Ref;

class Counted : public Nuv::SharedObject
{
  public:
    explicit Counted(int& deletionCounter)
        : deletions(&deletionCounter)
    {
    }
    Counted(const Counted&) = default;
    Counted& operator=(const Counted&) = default;
    ~Counted() override { ++*deletions; }

    int value = 7;

  private:
    int* deletions;
};

TEST(Atomic, IncrementAndDecrementGiveTheNewValue)
{
    int value = 5;
    EXPECT_EQ(Nuv::AtomicIncrement(value), 6);
    EXPECT_EQ(value, 6);
    EXPECT_EQ(Nuv::AtomicDecrement(value), 5);
    EXPECT_EQ(value, 5);
}

TEST(SharedObject, HasNoReferenceAfterConstructionAndCopying)
{
    int deletions = 0;
    Counted original(deletions);
    EXPECT_EQ(original.GetReferenceCount(), 0);
    original.AddReference();
    const Counted copy(original);
    EXPECT_EQ(copy.GetReferenceCount(), 0);
    EXPECT_EQ(original.GetReferenceCount(), 1);
}

TEST(SharedObject, KeepsItsCountWhenAssignedTo)
{
    int deletions = 0;
    Counted source(deletions);
    Counted target(deletions);
    target.AddReference();
    target.AddReference();
    target = source;
    EXPECT_EQ(target.GetReferenceCount(), 2);
    EXPECT_EQ(source.GetReferenceCount(), 0);
}

TEST(SharedObject, DiesWithItsLastReference)
{
    int deletions = 0;
    auto* object = new Counted(deletions);
    object->AddReference();
    object->AddReference();
    object->Release();
    EXPECT_EQ(object->GetReferenceCount(), 1);
    EXPECT_EQ(deletions, 0);
    object->Release();
    EXPECT_EQ(deletions, 1);
}

TEST(SharedObject, CountsReferencesOfSeveralThreads)
{
    int deletions = 0;
    const Ref<Counted> kept(new Counted(deletions));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&kept]
            {
                for (int j = 0; j < 10000; ++j)
                    Ref<Counted> copy(kept);
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(kept->GetReferenceCount(), 1);
    EXPECT_EQ(deletions, 0);
}

TEST(Ref, IsNullWhenDefaultConstructed)
{
    const Ref<Counted> reference;
    EXPECT_FALSE(reference);
    EXPECT_EQ(reference.Get(), nullptr);
}

TEST(Ref, LeadsToItsObject)
{
    int deletions = 0;
    auto* object = new Counted(deletions);
    const Ref<Counted> reference(object);
    EXPECT_TRUE(reference);
    EXPECT_EQ(reference.Get(), object);
    EXPECT_EQ(&*reference, object);
    EXPECT_EQ(reference->value, 7);
}

TEST(Ref, IsEqualToReferencesToTheSameObject)
{
    int deletions = 0;
    const Ref<Counted> first(new Counted(deletions));
    const Ref<Counted> second(new Counted(deletions));
    EXPECT_TRUE(first == Ref<Counted>(first));
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(first != second);
}

TEST(Ref, IsComparedWithAPointerThatNobodyHolds)
{
    int deletions = 0;
    const Ref<Counted> reference(new Counted(deletions));
    auto* const loose = new Counted(deletions);
    EXPECT_FALSE(reference == loose);
    EXPECT_TRUE(loose != reference);
    EXPECT_EQ(deletions, 0);
    const Ref<const Counted> held(loose);
    EXPECT_TRUE(held == loose);
    EXPECT_TRUE(static_cast<const Nuv::SharedObject*>(loose) == Ref<Nuv::SharedObject>(loose));
    EXPECT_FALSE(held == nullptr);
    EXPECT_TRUE(Ref<Counted>() == nullptr);
    EXPECT_EQ(loose->GetReferenceCount(), 1);
}

TEST(Ref, CountsCopiesAndMovesNone)
{
    int deletions = 0;
    Ref<Counted> first(new Counted(deletions));
    EXPECT_EQ(first->GetReferenceCount(), 1);
    Ref<Counted> second(first);
    EXPECT_EQ(first->GetReferenceCount(), 2);
    const Ref<Counted> third(std::move(second));
    EXPECT_EQ(first->GetReferenceCount(), 2);
    first = Ref<Counted>();
    EXPECT_EQ(third->GetReferenceCount(), 1);
    EXPECT_EQ(deletions, 0);
}

TEST(Ref, SurvivesAssignmentOfItself)
{
    int deletions = 0;
    Ref<Counted> reference(new Counted(deletions));
    const Ref<Counted>& alias = reference;
    reference = alias;
    EXPECT_EQ(reference->GetReferenceCount(), 1);
    EXPECT_EQ(deletions, 0);
}

TEST(Ref, ReleasesItsObjectAtScopeExitAndWhenAssignedTo)
{
    int deletions = 0;
    {
        Ref<Counted> reference(new Counted(deletions));
        reference = new Counted(deletions);
        EXPECT_EQ(deletions, 1);
    }
    EXPECT_EQ(deletions, 2);
}

} // namespace
