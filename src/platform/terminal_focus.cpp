#include "platform/terminal_focus.h"

namespace tavrelon::platform {

TerminalFocus terminalFocus(const Platform& platform) {
    const auto window = platform.workspace.frontmostWindow();
    if (window && window->kind == WindowKind::Terminal)
        return TerminalFocus::OwnWindow;
    return platform.accessibility.focusKind() == FocusKind::Terminal ? TerminalFocus::Inside : TerminalFocus::None;
}

}  // namespace tavrelon::platform
