#pragma once

#include <QDBusConnection>
#include <QRect>
#include <optional>

#include "desktop/atspi/atspi_protocol.h"
#include "desktop/main_job_session.h"

namespace tavrelon::testing {

/// The open dashboard as assistive technology sees it, and as a mouse reaches it.
class DashboardWindow {
 public:
    DashboardWindow();
    ~DashboardWindow();

    /// Clicks what has this name, and this role where one is given. Throws when nothing comes into sight that has it.
    void press(const QString& name, const QString& role = {});

    /// Waits until something with this name is in sight.
    bool waitFor(const QString& name);

    /// Waits until something else than `previous` has the focus, and gives its name; `previous` when nothing comes.
    QString focused(const QString& previous);

 private:
    using Object = desktop::atspi::ObjectReference;

    struct Element {
        QString name;
        QString role;
        bool isFocused = false;
        Object object;
    };

    std::vector<Element> elementsInSight() const;
    void collect(const Object& object, std::vector<Element>& elements) const;
    std::optional<Element> find(const QString& name, const QString& role) const;
    std::optional<Object> program() const;
    QString nameOf(const Object& object) const;
    QRect frameOf(const Object& object) const;
    QDBusMessage call(const QDBusMessage& message) const;

    QString bus_;
};

}  // namespace tavrelon::testing
