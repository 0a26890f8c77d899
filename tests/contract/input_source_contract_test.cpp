#include "contract/input_source_contract.h"

namespace tavrelon::testing {

using Method = InputSourceWorld::Method;

TEST_P(InputSourceContract, WithoutAnInputMethodNoneIsActive) {
    EXPECT_FALSE(world->source().isInputMethodActive());
}

TEST_P(InputSourceContract, OnlyAComposingMethodIsActive) {
    world->use(Method::Composing);
    EXPECT_TRUE(world->answers(true));
    world->use(Method::Keyboard);
    EXPECT_TRUE(world->answers(false));
    world->use(Method::Composing);
    EXPECT_TRUE(world->answers(true));
}

}  // namespace tavrelon::testing
