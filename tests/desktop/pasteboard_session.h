#pragma once

#include <gtest/gtest.h>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/selection/x11_pasteboard.h"
#include "support/clipboard_owner.h"
#include "support/clipboard_requestor.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

/// The real pasteboard on the real event loop, for tests with other clients beside it.
class PasteboardSession : public ::testing::Test {
 public:
    using Items = std::vector<platform::PasteboardItem>;

    desktop::QtMainLoop loop;
    RecordingLog log;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard = desktop::X11Pasteboard::create(loop, log).value();

    auto items() { return runTaskOnQt(loop, pasteboard->items()); }
    auto string() { return runTaskOnQt(loop, pasteboard->string()); }

    struct Ran {
        int exitCode = -1;
        QByteArray output;
        bool operator==(const Ran&) const = default;
    };
    /// Runs a program to its end, at most 10 s, without running our event loop.
    static Ran run(const QString& program, const QStringList& arguments, const QByteArray& input = {});

    /// What xclip reads of a target; absent when it is refused.
    static std::optional<QByteArray> readByXclip(const QString& target);
    /// Lets xclip take the clipboard, and waits until it has: that is later than its first process ends.
    void copyByXclip(const QByteArray& bytes, const QString& target);

    static ClipboardData data(const QString& target, const QByteArray& bytes) {
        return {.target = target, .bytes = bytes};
    }
    static platform::PasteboardItem item(std::vector<std::pair<QString, QByteArray>> dataByType) {
        return {.dataByType = std::move(dataByType)};
    }
    /// Bytes in which every place differs from its neighbours, so that a lost or doubled increment shows.
    static QByteArray pattern(qsizetype size);
};

}  // namespace tavrelon::testing
