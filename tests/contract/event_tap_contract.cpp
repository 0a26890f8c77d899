#include "contract/event_tap_contract.h"

#include "support/qt_gtest.h"

namespace tavrelon::testing {

using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_P(EventTapContract, OnlyHotkeysCanBeDropped) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Drop);
    bench->strike(hotkey);
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA));
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey, plainA));
}

TEST_P(EventTapContract, WhatPassesReachesTheApplicationUnchanged) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Pass);
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey));
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey));
}

TEST_P(EventTapContract, ModifiersAreToldWithTheFlagsAfterTheChange) {
    start(TapVerdict::Pass);
    bench->strike({keys::keyA, keys::controlFlag | keys::shiftFlag});
    bench->received();
    std::vector<keys::Modifiers> flags;
    for (const auto& event : seen)
        if (event.type == KeyEvent::Type::FlagsChanged)
            flags.push_back(event.modifierFlags);
    EXPECT_THAT(flags, ElementsAre(keys::controlFlag, keys::controlFlag | keys::shiftFlag, keys::controlFlag,
                                   keys::noModifiers));
}

TEST_P(EventTapContract, NewHotkeysHoldAtOnce) {
    start(TapVerdict::Drop);
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA));
    bench->tap().setHotkeys({{keys::keyA, keys::noModifiers}});
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA)) << "only the one from before";
}

TEST_P(EventTapContract, NothingIsSeenOrDroppedAfterStopAndItStartsAgain) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Drop);
    bench->tap().stop();
    bench->tap().stop();
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey));
    EXPECT_THAT(seen, IsEmpty());
    start(TapVerdict::Drop);
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey)) << "the hotkeys are still known";
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey));
}

}  // namespace tavrelon::testing
