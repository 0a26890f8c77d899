#pragma once

#include <vector>

#include "platform/workspace.h"

namespace tavrelon::testing {

/// A workspace of windows that a test opens. It starts with no window in front. Main thread.
class FakeWorkspace : public platform::Workspace {
 public:
    /// The process number that counts as our own.
    static constexpr qint64 ownProcessIdentifier = 4711;

    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override;
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override {
        return frontmost_ ? std::optional(windowPlace) : std::nullopt;
    }
    bool isTerminated(const platform::RunningApplication& application) override;
    bool activate(const platform::RunningApplication& application) override;
    bool hasKeyboard(const platform::RunningApplication& application) override;
    bool openUrl(const QUrl& url) override;

    /// Opens a window of the application, or takes the one with the same process and window, and puts it in front.
    void focus(const platform::RunningApplication& application, std::optional<QString> title = std::nullopt);

    /// Puts one of our own windows in front.
    void focusOwnWindow();
    bool isOwnWindowInFront();

    /// No window has the focus any longer; all stay open.
    void focusNothing() { frontmost_.reset(); }

    /// Ends the application with all its windows.
    void terminate(const platform::RunningApplication& application);

    /// Whether the window in front has the keys too, or waits for them.
    void setKeyboardFollows(bool follows) { keyboardFollows_ = follows; }

    platform::WindowKind windowKind = platform::WindowKind::Ordinary;  ///< of whichever window is in front
    bool tellsProcess = true;  ///< otherwise the application in front has no process

    /// Of whichever window is in front.
    platform::WindowPlace windowPlace{.x = 100, .y = 80, .width = 800, .height = 600, .shadow = {}};

    /// The applications that were activated and the addresses that were opened, in order.
    const std::vector<platform::RunningApplication>& activated() const { return activated_; }
    const std::vector<QUrl>& openedUrls() const { return openedUrls_; }

 private:
    struct Window {
        platform::RunningApplication application;
        std::optional<QString> title;
    };
    std::optional<std::size_t> indexOf(const platform::RunningApplication& application) const;

    std::vector<Window> windows_;
    std::optional<std::size_t> frontmost_;
    bool keyboardFollows_ = true;
    std::vector<platform::RunningApplication> activated_;
    std::vector<QUrl> openedUrls_;
};

}  // namespace tavrelon::testing
