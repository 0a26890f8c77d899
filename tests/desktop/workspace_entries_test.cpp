#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "desktop/applications/application_identifiers.h"
#include "desktop/applications/desktop_entry_catalog.h"
#include "desktop/linux/process/process_info.h"
#include "desktop/x11/windows/x11_window_queries.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

TEST(DesktopEntryParser, ReadsTheMainGroupInTheUsersLanguage) {
    const QByteArray text =
        "# a comment\n\n[Desktop Entry]\nType=Application\nName=Mail\\sReader\nName[de]=Postleser\n"
        "Name[zh_CN]=\xe9\x82\xae\xe4\xbb\xb6\nName[sr@latin]=Posta\nStartupWMClass = Reader\n"
        "Exec=\"/opt/mail reader/bin/reader\" --new %U\n[Desktop Action new]\nName=New message\nExec=other\n";
    const auto read = [&](const char* locale) {
        return parseDesktopEntry(QStringLiteral("reader"), text, localeSuffixes(QString::fromLatin1(locale)));
    };
    const auto entry = read("C.UTF-8");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, QStringLiteral("Mail Reader"));
    EXPECT_EQ(entry->startupWmClass, QStringLiteral("Reader"));
    EXPECT_EQ(entry->executable, QStringLiteral("reader"));
    EXPECT_EQ(read("de_AT.UTF-8")->name, QStringLiteral("Postleser"));
    EXPECT_EQ(read("zh_CN.UTF-8@pinyin")->name, QStringLiteral("邮件"));
    EXPECT_EQ(read("sr_RS@latin")->name, QStringLiteral("Posta"));
    EXPECT_EQ(read("fr_FR")->name, QStringLiteral("Mail Reader"));
}

TEST(DesktopEntryParser, TellsWhyAnEntryIsNone) {
    const auto errorOf = [](const QByteArray& text) -> std::optional<DesktopEntryError> {
        const auto entry = parseDesktopEntry(QStringLiteral("x"), text, {});
        return entry ? std::nullopt : std::optional(entry.error());
    };
    EXPECT_EQ(errorOf(""), DesktopEntryError::Broken);
    EXPECT_EQ(errorOf("[Other Group]\nName=x\n"), DesktopEntryError::Broken);
    EXPECT_EQ(errorOf("[Desktop Entry]\nName\n=\n\xff\xfe"), DesktopEntryError::Broken);
    EXPECT_EQ(errorOf("[Desktop Entry]\nType=Link\nName=x\n"), DesktopEntryError::NotApplication);
    EXPECT_EQ(errorOf("[Desktop Entry]\nName=x\nHidden=true\n"), DesktopEntryError::Hidden);
}

class Catalog : public ::testing::Test {
 public:
    QTemporaryDir user;
    QTemporaryDir system;
    DesktopEntryCatalog catalog{{user.path(), system.path()}, {}};

    static void write(const QTemporaryDir& folder, const QString& name, const QByteArray& lines) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + lines);
    }
    QString nameOf(const ApplicationNames& names) {
        const auto entry = catalog.find(names);
        return entry ? entry->name : QStringLiteral("nothing");
    }
};

TEST_F(Catalog, FindsByIdClassAndProgram) {
    write(system, QStringLiteral("org.example.Notes.desktop"), "Name=Notes\nExec=example-notes\n");
    write(system, QStringLiteral("vendor/tool.desktop"), "Name=Tool\nStartupWMClass=ToolWindow\nExec=/usr/bin/tool\n");
    write(system, QStringLiteral("python3.desktop"), "Name=Python\nExec=/usr/bin/python3\n");
    write(system, QStringLiteral("plain.desktop"), "Name=Plain\n");
    EXPECT_EQ(nameOf({.applicationId = QStringLiteral("org.example.Notes")}), QStringLiteral("Notes"));
    EXPECT_EQ(nameOf({.windowClass = QStringLiteral("Plain")}), QStringLiteral("Plain"));
    EXPECT_EQ(nameOf({.windowClass = QStringLiteral("toolwindow")}), QStringLiteral("Tool"));
    EXPECT_EQ(nameOf({.windowClass = QStringLiteral("Notes")}), QStringLiteral("Notes"));
    EXPECT_EQ(nameOf({.windowClass = QStringLiteral("X"), .executable = QStringLiteral("tool")}),
              QStringLiteral("Tool"));
    EXPECT_EQ(catalog.find({.windowClass = QStringLiteral("ToolWindow")})->id, QStringLiteral("vendor-tool"));
    EXPECT_EQ(nameOf({.windowClass = QStringLiteral("X"), .executable = QStringLiteral("python3")}),
              QStringLiteral("nothing"))
        << "what runs scripts does not name them";
    EXPECT_EQ(nameOf({}), QStringLiteral("nothing"));
    EXPECT_EQ(nameOf({.applicationId = QStringLiteral("../plain")}), QStringLiteral("nothing"));
}

TEST_F(Catalog, TheUsersEntryGoesFirstAndCanHideTheSystems) {
    write(system, QStringLiteral("a.desktop"), "Name=System A\nStartupWMClass=classA\n");
    write(user, QStringLiteral("a.desktop"), "Name=User A\nStartupWMClass=classA\n");
    write(system, QStringLiteral("b.desktop"), "Name=System B\nStartupWMClass=classB\n");
    write(user, QStringLiteral("b.desktop"), "Hidden=true\n");
    write(user, QStringLiteral("broken.desktop"), "no name here\n");
    for (const auto* byIdOrClass : {"a", "classA"})
        EXPECT_EQ(nameOf({.windowClass = QString::fromLatin1(byIdOrClass)}), QStringLiteral("User A"));
    for (const auto* byIdOrClass : {"b", "classB"})
        EXPECT_EQ(nameOf({.windowClass = QString::fromLatin1(byIdOrClass)}), QStringLiteral("nothing"));
}

TEST(ApplicationIdentifiers, AKnownNameGoesBeforeTheFirstOne) {
    const auto first = QStringLiteral("org.xfce.mousepad");
    EXPECT_EQ(bundleIdentifierOf({QString(), first, QStringLiteral("Mousepad")}), first);
    EXPECT_EQ(bundleIdentifierOf({first, QStringLiteral("Slack")}), QStringLiteral("com.tinyspeck.slackmacgap"));
    EXPECT_EQ(bundleIdentifierOf({QString(), QString()}), std::nullopt);
}

TEST(ProcessInfo, KnowsTheLivingFromTheDead) {
    EXPECT_TRUE(isProcessRunning(::getpid()));
    EXPECT_FALSE(isProcessRunning(0));
    EXPECT_FALSE(isProcessRunning(-1));
    QProcess sleeping;
    sleeping.start(QStringLiteral("sleep"), {QStringLiteral("60")});
    ASSERT_TRUE(sleeping.waitForStarted());
    const auto number = sleeping.processId();
    EXPECT_TRUE(isProcessRunning(number));
    EXPECT_EQ(executableNameOf(number), QStringLiteral("sleep"));
    sleeping.kill();
    sleeping.waitForFinished();
    EXPECT_FALSE(isProcessRunning(number));
    EXPECT_EQ(executableNameOf(number), QString());
    EXPECT_TRUE(isThisMachine(QSysInfo::machineHostName()));
    EXPECT_TRUE(isThisMachine(QSysInfo::machineHostName() + QStringLiteral(".example.org")));
    EXPECT_FALSE(isThisMachine(QStringLiteral("another-machine")));
    EXPECT_FALSE(isThisMachine({}));
}

}  // namespace

}  // namespace tavrelon::desktop
