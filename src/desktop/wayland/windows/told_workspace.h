#pragma once

#include <chrono>
#include <map>

#include "desktop/applications/desktop_entry_catalog.h"
#include "desktop/wayland/windows/told_window.h"

namespace tavrelon::desktop {

/// The applications behind the windows of a compositor, native ones and those of X, as our script within it tells
/// them. Main thread; nobody is asked.
class ToldWorkspace : public platform::Workspace {
 public:
    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override;
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override;
    bool isTerminated(const platform::RunningApplication& application) override;
    bool activate(const platform::RunningApplication& application) override;
    bool hasKeyboard(const platform::RunningApplication& application) override;
    bool openUrl(const QUrl& url) override;

    /// The window with the keyboard. None while a panel or a screen's lock has it.
    const std::optional<ToldWindow>& focusedWindow() const { return front_; }

    platform::RunningApplication applicationBehind(const ToldWindow& window);

    /// The compositor's own name for a window; absent for one that is gone.
    std::optional<QString> identifierOf(quint64 number) const;

 protected:
    /// `untilKeyboard`: how much earlier than the keyboard is there a window is told.
    ToldWorkspace(DesktopEntryCatalog entries, std::chrono::milliseconds untilKeyboard)
        : entries_(std::move(entries)), untilKeyboard_(untilKeyboard) {}

    /// Another window is in front, or it has another title or place.
    void setFront(std::optional<ToldWindow> window);
    void forget(const QString& identifier);
    quint64 numberOf(const ToldWindow& window);

    virtual bool activateWindow(const QString& identifier) = 0;

 private:
    DesktopEntryCatalog entries_;
    std::chrono::milliseconds untilKeyboard_;
    std::optional<ToldWindow> front_;
    std::chrono::steady_clock::time_point since_;  ///< when `front_` became another
    std::map<QString, quint64> numbers_;           ///< of the windows that were told and are still there
    quint64 lastNumber_ = 0;
};

}  // namespace tavrelon::desktop
