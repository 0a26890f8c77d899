#include "contract/pasteboard_contract.h"
#include "support/fake_pasteboard.h"
#include "support/run_task.h"

namespace tavrelon::testing {

namespace {

class FakeWorld : public PasteboardWorld {
 public:
    platform::Pasteboard& pasteboard() override { return pasteboard_; }
    std::expected<Items, platform::PasteboardError> items() override { return runTask(loop_, pasteboard_.items()); }
    std::optional<QString> string() override { return runTask(loop_, pasteboard_.string()); }
    void copyElsewhere(const QString& text) override {
        pasteboard_.setOwner(FakePasteboard::Owner::Answers);
        pasteboard_.copyElsewhere(text);
    }
    void copyElsewhere(const platform::PasteboardItem& item, Owner owner) override {
        pasteboard_.setOwner(owner == Owner::Hangs ? FakePasteboard::Owner::Hangs : FakePasteboard::Owner::Answers);
        pasteboard_.copyElsewhere({item});
    }

 private:
    VirtualMainLoop loop_;
    FakePasteboard pasteboard_{loop_};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, PasteboardContract,
                         ::testing::Values(PasteboardWorldFactory([] { return std::make_unique<FakeWorld>(); })),
                         [](const auto&) { return "InMemory"; });

}  // namespace tavrelon::testing
