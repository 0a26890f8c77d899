#include "desktop/documents/html_text.h"

#include <QTextDocument>

namespace tavrelon::desktop {

namespace {

/// Style sheets and pictures would be looked for in the file system.
class ClosedDocument : public QTextDocument {
 protected:
    QVariant loadResource(int, const QUrl&) override { return {}; }
};

}  // namespace

QString htmlText(const QString& markup) {
    ClosedDocument document;
    document.setUndoRedoEnabled(false);
    document.setHtml(markup);
    return document.toPlainText().remove(QChar::ObjectReplacementCharacter);
}

}  // namespace tavrelon::desktop
