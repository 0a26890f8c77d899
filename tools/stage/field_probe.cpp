// tavrelon-field-probe: for every line of its input, prints what the program would see of the focused field, as JSON.
#include <QCoreApplication>
#include <iostream>

#include "capture/context_capturer.h"
#include "capture/cursor_locator.h"
#include "desktop/real_desk.h"
#include "support/run_task_on_qt.h"
#include "text/json.h"

using namespace tavrelon;

namespace {

text::Json optionalText(const std::optional<QString>& text) {
    return text ? text::toJson(*text) : text::Json();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    tavrelon::testing::DesktopAdapters desk;
    capture::ContextCapturer capturer(desk.platform);
    capture::CursorLocator locator(desk.accessibility);
    for (std::string line; std::getline(std::cin, line);) {
        QCoreApplication::processEvents();
        const auto field = capturer.fetchFocusedTextSnapshot();
        const auto caret = locator.caretRect();
        text::Json seen = {
            {"value", field ? text::toJson(field->value) : text::Json()},
            {"selection", optionalText(tavrelon::testing::runTaskOnQt(desk.loop, capturer.selectedText()))},
        };
        if (field && field->selectedRange)
            seen["range"] = {field->selectedRange->location, field->selectedRange->length};
        if (caret)
            seen["caret"] = {caret->origin.x, caret->origin.y, caret->size.width, caret->size.height};
        std::cout << text::compactJson(seen).toStdString() << std::endl;
    }
    return 0;
}
