#pragma once

#include <QStringList>

#include "platform/status_item.h"

namespace tavrelon::testing {

class FakeStatusItem : public platform::StatusItem {
 public:
    QStringList symbols;  ///< all that were shown, in order
    QString description;
    std::vector<platform::MenuItem> menu;

    void setImage(const QString& symbolName, const QString& accessibilityDescription) override {
        symbols << symbolName;
        description = accessibilityDescription;
    }
    void setMenu(std::vector<platform::MenuItem> items) override { menu = std::move(items); }

    /// Chooses the entry with this title; false where there is none.
    bool choose(const QString& title) {
        for (const auto& item : menu)
            if (item.title == title && item.action) {
                item.action();
                return true;
            }
        return false;
    }
};

}  // namespace tavrelon::testing
