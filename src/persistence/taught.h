#pragma once

#include <QStringList>
#include <optional>

#include "persistence/app_settings.h"

/// What a service taught about the way the user writes is personal: it goes to the provider that taught it, and to
/// another only when the user says so.
namespace tavrelon::persistence {

enum class Taught { AdaptivePrompt, CloneProfile };

/// The provider that the settings choose, by name and host.
QString providerOf(const AppSettings& settings);

bool isTaught(const AppSettings& settings, Taught what);

/// Whether it was taught for another provider than the one chosen now: it is kept but not used.
bool isSetAside(const AppSettings& settings, Taught what);

/// Who taught it, as the user may read it; empty where that is not known.
const QString& sourceOf(const AppSettings& settings, Taught what);

/// Notes who taught what has just been stored, and for which provider.
void noteSource(AppSettings& settings, Taught what, const QString& source, const QString& provider);

/// Lets the provider chosen now have it.
void keepTaught(AppSettings& settings, Taught what);

/// What was taught, with all that is known about it.
struct TaughtRecord {
    QStringList texts;
    QString source;
    QString provider;
    std::optional<AppSettings::Date> date;
};

/// Removes it with all that is known about it, and gives it.
TaughtRecord forgetTaught(AppSettings& settings, Taught what);

/// Puts back what `forgetTaught` gave, unless something else was taught since.
void restoreTaught(AppSettings& settings, Taught what, const TaughtRecord& record);

/// Older documents do not tell the provider: what they hold was used with the one chosen now. False if there was
/// nothing to note.
bool adoptTaught(AppSettings& settings);

}  // namespace tavrelon::persistence
