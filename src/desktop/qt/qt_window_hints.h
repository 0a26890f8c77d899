#pragma once

#include <QWindow>

namespace tavrelon::desktop {

/// Has the window manager show the window on whichever workspace is in front, and leave it out of task bars and pagers.
/// For each showing, and before it: a window manager takes such wishes from a window that is about to show, and removes
/// them when that is hidden. Does nothing where windows are not those of an X server. Main thread.
void wishForEveryWorkspace(QWindow& window);

}  // namespace tavrelon::desktop
