#pragma once

#include "platform/platform.h"

namespace tavrelon::platform {

/// Where a terminal has the focus.
enum class TerminalFocus {
    None,
    OwnWindow,  ///< known by the window's class; what posts the keys sees to those of such windows
    Inside,     ///< of another program's window, as an editor has one; accessibility tells
};

/// Takes as long as the two ports do, which bound it.
TerminalFocus terminalFocus(const Platform& platform);

}  // namespace tavrelon::platform
