// A small editor of the newest toolkit: a plain text field with the file that it is given.
#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QShortcut>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QFile file(QApplication::arguments().value(1));
    QPlainTextEdit editor;
    if (file.open(QIODevice::ReadOnly))
        editor.setPlainText(QString::fromUtf8(file.readAll()));
    file.close();
    const QShortcut save(QKeySequence::Save, &editor);
    QObject::connect(&save, &QShortcut::activated, &editor, [&] {
        if (file.open(QIODevice::WriteOnly))
            file.write(editor.toPlainText().toUtf8());
        file.close();
    });
    editor.setWindowTitle(file.fileName().section(QLatin1Char('/'), -1));
    editor.resize(700, 400);
    editor.show();
    return QApplication::exec();
}
