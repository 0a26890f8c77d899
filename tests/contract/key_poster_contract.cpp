#include "contract/key_poster_contract.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;
using Key = KeyPosterBench::Key;

TEST_P(KeyPosterContract, KeysArriveInOrderWithTheirFlags) {
    bench->poster().press(keys::keyA, keys::commandFlag);
    bench->poster().press(keys::keyBackspace, keys::noModifiers);
    bench->poster().press(keys::keyV, keys::commandFlag | keys::shiftFlag);
    bench->poster().press(5000, keys::noModifiers);  // on no keyboard
    EXPECT_FALSE(bench->poster().isCompositionOpen()) << "no input method runs";
    EXPECT_THAT(bench->received(), ElementsAre(Key{keys::keyA, keys::controlFlag}, Key{keys::keyBackspace, {}},
                                               Key{keys::keyV, keys::controlFlag | keys::shiftFlag}));
}

TEST_P(KeyPosterContract, HeldModifiersStayOutOfPostedKeys) {
    bench->holdShift();
    {
        const platform::ModifiersAside outer(bench->poster());
        bench->poster().press(keys::keyBackspace, keys::noModifiers);
        const platform::ModifiersAside inner(bench->poster());
        bench->poster().press(keys::keyV, keys::commandFlag);
    }
    bench->poster().press(keys::keyBackspace, keys::noModifiers);
    bench->letShiftGo();
    bench->poster().press(keys::keyC, keys::commandFlag);
    EXPECT_THAT(bench->received(), ElementsAre(Key{keys::keyBackspace, {}}, Key{keys::keyV, keys::controlFlag},
                                               Key{keys::keyBackspace, {}}, Key{keys::keyC, keys::controlFlag}));
}

}  // namespace tavrelon::testing
