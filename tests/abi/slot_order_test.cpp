// The published order of the virtual operations, checked twice: by the slot that the compiler assigns to each
// operation, and by calling each slot as an application built against older headers would.
#include <gtest/gtest.h>

#include <new>

#include "recorders.h"
#include "slot_tables.h"

namespace
{
template <class Interface>
void ExpectOrder(const std::vector<slots::Row<Interface>>& table, std::size_t first)
{
    for (std::size_t i = 0; i < table.size(); ++i)
        EXPECT_EQ(table[i].slot, first + i) << table[i].name << " has moved within the table";
}

// A moved row is reported by the order test; calling the operation in its place would not be safe.
template <class Interface>
void ExpectAnswers(const std::vector<slots::Row<Interface>>& table, std::size_t first, Interface* recorder)
{
    for (std::size_t i = 0; i < table.size(); ++i)
    {
        ASSERT_EQ(table[i].slot, first + i) << table[i].name;
        slots::called.clear();
        table[i].callAt(recorder, first + i);
        EXPECT_EQ(slots::called, table[i].name) << "answers at slot " << first + i;
    }
}

template <class Recorder, class Interface>
void ExpectDestructorFirst(const char* name)
{
    using Destructor = void (*)(Interface*);
    const auto tableOf = [](Interface* object) { return *reinterpret_cast<const Destructor* const*>(object); };
    alignas(Recorder) unsigned char memory[sizeof(Recorder)];
    Interface* const placed = new (memory) Recorder;
    slots::called.clear();
    tableOf(placed)[slots::kDestroySlot](placed);
    EXPECT_EQ(slots::called, name);
    Interface* const allocated = new Recorder;
    slots::called.clear();
    tableOf(allocated)[slots::kDeleteSlot](allocated);
    EXPECT_EQ(slots::called, name);
}

struct Plain
{
    void NotVirtual() {}
    virtual ~Plain() = default;
    virtual void First() {}
};
}  // namespace

TEST(SlotReader, FindsNoSlotForAnOperationThatIsNotVirtual)
{
    EXPECT_EQ(slots::SlotOf(&Plain::NotVirtual), std::nullopt);
    EXPECT_EQ(slots::SlotOf(&Plain::First), slots::kFirstSlot);
}

TEST(SlotOrder, OfTheListenerIsAsPublished)
{
    EXPECT_EQ(slots::ListenerTable().size(), 20u);
    ExpectOrder(slots::ListenerTable(), slots::kFirstSlot);
}

TEST(SlotOrder, OfTheApplicationManagersListenerIsAsPublished)
{
    EXPECT_EQ(slots::AppListenerTable().size(), 7u);
    ExpectOrder(slots::AppListenerTable(), slots::kFirstSlot);
}

TEST(SlotOrder, OfTheRegistryIsAsPublished)
{
    EXPECT_EQ(slots::RegistryTable().size(), 8u);
    ExpectOrder(slots::RegistryTable(), slots::kFirstSlot);
}

TEST(SlotOrder, OfThePlayerIsAsPublishedAndFollowsTheNotifications)
{
    EXPECT_EQ(slots::PlayerTable().size(), 52u);
    ExpectOrder(slots::PlayerTable(), slots::kFirstSlot + slots::ListenerTable().size());
}

TEST(SlotCall, OfTheListenerReachesTheOperationOfThatName)
{
    slots::RecordingListener recorder;
    ExpectAnswers<IQBXIpodPlayerListener>(slots::ListenerTable(), slots::kFirstSlot, &recorder);
}

TEST(SlotCall, OfTheApplicationManagersListenerReachesTheOperationOfThatName)
{
    slots::RecordingAppListener recorder;
    ExpectAnswers<IQBXAppListener>(slots::AppListenerTable(), slots::kFirstSlot, &recorder);
}

TEST(SlotCall, OfTheRegistryReachesTheOperationOfThatName)
{
    slots::RecordingRegistry recorder;
    ExpectAnswers<slots::Registry>(slots::RegistryTable(), slots::kFirstSlot, &recorder);
}

TEST(SlotCall, OfThePlayerReachesTheOperationOfThatName)
{
    slots::RecordingPlayer recorder;
    ExpectAnswers<IQBXIpodPlayer>(slots::PlayerTable(), slots::kFirstSlot + slots::ListenerTable().size(), &recorder);
}

TEST(SlotCall, OfTheRegistryPartOfAPlayerReachesThePlayersHooks)
{
    slots::RecordingPlayer recorder;
    slots::Registry& registry = recorder;
    const auto table = slots::RegistryTable();

    slots::called.clear();
    table[6].callAt(&registry, slots::kFirstSlot + 6);
    EXPECT_EQ(slots::called, "OnListenerAdded");
    table[7].callAt(&registry, slots::kFirstSlot + 7);
    EXPECT_EQ(slots::called, "OnListenerRemoved");
}

TEST(SlotCall, OfTheFirstTwoSlotsDestroysAndDeletes)
{
    ExpectDestructorFirst<slots::RecordingListener, IQBXIpodPlayerListener>("~IQBXIpodPlayerListener");
    ExpectDestructorFirst<slots::RecordingAppListener, IQBXAppListener>("~IQBXAppListener");
    ExpectDestructorFirst<slots::RecordingRegistry, slots::Registry>("~IQBXListener");
    ExpectDestructorFirst<slots::RecordingPlayer, IQBXIpodPlayer>("~IQBXIpodPlayer");
}

TEST(BaseClasses, OfThePlayerAreInThePublishedOrder)
{
    slots::RecordingPlayer recorder;
    IQBXIpodPlayer* const player = &recorder;
    EXPECT_EQ(static_cast<void*>(static_cast<IQBXIpodPlayerListener*>(player)), static_cast<void*>(player));
    EXPECT_GT(static_cast<void*>(static_cast<slots::Registry*>(player)), static_cast<void*>(player));
}
