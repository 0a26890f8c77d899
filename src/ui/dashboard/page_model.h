#pragma once

#include <QObject>
#include <QVariantMap>
#include <span>

#include "persistence/storage_manager.h"
#include "text/localized_text.h"

namespace tavrelon::ui {

/// One text of a page in both languages, and the name under which the view asks for it.
struct PageText {
    QStringView name;
    QStringView english;
    QStringView chinese;
};

/// What every page of the dashboard shows by: its texts in the language of the settings, read anew after each change.
/// A page's model adds its own properties with `changed` as their signal, and knows nothing of drawing. Main thread.
class PageModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEnglish READ isEnglish NOTIFY changed)
    Q_PROPERTY(QVariantMap texts READ texts NOTIFY changed)

 public:
    /// `texts` is the page's constant table; `storage` outlives the model.
    PageModel(persistence::StorageManager& storage, std::span<const PageText> texts);

    /// Any language but "en" is Chinese.
    bool isEnglish() const { return storage_.settings().appLanguage == QLatin1StringView("en"); }

    text::Language language() const { return isEnglish() ? text::Language::English : text::Language::Chinese; }

    /// All texts of the page in the language at the moment, by their names.
    QVariantMap texts() const;

    /// The page comes on screen, and goes; either may happen many times. What is read anew at each drawing is read in
    /// `appear`.
    virtual void appear() { Q_EMIT changed(); }
    virtual void disappear() {}

    /// Something that the view shows may have changed.
    Q_SIGNAL void changed();

 protected:
    persistence::StorageManager& storage() const { return storage_; }
    const persistence::AppSettings& settings() const { return storage_.settings(); }
    QString text(QStringView name) const;

    /// The first two steps of every setter: the field, then the stored document. The running service follows.
    template <typename Change>
    void store(Change change) {
        storage_.changeSettings(std::move(change));
        storage_.saveSettings();
    }

 private:
    persistence::StorageManager& storage_;
    std::span<const PageText> texts_;
    persistence::ChangeSubscription subscription_;
};

}  // namespace tavrelon::ui
