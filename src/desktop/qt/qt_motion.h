#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QDBusVariant>
#include <QObject>
#include <map>

namespace tavrelon::desktop {

/// Whether the user asked this session to keep still, for views to follow. Asks the portal's settings and the XSETTINGS
/// of the desktop; one that says so is enough, and without any things move. Main thread, which never waits for the
/// portal.
class QtMotion : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT
    Q_PROPERTY(bool isReduced READ isReduced NOTIFY changed)

 public:
    explicit QtMotion(QObject* parent);

    bool isReduced() const;

    Q_SIGNAL void changed();

 private:
    Q_SLOT void settingChanged(const QString& name, const QString& key, const QDBusVariant& value);

    enum class Source { PortalReducedMotion, PortalAnimations, XSettings };
    void note(Source source, bool isStill);
    void askPortal();
    void findXSettings();
    void readXSettings();
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::map<Source, bool> still_;  ///< what each source says; one that is silent is missing
    xcb_window_t settingsWindow_ = XCB_NONE;
    xcb_atom_t settingsAtom_ = XCB_NONE;
};

}  // namespace tavrelon::desktop
