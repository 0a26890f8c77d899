#pragma once

#include "async/main_loop.h"
#include "platform/file_picker.h"

namespace tavrelon::desktop {

/// Qt's own file dialog, in a window of its own above the one in front. It starts in the folder of the last choice.
class QtFilePicker : public platform::FilePicker {
 public:
    explicit QtFilePicker(async::MainLoop& loop);

    async::Task<std::expected<std::optional<QUrl>, platform::FilePickerError>> pickFile(
        QString title, QStringList nameFilters) override;

 private:
    async::MainLoop& loop_;
    QString folder_;
};

}  // namespace tavrelon::desktop
