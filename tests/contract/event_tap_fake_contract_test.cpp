#include "contract/event_tap_contract.h"
#include "support/fake_event_tap.h"

namespace tavrelon::testing {

namespace {

class FakeBench : public EventTapBench {
 public:
    platform::EventTap& tap() override { return tap_; }

    void strike(const Key& key) override {
        std::vector<keys::Modifiers> steps{keys::noModifiers};
        for (const auto flag : {keys::controlFlag, keys::optionFlag, keys::shiftFlag, keys::commandFlag}) {
            if (!key.flags.contains(flag))
                continue;
            steps.push_back(steps.back() | flag);
            tap_.flagsChanged(steps.back());
        }
        tap_.press(key.key, key.flags);
        for (steps.pop_back(); key.flags != keys::noModifiers && !steps.empty(); steps.pop_back())
            tap_.flagsChanged(steps.back());
    }

    std::vector<Key> received() override {
        std::vector<Key> keys;
        for (const auto& event : tap_.receivedByApplication())
            if (event.type == platform::KeyEvent::Type::KeyDown)
                keys.push_back({event.keyCode, event.modifierFlags});
        return keys;
    }

 private:
    FakeEventTap tap_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, EventTapContract, ::testing::Values([]() -> std::unique_ptr<EventTapBench> {
                             return std::make_unique<FakeBench>();
                         }));

}  // namespace tavrelon::testing
