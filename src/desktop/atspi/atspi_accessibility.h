#pragma once

#include <memory>
#include <optional>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/atspi/field_reader.h"
#include "platform/accessibility.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// The elements of other applications over the AT-SPI bus. Main thread; a thread of its own follows the focus.
///
/// All reads of one turn of the main loop share 250 ms, and the first that needs the focused field's text fetches the
/// selection with it, so that what is read in one turn belongs together. Our own process is never asked over
/// the bus.
class AtspiAccessibility : public platform::Accessibility {
 public:
    /// All three must outlive it. `log` gets a line if there is no accessibility bus.
    AtspiAccessibility(platform::Workspace& workspace, async::MainLoop& loop, platform::Log& log);
    ~AtspiAccessibility() override;

    bool isProcessTrusted() const override { return true; }

    /// Whether there is a bus to reach other applications over.
    bool isBusReachable() const { return tracker_.bus(std::chrono::nanoseconds::zero()).has_value(); }
    Result copyAttribute(const platform::AXElement& element, platform::AXAttribute attribute) override;
    Result copyParameterizedAttribute(const platform::AXElement& element, platform::AXAttribute attribute,
                                      text::Utf16Range range) override;

    /// Takes 500 ms at most. The field gets back what it held if the application breaks off in the middle.
    platform::AXError setAttribute(const platform::AXElement& element, platform::AXAttribute attribute,
                                   const QString& value) override;
    platform::AXError replaceText(const platform::AXElement& element, text::Utf16Range range, const QString& expected,
                                  const QString& text) override;
    platform::FocusKind focusKind() override;
    void onFocusChange(std::function<void()> handler) override;

 private:
    using Contents = std::expected<atspi::FieldContents, platform::AXError>;
    struct Turn;

    Turn& turn();
    std::optional<qint64> frontmostProcess();
    Result ofApplication(qint64 process, platform::AXAttribute attribute);
    Result focusedElementOf(qint64 process);
    Result titleOf(qint64 process);
    bool isPasswordFocused();
    Result ofField(const platform::AXElement& element, platform::AXAttribute attribute);
    using Description = std::expected<atspi::FieldDescription, platform::AXError>;
    const Description& descriptionOf(const atspi::ObjectReference& field);
    const Contents& contentsOf(const atspi::ObjectReference& field);
    Result frameOf(const atspi::ObjectReference& field, platform::AXAttribute attribute);
    Result boundsOf(const atspi::ObjectReference& field, text::Utf16Range range);

    platform::Workspace& workspace_;
    async::MainLoop& loop_;
    platform::Log& log_;
    std::function<void()> focusHandler_;
    atspi::AtspiTracker tracker_;
    atspi::AtspiDirectory directory_;
    std::unique_ptr<Turn> turn_;  // absent between the end of one turn and the first read of the next
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
