#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include "platform/key_poster.h"

namespace tavrelon::testing {

/// A key poster together with the user's own hands on the keyboard and the application behind it.
class KeyPosterBench {
 public:
    struct Key {
        keys::VirtualKey key = 0;
        keys::Modifiers flags;  ///< with Control where Command was posted

        bool operator==(const Key&) const = default;
    };

    virtual ~KeyPosterBench() = default;
    virtual platform::KeyPoster& poster() = 0;

    /// The user presses Shift and keeps it down, or lets it go.
    virtual void holdShift() = 0;
    virtual void letShiftGo() = 0;

    /// The keys that the application has got, in order.
    virtual std::vector<Key> received() = 0;
};

using MakeKeyPosterBench = std::unique_ptr<KeyPosterBench> (*)();

/// What every key poster does.
class KeyPosterContract : public ::testing::TestWithParam<MakeKeyPosterBench> {
 public:
    using Key = KeyPosterBench::Key;
    std::unique_ptr<KeyPosterBench> bench = GetParam()();
};

}  // namespace tavrelon::testing
