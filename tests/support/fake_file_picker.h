#pragma once

#include <QStringList>
#include <deque>

#include "async/waits.h"
#include "platform/file_picker.h"

namespace tavrelon::testing {

/// A user who chooses what the test says, in a later turn, and never chooses where it says nothing.
class FakeFilePicker : public platform::FilePicker {
 public:
    using Choice = std::expected<std::optional<QUrl>, platform::FilePickerError>;

    explicit FakeFilePicker(async::MainLoop& loop) : loop_(loop) {}

    std::deque<Choice> choices;
    QStringList titles;  ///< of the pickers that were shown

    async::Task<Choice> pickFile(QString title, QStringList) override {
        titles << title;
        co_return co_await async::fromCallback<Choice>(loop_, [this](auto resolver) {
            if (!choices.empty()) {
                resolver.resolve(std::move(choices.front()));
                choices.pop_front();
            }
            return 0;
        });
    }

 private:
    async::MainLoop& loop_;
};

}  // namespace tavrelon::testing
