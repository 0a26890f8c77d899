#include "support/fake_key_poster.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavrelon::testing {

void FakeKeyPoster::press(keys::VirtualKey key, keys::Modifiers flags) {
    const Stroke stroke{key, flags, loop_.now(), asideDepth_};
    strokes_.push_back(stroke);
    if (onPress)
        onPress(stroke);
}

void FakeKeyPoster::giveModifiersBack() {
    EXPECT_GT(asideDepth_, 0) << "modifiers are given back that nobody put aside";
    --asideDepth_;
}

int FakeKeyPoster::count(keys::VirtualKey key, keys::Modifiers flags) const {
    return static_cast<int>(std::ranges::count_if(strokes_, [&](const auto& s) { return s.is(key, flags); }));
}

}  // namespace tavrelon::testing
