#include <gmock/gmock.h>

#include <barrier>
#include <thread>

#include "desktop/x11/x11_event_tap_delivery.h"
#include "desktop/x11/x11_event_tap_sequence.h"
#include "desktop/x11/x11_key_posts.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::desktop {

using namespace std::chrono_literals;
using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum KeySequence::Expectation;

namespace {

KeyEvent keyEvent(unsigned keyCode) {
    KeyEvent event;
    event.keyCode = static_cast<keys::VirtualKey>(keyCode);
    return event;
}

}  // namespace

class KeySequenceTest : public ::testing::Test {
 public:
    void see(std::uint32_t stamp, KeySequence::Expectation expectation) {
        sequence.see({stamp, 40}, keyEvent(stamp), expectation, now);
    }
    std::optional<std::vector<int>> stops(std::uint32_t stamp) {
        const auto stopped = sequence.stopped({stamp, 40}, KeySequence::Origin::Struck);
        return stopped ? std::optional(codes(stopped->before)) : std::nullopt;
    }
    static std::vector<int> codes(const std::vector<KeyEvent>& events) {
        std::vector<int> codes;
        for (const auto& event : events)
            codes.push_back(event.keyCode);
        return codes;
    }
    std::vector<int> ready() {
        sequence.expire(now);
        return codes(sequence.takeReady());
    }

    async::Instant now{1h};
    KeySequence sequence;
};

TEST_F(KeySequenceTest, AHotkeyHoldsBackWhatComesBehindItUntilItStops) {
    see(1, Passes);
    see(2, StopsAtOurGrab);
    see(3, Passes);
    EXPECT_THAT(ready(), ElementsAre(1));
    EXPECT_EQ(stops(2), std::vector<int>());
    EXPECT_THAT(ready(), ElementsAre(3));
    EXPECT_EQ(stops(2), std::nullopt);
    EXPECT_EQ(stops(9), std::nullopt) << "never seen, as a key that we posted";
}

TEST_F(KeySequenceTest, ARepeatIsKnownByItsKeySinceItsTwoTimesMayDiffer) {
    auto repeated = keyEvent(1);
    repeated.isRepeat = true;
    const auto repeats = [&](std::uint32_t time) {
        return sequence.stopped({time, 40}, KeySequence::Origin::Repeated).has_value();
    };
    sequence.see({100, 40}, repeated, StopsAtOurGrab, now);
    EXPECT_FALSE(sequence.stopped({101, 40}, KeySequence::Origin::Struck)) << "a struck key has one time only";
    EXPECT_FALSE(sequence.stopped({101, 41}, KeySequence::Origin::Repeated));
    EXPECT_TRUE(repeats(101));
    EXPECT_FALSE(repeats(101));
    see(200, StopsAtOurGrab);
    EXPECT_FALSE(repeats(201)) << "a struck key is not mistaken for a repeat";
}

TEST_F(KeySequenceTest, AHotkeyThatSomebodyElseHeldIsMerelySeen) {
    see(1, StopsAtOurGrab);
    see(2, Passes);
    EXPECT_EQ(sequence.deadline(), now + 30ms);
    now += 29ms;
    EXPECT_THAT(ready(), IsEmpty());
    now += 1ms;
    EXPECT_THAT(ready(), ElementsAre(1, 2));
    EXPECT_EQ(stops(1), std::nullopt) << "too late: it must not act twice";
    EXPECT_EQ(sequence.deadline(), std::nullopt);
}

TEST_F(KeySequenceTest, NoLimitRunsOutWhileTheKeyboardIsFrozen) {
    see(1, StopsAtOurGrab);
    EXPECT_TRUE(stops(1));
    sequence.freeze();
    see(2, StopsAtOurGrab);
    now += 200ms;
    EXPECT_THAT(ready(), IsEmpty());
    EXPECT_EQ(sequence.deadline(), std::nullopt);
    sequence.thaw(now);
    now += 29ms;
    EXPECT_THAT(ready(), IsEmpty());
    see(3, StopsAtOurGrab);
    EXPECT_EQ(stops(3), std::vector{2}) << "the server keeps the order: 2 will not stop any more";
}

class TapDeliveryTest : public ::testing::Test {
 public:
    platform::TapVerdict handle(const KeyEvent& event) {
        handled.push_back(event.keyCode);
        if (inside)
            inside();
        return TapVerdict::Drop;
    }

