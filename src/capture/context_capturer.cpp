#include "capture/context_capturer.h"

#include "platform/terminal_focus.h"
#include "text/foreign_text.h"

namespace tavrelon::capture {

using platform::AXAttribute;
using platform::AXElement;

namespace {

/// How much of a title or a name is kept, in characters. Other programs choose them.
constexpr qsizetype longestName = 300;

std::optional<QString> nameOf(const std::optional<QString>& foreign) {
    return foreign ? std::optional(text::oneLine(*foreign, longestName)) : std::nullopt;
}

}  // namespace

ContextCapturer::ContextCapturer(platform::Platform& platform)
    : screenshots(platform),
      platform_(platform),
      reader_(platform.mainLoop, platform.log, platform.accessibility, platform.workspace),
      focusedText_(platform.log, platform.accessibility),
      clipboardSelection_(platform.mainLoop, platform.log, platform.pasteboard, platform.keyPoster) {}

async::Task<CapturedContext> ContextCapturer::captureContext(QString inputBuffer, ScreenshotWish wish) {
    const auto application = platform_.workspace.frontmostApplication();
    const auto own = co_await async::currentCancellation();
    async::Concurrent selection(selectedText(), own);
    async::Concurrent title(focusedWindowTitle(), own);
    CapturedContext context;
    if (wish == ScreenshotWish::Include)
        context.screenshotData = co_await screenshots.screenshotOrNothing();
    context.inputBuffer = std::move(inputBuffer);
    context.selection = co_await std::move(selection);
    context.windowTitle = nameOf(co_await std::move(title));
    if (application) {
        context.appBundleID = nameOf(application->bundleIdentifier);
        context.appName = nameOf(application->localizedName);
    }
    co_return context;
}

std::optional<AccessibilityTextSnapshot> ContextCapturer::fetchFocusedTextSnapshot() {
    if (!platform_.accessibility.isProcessTrusted())
        return std::nullopt;
    platform_.log.line(QStringLiteral("[ContextCapturer] fetchFocusedTextSnapshot called, AXIsProcessTrusted: true"));
    const auto element = reader_.focusedElement();
    return element ? focusedText_.snapshotOf(*element) : std::nullopt;
}

async::Task<std::optional<QString>> ContextCapturer::selectedText() {
    if (!platform_.accessibility.isProcessTrusted())
        co_return std::nullopt;
    const auto element = reader_.focusedElement();
    if (!element)
        co_return std::nullopt;
    const auto value = platform_.accessibility.copyAttribute(*element, AXAttribute::SelectedText);
    if (!value) {
        platform_.log.line(QStringLiteral("[ContextCapturer] Failed to get selected text, error: %1")
                               .arg(platform::axErrorName(value.error())));
        co_return std::nullopt;
    }
    if (const auto* string = std::get_if<QString>(&*value))
        co_return *string;
    co_return std::nullopt;
}

async::Task<std::optional<QString>> ContextCapturer::selectionViaClipboard(SelectAll selectAll) {
    const auto mayPress = [this, window = platform_.workspace.frontmostWindow()] {
        // In a terminal inside of another program's window the copy shortcut would end what runs there.
        return platform_.workspace.frontmostWindow() == window && !platform_.accessibility.isFocusSecure() &&
               platform::terminalFocus(platform_) != platform::TerminalFocus::Inside;
    };
    if (!mayPress())
        co_return std::nullopt;
    co_return co_await clipboardSelection_.read(selectAll, mayPress);
}

async::Task<std::optional<QString>> ContextCapturer::focusedWindowTitle() {
    if (!platform_.accessibility.isProcessTrusted())
        co_return std::nullopt;
    const auto application = reader_.focusedApplication();
    if (!application)
        co_return std::nullopt;
    const auto window =
        reader_.copyElementAttribute(*application, AXAttribute::FocusedWindow, QStringLiteral("focused window"));
    if (!window)
        co_return std::nullopt;
    const auto title = reader_.copyAttribute(*window, AXAttribute::Title, QStringLiteral("window title"));
    if (title && std::holds_alternative<QString>(*title))
        co_return std::get<QString>(*title);
    co_return std::nullopt;
}

}  // namespace tavrelon::capture
