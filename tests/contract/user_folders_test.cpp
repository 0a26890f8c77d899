#include "desktop/linux/user_folders.h"

#include <gtest/gtest.h>

#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

QString folders(std::initializer_list<std::pair<const char*, const char*>> variables,
                const char* accountHome = "/acc") {
    QProcessEnvironment environment;
    for (const auto& [name, value] : variables)
        environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
    const auto found = userFolders(environment, QString::fromLatin1(accountHome));
    return found ? found->configuration + u' ' + found->applicationSupport : QStringLiteral("absent");
}

}  // namespace

TEST(UserFolders, FollowTheBaseDirectoryRules) {
    const auto standard = QStringLiteral("/h/.config/Tavrelon /h/.local/share/Tavrelon");
    EXPECT_EQ(folders({{"HOME", "/h"}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", ""}, {"XDG_DATA_HOME", ""}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", "conf"}, {"XDG_DATA_HOME", "./data"}}), standard);
    EXPECT_EQ(folders({{"HOME", "/h"}, {"XDG_CONFIG_HOME", "/c"}}),
              QStringLiteral("/c/Tavrelon /h/.local/share/Tavrelon"));
    EXPECT_EQ(folders({}), QStringLiteral("/acc/.config/Tavrelon /acc/.local/share/Tavrelon"));
    EXPECT_EQ(folders({{"HOME", "relative"}}, ""), QStringLiteral("absent"));
    EXPECT_EQ(folders({{"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}}, ""),
              QStringLiteral("/c/Tavrelon /d/Tavrelon"));
}

}  // namespace tavrelon::desktop
