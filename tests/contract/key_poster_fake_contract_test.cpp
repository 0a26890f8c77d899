#include "contract/key_poster_contract.h"
#include "support/fake_key_poster.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

namespace {

class FakeBench : public KeyPosterBench {
 public:
    platform::KeyPoster& poster() override { return poster_; }
    void holdShift() override {}
    void letShiftGo() override {}

    std::vector<Key> received() override {
        std::vector<Key> keys;
        for (const auto& stroke : poster_.strokes()) {
            const bool command = stroke.flags.contains(keys::commandFlag);
            const auto flags = stroke.flags & (keys::controlFlag | keys::optionFlag | keys::shiftFlag);
            if (stroke.key <= 127)
                keys.push_back({stroke.key, command ? flags | keys::controlFlag : flags});
        }
        return keys;
    }

 private:
    VirtualMainLoop loop_;
    FakeKeyPoster poster_{loop_};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, KeyPosterContract, ::testing::Values([]() -> std::unique_ptr<KeyPosterBench> {
                             return std::make_unique<FakeBench>();
                         }));

}  // namespace tavrelon::testing
