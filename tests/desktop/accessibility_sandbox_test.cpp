#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "desktop/accessibility_session.h"
#include "support/accessibility_bus_address.h"
#include "support/fake_accessible_app.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {
namespace {

using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;
using platform::FocusKind;

/// Runs what follows in a root of its own, in which a file tells of the sandbox as Flatpak's does.
constexpr auto enterSandbox = R"sh(
set --
for folder in /*; do
    case $folder in /proc | /dev | /sys) continue ;; esac
    if [ -L "$folder" ]; then set -- "$@" --symlink "$(readlink "$folder")" "$folder"
    else set -- "$@" --bind "$folder" "$folder"; fi
done
set -- bwrap --die-with-parent --proc /proc --dev /dev "$@" --ro-bind "$here/info" /.flatpak-info
)sh";

/// Programs on the accessibility bus that reach it through the proxy of a sandbox, so that the bus takes the proxy's
/// process for theirs, and the adapter.
class AccessibilitySandbox : public ::testing::Test {
 public:
    AccessibilitySession session;
    QTemporaryDir folder;
    std::vector<std::unique_ptr<RunningProgram>> programs;

    enum class Info { Told, Hidden };

    /// The process whose window it would be.
    qint64 start(const QString& name, Manners manners, Info info = Info::Told) {
        const auto here = folder.filePath(name);
        const auto socket = here + QStringLiteral("/bus");
        if (info == Info::Told)
            writeWhole(here + QStringLiteral("/info"),
                       "[Application]\nname=org.example.Editor\n\n[Instance]\ninstance-id=" + name.toUtf8() + "\n");
        else
            writeWhole(here + QStringLiteral("/info"), {});
        const auto sandbox = "here='" + here.toUtf8() + "'" + enterSandbox;
        writeProgram(here + QStringLiteral("/proxy"),
                     sandbox + "exec \"$@\" xdg-dbus-proxy '" + accessibilityBusAddress().toUtf8() + "' '" +
                         socket.toUtf8() +
                         "' --filter --sloppy-names"
                         " --call=org.a11y.atspi.Registry=org.a11y.atspi.Socket.Embed@/org/a11y/atspi/accessible/root"
                         "\n");
        writeProgram(here + QStringLiteral("/app"),
                     sandbox + "export AT_SPI_BUS_ADDRESS='unix:path=" + socket.toUtf8() + "'\nexec \"$@\" \"" +
                         FAKE_ACCESSIBLE_APP + "\" " + QByteArray::number(static_cast<int>(manners)) + " gtk '" +
                         name.toUtf8() + "' 0 0\n");
        programs.push_back(std::make_unique<RunningProgram>(here + QStringLiteral("/proxy"), QStringList()));
        EXPECT_TRUE(eventually([&] { return QFileInfo::exists(socket); }));
        programs.push_back(std::make_unique<RunningProgram>(here + QStringLiteral("/app"), QStringList()));
        const auto outer = QString::number(programs.back()->process());
        qint64 inner = 0;
        EXPECT_TRUE(eventually([&] {
            inner =
                outputOf(QStringLiteral("pgrep"), {QStringLiteral("-P"), outer, QStringLiteral("fake")}).toLongLong();
            return inner != 0;
        }));
        return inner;
    }
    bool becomes(FocusKind kind) {
        return eventually([&] {
            nextTurn();
            return session.accessibility.focusKind() == kind;
        });
    }
};

TEST_F(AccessibilitySandbox, AProgramBehindAProxyIsToldFromAnotherBehindOne) {
    const auto first = start(QStringLiteral("first"), Manners::Honest);
    const auto second = start(QStringLiteral("second"), Manners::Password);
    session.putInFront(first);
    ASSERT_TRUE(becomes(FocusKind::Ordinary));
    const auto field = session.focused();
    ASSERT_TRUE(field);
    EXPECT_EQ(session.read(std::get<AXElement>(*field), AXAttribute::Value), AXValue(QStringLiteral("first")));
    session.putInFront(second);
    EXPECT_TRUE(becomes(FocusKind::Password));
}

TEST_F(AccessibilitySandbox, APasswordFieldCountsWhoseeverTheWindowSeemsToBe) {
    start(QStringLiteral("hidden"), Manners::Password, Info::Hidden);
    const RunningProgram silent(QStringLiteral("sleep"), {QStringLiteral("60")});
    for (const auto process : {silent.process(), qint64{0}}) {
        session.putInFront(process);
        EXPECT_TRUE(becomes(FocusKind::Password)) << "process " << process;
        EXPECT_EQ(session.focused(), std::unexpected(AXError::NoValue)) << "whose it is stays unknown";
    }
}

}  // namespace
}  // namespace tavrelon::testing
