#include "desktop/main_job_session.h"

#include <stdexcept>

#include "desktop/tools.h"
#include "text/json.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

text::Json historyOf(const QString& home) {
    const auto bytes = contentsOf(home + QStringLiteral("/data/Tavrelon/history.json"));
    return bytes.isEmpty() ? text::Json::array() : text::parseJson(bytes);
}

}  // namespace

RunningTavrelon::RunningTavrelon(StandInService& service, const Setting& setting, Dashboard dashboard) {
    auto settings = text::Json{{"enableCustomPollinations", true},
                               {"pollinationsBaseURL", service.url().toStdString()},
                               {"pollinationsVisionModel", "test-model"}};
    settings.update(setting.settings);
    if (setting.install)
        setting.install(home_.filePath(QStringLiteral("data/Tavrelon")));
    writeWhole(home_.filePath(QStringLiteral("config/Tavrelon/tavrelon.settings")), text::compactJson(settings));
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home_.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.filePath(QStringLiteral("data")));
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(home_.filePath(QStringLiteral("log")));
    const bool withDashboard = dashboard == Dashboard::Open;
    process_.start(QStringLiteral(TAVRELON_PROGRAM),
                   withDashboard ? QStringList() : QStringList(QStringLiteral("--background")));
    if (!waitForLog(QStringLiteral("[Hotkey] Listening"), 1))
        throw std::runtime_error("Tavrelon does not listen: " + log().toStdString());
    if (withDashboard && !eventually([] { return frontmostTitle() == QStringLiteral("Tavrelon"); }))
        throw std::runtime_error("the dashboard does not come to the front: " + log().toStdString());
}

bool RunningTavrelon::isDashboardOpen() {
    return !xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                     QStringLiteral("^Tavrelon$")})
                .isEmpty();
}

text::Json RunningTavrelon::settings() const {
    return text::parseJson(contentsOf(home_.filePath(QStringLiteral("config/Tavrelon/tavrelon.settings"))));
}

RunningTavrelon::~RunningTavrelon() {
    terminate();
}

QString RunningTavrelon::log() const {
    return QString::fromUtf8(contentsOf(home_.filePath(QStringLiteral("log"))));
}

int RunningTavrelon::logged(const QString& line) const {
    return static_cast<int>(log().split(u'\n').count(line));
}

bool RunningTavrelon::waitForLog(const QString& line, int times) {
    return eventually([&] { return logged(line) >= times; });
}

int RunningTavrelon::historyCount() const {
    return static_cast<int>(historyOf(home_.path()).size());
}

QString RunningTavrelon::newestHistoryId() const {
    const auto history = historyOf(home_.path());
    return history.empty() ? QString() : text::stringFrom(history.front().at("id"));
}

int RunningTavrelon::terminate() {
    // Qt 6.4 loses its copy of a key when the window is gone before the accessibility bus has answered for the key.
    if (process_.state() == QProcess::Running && isDashboardOpen())
        letKeysArrive();
    if (process_.state() == QProcess::NotRunning)
        return process_.exitCode();
    process_.terminate();
    if (!process_.waitForFinished(20000))
        process_.kill();
    process_.waitForFinished(5000);
    const int status = process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    if (status != 0)
        qWarning("the program ended with %d:\n%s", status,
                 qUtf8Printable(log().last(std::min<qsizetype>(log().size(), 6000))));
    return status;
}

}  // namespace tavrelon::testing