    testing::VirtualMainLoop loop;
    std::vector<int> handled;
    std::function<void()> inside;
    std::shared_ptr<X11ThreadWake> wake = std::make_shared<X11ThreadWake>();
    std::shared_ptr<TapDelivery> delivery =
        std::make_shared<TapDelivery>(loop, [this](const KeyEvent& event) { return handle(event); }, wake);
};

TEST_F(TapDeliveryTest, AnAnswerInTimeCounts) {
    delivery->send(keyEvent(1));
    const auto offer = delivery->offer(keyEvent(2));
    delivery->send(keyEvent(3));
    EXPECT_EQ(offer->verdict(), std::nullopt);
    EXPECT_FALSE(offer->finished());
    loop.runUntilIdle();
    EXPECT_THAT(handled, ElementsAre(1, 2, 3));
    EXPECT_EQ(offer->verdict(), TapVerdict::Drop);
    EXPECT_EQ(offer->withdraw(), TapVerdict::Drop) << "it came in the last moment";
    EXPECT_TRUE(offer->finished());
}

TEST_F(TapDeliveryTest, AKeyThatPassedIsNotActedUpon) {
    const auto offer = delivery->offer(keyEvent(1));
    EXPECT_EQ(offer->withdraw(), std::nullopt);
    loop.runUntilIdle();
    EXPECT_THAT(handled, IsEmpty());
    EXPECT_TRUE(offer->finished());
    EXPECT_EQ(offer->verdict(), std::nullopt);
}

TEST_F(TapDeliveryTest, AnAnswerThatComesLateIsIgnored) {
    std::shared_ptr<KeyOffer> offer = delivery->offer(keyEvent(1));
    inside = [&] { EXPECT_EQ(offer->withdraw(), std::nullopt); };
    loop.runUntilIdle();
    EXPECT_THAT(handled, ElementsAre(1));
    EXPECT_EQ(offer->verdict(), std::nullopt);
}

TEST_F(TapDeliveryTest, NothingIsHandledAfterTheCloseEvenFromInsideTheHandler) {
    delivery->send(keyEvent(1));
    delivery->send(keyEvent(2));
    const auto offer = delivery->offer(keyEvent(3));
    inside = [this] { delivery->close(); };
    loop.runUntilIdle();
    EXPECT_THAT(handled, ElementsAre(1));
    EXPECT_EQ(offer->verdict(), std::nullopt);
}

TEST(KeyOfferTest, OnlyAKeyThatSomebodyActedOnIsDropped) {
    constexpr std::size_t rounds = 2000;
    std::barrier start(2);
    std::vector<KeyOffer> offers(rounds);
    std::vector<std::optional<TapVerdict>> outcome(rounds);
    std::thread tap([&] {
        for (std::size_t i = 0; i < rounds; ++i) {
            start.arrive_and_wait();
            outcome[i] = offers[i].withdraw();
        }
    });
    std::vector<bool> claimed(rounds);
    for (std::size_t i = 0; i < rounds; ++i) {
        start.arrive_and_wait();
        claimed[i] = offers[i].claim();
        if (claimed[i])
            offers[i].answer(TapVerdict::Drop);
    }
    tap.join();
    for (std::size_t i = 0; i < rounds; ++i) {
        EXPECT_TRUE(claimed[i] || outcome[i] != TapVerdict::Drop) << i;
        EXPECT_EQ(offers[i].verdict(), std::nullopt) << "after the withdrawal no answer counts, round " << i;
    }
}

TEST(PostedKeys, TellsOurKeysFromThoseOfOtherPrograms) {
    PostedKeys posted;
    const async::Instant now{1h};
    posted.expect(50, KeyAction::Release, now);  // changes nothing, so the server leaves it out
    posted.expect(55, KeyAction::Press, now);
    posted.expect(55, KeyAction::Release, now);
    EXPECT_FALSE(posted.take(38, KeyAction::Press, now));
    EXPECT_TRUE(posted.take(55, KeyAction::Press, now));
    EXPECT_FALSE(posted.take(50, KeyAction::Release, now));
    EXPECT_FALSE(posted.take(55, KeyAction::Press, now)) << "somebody else's V";
    EXPECT_TRUE(posted.take(55, KeyAction::Release, now));

    posted.expect(55, KeyAction::Press, now);
    EXPECT_FALSE(posted.take(55, KeyAction::Press, now + 3s));
}

}  // namespace tavrelon::desktop
