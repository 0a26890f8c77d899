// The texts of the shell and of the pages of settings, in both languages.
#include <gtest/gtest.h>

#include <QMetaProperty>
#include <QRegularExpression>

#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

namespace {

void collect(const QVariant& value, QStringList& texts) {
    if (value.typeId() == QMetaType::QVariantMap)
        for (const auto& each : value.toMap())
            collect(each, texts);
    else if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList)
        for (const auto& each : value.toList())
            collect(each, texts);
    else if (value.typeId() == QMetaType::QString)
        texts << value.toString();
}

/// All that the model says at the moment, in an order that does not depend on the language.
QStringList textsOf(const QObject& model) {
    QStringList texts;
    const auto& type = *model.metaObject();
    for (int index = QObject::staticMetaObject.propertyCount(); index < type.propertyCount(); ++index)
        collect(type.property(index).read(&model), texts);
    return texts;
}

class DashboardTextsTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {
 public:
    QStringList textsIn(const char* language) {
        storage.changeSettings(
            [&](persistence::AppSettings& settings) { settings.appLanguage = QString::fromLatin1(language); });
        return textsOf(shell) + textsOf(general) + textsOf(hotkeys) + textsOf(privacy);
    }
};

TEST_F(DashboardTextsTest, EveryTextStandsInBothLanguages) {
    const auto english = textsIn("en");
    const auto chinese = textsIn("fr");
    ASSERT_EQ(english.size(), chinese.size());
    QStringList untranslated;
    const QRegularExpression words(QStringLiteral("^[A-Z][a-z]+( |$)"));
    for (qsizetype index = 0; index < english.size(); ++index)
        if (english[index] == chinese[index] && english[index].contains(words))
            untranslated << english[index];
    untranslated.removeDuplicates();
    EXPECT_EQ(
        untranslated.join(u'|'),
        QStringLiteral("Tavrelon|Press keys...|Escape|Allow|Granted|Permissions|Required for hotkeys|Accessibility|"
                       "Required for context|Screen Recording|Required for voice|Microphone"));
}

}  // namespace

}  // namespace tavrelon::ui
