#include "context/Events.h"

#include "formula/CCRefOpFormula.h"

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

namespace {

// A listener of a host, with a manager or without: equal numbers are one.
template <typename Base>
struct Numbered : Base {
    Numbered(std::vector<int> & l, int n) : log(l), number(n) {}
    bool OnEvent(CCBaseEvent const &) override {
        log.push_back(number);
        return true;
    }
    bool IsEqual(CCBaseListener const * other) const override {
        auto const * numbered = dynamic_cast<Numbered const *>(other);
        return numbered && numbered->number == number;
    }
    std::vector<int> & log;
    int number;
};

template <typename Base>
void ExpectOwnEquality() {
    std::vector<int> log;
    Numbered<Base> one(log, 1), same(log, 1), two(log, 2);
    CCBaseBroadcaster sender;
    for (CCBaseListener * listener : {&one, &same, &two})
        EXPECT_TRUE(sender.RegisterListener(kRename, listener));
    sender.FireEvent(kRename);
    EXPECT_EQ(log, (std::vector<int>{1, 2}));
    EXPECT_TRUE(sender.UnRegisterListener(kRename, &same)); // takes out the one that it equals
    EXPECT_FALSE(sender.UnRegisterListener(kRename, &one));
    EXPECT_EQ(sender.GetListenersOf(kRename), std::list<CCBaseListener *>{&two});
}

} // namespace

TEST(Events, AListenerOfAHostIsComparedByItsOwnEquality) {
    ExpectOwnEquality<CCBaseListener>();
    ExpectOwnEquality<CCListenerWithManager>();
}

TEST(Events, FormulaNodesAreThemselves) {
    struct EqualToAll : CCRefOpFormula {
        bool IsEqual(CCBaseListener const *) const override { return true; }
    };
    EqualToAll one, two;
    CCBaseBroadcaster sender;
    sender.RegisterListener(kRename, &one);
    sender.RegisterListener(kRename, &two);
    EXPECT_EQ(sender.GetListenersOf(kRename).size(), 2u);
    EXPECT_TRUE(sender.UnRegisterListener(kRename, &two));
    EXPECT_EQ(sender.GetListenersOf(kRename), std::list<CCBaseListener *>{&one});
}

TEST(Events, TheFirstEqualListenerIsTheOneThatLeaves) {
    struct EqualToAll : CCBaseListener {
        bool OnEvent(CCBaseEvent const &) override { return true; }
        bool IsEqual(CCBaseListener const *) const override { return true; }
    } greedy;
    CCRefOpFormula before, behind;
    CCBaseBroadcaster sender;
    sender.RegisterListener(kRename, &before);
    sender.RegisterListener(kRename, &greedy);
    sender.RegisterListener(kRename, &behind); // equal to one that is there
    std::list<CCBaseListener *> const both{&before, &greedy};
    EXPECT_EQ(sender.GetListenersOf(kRename), both);
    EXPECT_TRUE(sender.UnRegisterListener(kRename, &before));
    EXPECT_EQ(sender.GetListenersOf(kRename), std::list<CCBaseListener *>{&greedy});
    EXPECT_TRUE(sender.UnRegisterListener(kRename, &behind)); // the greedy one stands for it
    EXPECT_TRUE(sender.GetListenersOf(kRename).empty());
}
