// tavrelon-picture-field FILE: a window with a field that takes text and pictures, as an editor does. What is pasted as
// a picture goes into FILE as it came, and the field's text into FILE.txt, with U+FFFC where a picture stands.
#include <QApplication>
#include <QFile>
#include <QMimeData>
#include <QTextEdit>

namespace {

void save(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("%s cannot be written", qPrintable(path));
}

class PictureField : public QTextEdit {
 public:
    explicit PictureField(const QString& path) : path_(path) {
        connect(this, &QTextEdit::textChanged, this,
                [this] { save(path_ + QStringLiteral(".txt"), toPlainText().toUtf8()); });
    }

 protected:
    bool canInsertFromMimeData(const QMimeData* source) const override {
        return source->hasFormat(png) || QTextEdit::canInsertFromMimeData(source);
    }
    void insertFromMimeData(const QMimeData* source) override {
        if (!source->hasFormat(png))
            return QTextEdit::insertFromMimeData(source);
        const auto bytes = source->data(png);
        save(path_, bytes);
        textCursor().insertImage(QImage::fromData(bytes));
    }

 private:
    const QString png = QStringLiteral("image/png");
    QString path_;
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 2) {
        qWarning("tavrelon-picture-field takes the name of a file");
        return 2;
    }
    PictureField field(QString::fromLocal8Bit(argv[1]));
    field.setWindowTitle(QStringLiteral("Picture field"));
    field.setFontPointSize(14);
    field.resize(500, 320);
    field.show();
    return QApplication::exec();
}
