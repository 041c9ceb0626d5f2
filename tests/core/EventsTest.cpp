#include "core/Events.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Listener : CCBaseListener {
    explicit Listener(std::vector<int> & l, int n = 0) : log(l), number(n) {}
    std::vector<int> & log;
    int number;
    std::function<void()> reaction;
    bool OnEvent(CCBaseEvent const &) override {
        log.push_back(number);
        if (reaction) reaction();
        return false;
    }
};

struct PlainEvent : CCBaseEvent {
    CCBaseEvent * Clone() const override { return new PlainEvent(*this); }
};

CCSheetRenameEvent const kRename(L"a", L"b");

} // namespace

TEST(Events, ListenersAreCalledInOrderAndOnce) {
    std::vector<int> log;
    Listener first(log, 1), second(log, 2);
    CCBaseBroadcaster sender;
    EXPECT_TRUE(sender.RegisterListener(CCBaseEvent::kSheetRename, &first));
    EXPECT_TRUE(sender.RegisterListener(kRename, &second));
    EXPECT_TRUE(sender.RegisterListener(kRename, &first));
    sender.FireEvent(kRename);
    EXPECT_EQ(log, (std::vector<int>{1, 2}));
    sender.FireEvent(CCDestroySheetEvent());
    EXPECT_EQ(log.size(), 2u);
}

TEST(Events, NullListenersAreRefused) {
    CCBaseBroadcaster sender;
    EXPECT_FALSE(sender.RegisterListener(kRename, nullptr));
    EXPECT_FALSE(sender.UnRegisterListener(kRename, nullptr));
}

TEST(Events, FrozenEventsAreLost) {
    std::vector<int> log;
    Listener listener(log);
    CCBaseBroadcaster sender;
    sender.RegisterListener(kRename, &listener);
    EXPECT_EQ(sender.FreezeEvents(1), 0);
    sender.FireEvent(kRename);
    EXPECT_EQ(sender.FreezeEvents(0), 1);
    EXPECT_TRUE(log.empty());
}

TEST(Events, RemovalFromOneAndFromAll) {
    std::vector<int> log;
    Listener listener(log);
    CCBaseBroadcaster sender;
    sender.RegisterListener(CCBaseEvent::kSheetRename, &listener);
    sender.RegisterListener(CCBaseEvent::kDestroySheet, &listener);
    EXPECT_TRUE(sender.UnRegisterListener(CCBaseEvent::kSheetRename, &listener));
    EXPECT_FALSE(sender.UnRegisterListener(CCBaseEvent::kSheetRename, &listener));
    EXPECT_FALSE(sender.UnRegisterListener(&listener)); // false whatever it removed
    EXPECT_TRUE(sender.GetListenersOf(CCDestroySheetEvent()).empty());
    std::list<CCBaseListener *> list;
    EXPECT_TRUE(sender.intGetListenersOf(CCDestroySheetEvent(), list)); // the entry stays
    EXPECT_FALSE(sender.intGetListenersOf(PlainEvent(), list));
}

TEST(Events, ListenersMayLeaveAndJoinDuringTheWalk) {
    std::vector<int> log;
    Listener first(log, 1), second(log, 2), third(log, 3);
    CCBaseBroadcaster sender;
    sender.RegisterListener(kRename, &first);
    sender.RegisterListener(kRename, &second);
    first.reaction = [&] {
        sender.UnRegisterListener(kRename, &second);
        sender.RegisterListener(kRename, &third);
    };
    sender.FireEvent(kRename);
    EXPECT_EQ(log, std::vector<int>{1});
    sender.FireEvent(kRename);
    EXPECT_EQ(log, (std::vector<int>{1, 1, 3}));
}

TEST(Events, SharedInstances) {
    EXPECT_EQ(CCBaseEvent::GetInstance(0).GetId(), 1);
    EXPECT_EQ(CCBaseEvent::GetInstance(1).GetId(), 1);
    EXPECT_EQ(CCBaseEvent::GetInstance(2).GetId(), 2);
    EXPECT_EQ(PlainEvent().GetId(), 0);
    EXPECT_TRUE(kRename.IsEqual(CCSheetRenameEvent(L"x", L"y")));
    EXPECT_FALSE(kRename.IsEqual(static_cast<CCBaseEvent const *>(nullptr)));
}
