#pragma once

#include <QDir>
#include <QTemporaryDir>

#include "support/test_desktop.h"
#include "ui/history/history_model.h"

namespace tavrelon::testing {

/// The history and its page over fakes, with a real folder for its pictures.
struct HistoryDesk {
    QTemporaryDir folder;
    TestDesktop desktop;
    persistence::StorageManager storage{desktop.defaultsStore, desktop.fileSystem, desktop.log, desktop.loop,
                                        desktop.platform.applicationSupport};
    persistence::HistoryManager history{desktop.fileSystem, desktop.log, folder.path(), 20};
    ui::HistoryModel page{storage, history, [this] { history.clearHistory(); }, QLocale(QStringLiteral("en_US"))};

    HistoryDesk() { QDir(folder.path()).mkdir(QStringLiteral("history-images")); }

    /// What the entry of a picture of ours holds; the file is wanted below `folder`.
    static QString pictureName(int number) {
        return QStringLiteral("history-images/00000000-0000-0000-0000-%1.jpg").arg(number, 12, 10, QChar(u'0'));
    }
};

}  // namespace tavrelon::testing
