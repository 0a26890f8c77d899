#include "desktop/qt/qt_file_picker.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QWindow>

#include "async/waits.h"

namespace tavrelon::desktop {

using Choice = std::expected<std::optional<QUrl>, platform::FilePickerError>;

namespace {

/// Answers by `answer` once, when the user has closed the dialog in whatever way.
std::unique_ptr<QFileDialog> showDialog(const QString& title, const QStringList& nameFilters, const QString& folder,
                                        std::function<void(Choice)> answer) {
    auto dialog = std::make_unique<QFileDialog>(nullptr, title, folder);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(nameFilters);
    QObject::connect(dialog.get(), &QDialog::finished, dialog.get(), [dialog = dialog.get(), answer](int result) {
        if (result != QDialog::Accepted)
            return answer(std::unexpected(platform::FilePickerError{}));
        const auto urls = dialog->selectedUrls();
        answer(urls.isEmpty() ? std::nullopt : std::optional(urls.first()));
    });
    dialog->winId();  // makes the window, to be tied to the one below
    dialog->windowHandle()->setTransientParent(QGuiApplication::focusWindow());
    dialog->open();
    return dialog;
}

}  // namespace

QtFilePicker::QtFilePicker(async::MainLoop& loop) : loop_(loop), folder_(QDir::homePath()) {}

async::Task<Choice> QtFilePicker::pickFile(QString title, QStringList nameFilters) {
    const auto choice = co_await async::fromCallback<Choice>(loop_, [&](auto resolver) {
        return showDialog(title, nameFilters, folder_,
                          [resolver](Choice answer) mutable { resolver.resolve(std::move(answer)); });
    });
    if (choice && *choice)
        folder_ = QFileInfo((*choice)->toLocalFile()).path();
    co_return choice;
}

}  // namespace tavrelon::desktop
