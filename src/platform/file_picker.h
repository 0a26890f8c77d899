#pragma once

#include <QString>
#include <QUrl>
#include <cstdint>
#include <expected>
#include <optional>

#include "async/task.h"

namespace tavrelon::platform {

struct FilePickerError {
    enum class Code : std::uint8_t { Cancelled, Failed };

    Code code = Code::Cancelled;
    QString description;  ///< for the user; empty for a cancellation
};

/// Lets the user choose one file of the machine. Main thread; the rest of the program goes on meanwhile.
class FilePicker {
 public:
    virtual ~FilePicker() = default;

    /// `nameFilters` say which files are on offer first, each as "Name (*.ending *.ending)". Absent when the user
    /// confirmed without a file. A dropped task closes the picker.
    virtual async::Task<std::expected<std::optional<QUrl>, FilePickerError>> pickFile(QString title,
                                                                                      QStringList nameFilters) = 0;
};

}  // namespace tavrelon::platform
