#include "contract/input_source_contract.h"
#include "support/fake_input_source.h"

namespace tavrelon::testing {

namespace {

class FakeInputWorld : public InputSourceWorld {
 public:
    platform::InputSource& source() override { return source_; }
    void use(Method method) override { source_.active = method == Method::Composing; }
    bool answers(bool isActive) override { return source_.isInputMethodActive() == isActive; }

 private:
    FakeInputSource source_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, InputSourceContract,
                         ::testing::Values(InputSourceWorldFactory([] { return std::make_unique<FakeInputWorld>(); })),
                         [](const auto&) { return "Fake"; });

}  // namespace tavrelon::testing
