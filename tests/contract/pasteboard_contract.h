#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/pasteboard.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

/// A pasteboard with somebody else beside it: what the suite needs of the fake and of the real one alike.
class PasteboardWorld {
 public:
    enum class Owner { Answers, Hangs };
    using Items = std::vector<platform::PasteboardItem>;

    virtual ~PasteboardWorld() = default;

    /// Starts empty.
    virtual platform::Pasteboard& pasteboard() = 0;
    virtual std::expected<Items, platform::PasteboardError> items() = 0;
    virtual std::optional<QString> string() = 0;

    /// What another application does; it is done when these return.
    virtual void copyElsewhere(const QString& text) = 0;
    virtual void copyElsewhere(const platform::PasteboardItem& item, Owner owner) = 0;
};

using PasteboardWorldFactory = std::function<std::unique_ptr<PasteboardWorld>()>;

class PasteboardContract : public ::testing::TestWithParam<PasteboardWorldFactory> {
 public:
    std::unique_ptr<PasteboardWorld> world = GetParam()();
    platform::Pasteboard& pasteboard = world->pasteboard();
};

}  // namespace tavrelon::testing
