#pragma once

#include <QDir>

namespace tavrelon::testing {

/// Shows every face, the prompt box and the status HUD on the running desktop, over a light and a dark page, in both
/// languages, and writes a picture of each: as they are without a compositor and, as <name>-composited.png, with one.
void pictureOverlays(const QDir& folder);

/// Opens every page of the dashboard in both languages, as it is at first and as it is with something in it, and writes
/// a picture of each.
void pictureDashboard(const QDir& folder);

/// Has a tray take the icon of a failure, with the mouse on it, and writes a picture of that.
void pictureTray(const QDir& folder);

}  // namespace tavrelon::testing
