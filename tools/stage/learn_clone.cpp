// tavrelon-learn-clone CONFIGURATION DATA READER SOURCE: learns a clone profile as the program does when its user
// presses the button, from the page or file SOURCE, and stores it in the settings of the folder CONFIGURATION, which
// name the model service and the scrape service. READER is the program's document reader. Prints the error when there
// is one.
#include <QCoreApplication>
#include <cstdio>

#include "async/task_scope.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_main_loop.h"
#include "learning/clone_service.h"
#include "persistence/storage_manager.h"

namespace {

using namespace tavrelon;

async::Task<void> learn(learning::CloneService& service, persistence::StorageManager& storage, QString source,
                        int& status) {
    try {
        auto kind = learning::CloneInput::Page;
        if (source.startsWith(u'/')) {
            source = co_await service.readFileText(QUrl::fromLocalFile(source));
            kind = learning::CloneInput::Text;
        }
        const auto profile = co_await service.learn(std::move(source), kind);
        storage.changeSettings([&profile](persistence::AppSettings& settings) {
            settings.cloneSystemPrompt = profile.systemPrompt;
            settings.cloneLanguageStyle = profile.languageStyle;
        });
        storage.saveSettings();
        status = 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    QCoreApplication::quit();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 5) {
        std::fputs("tavrelon-learn-clone CONFIGURATION DATA READER SOURCE\n", stderr);
        return 2;
    }
    desktop::StandardOutputLog log;
    desktop::QtMainLoop loop;
    desktop::PosixFileSystem files;
    desktop::DirectoryDefaultsStore store(files, log, arguments[1]);
    desktop::QtHttpSession session(loop);
    desktop::DocumentProcessReader documents(loop, arguments[3]);
    persistence::StorageManager storage(store, files, log, loop, arguments[2]);
    const auto endpoints = generation::ServiceEndpoints::builtIn();
    generation::PollinationsService models(loop, session, log, endpoints);
    const auto& settings = storage.settings();
    auto& configuration = models.configuration;
    configuration.pollinationsCustomEnabled = settings.enableCustomPollinations;
    configuration.pollinationsBaseURLOverride =
        generation::ServiceConfiguration::normalizedBaseURL(settings.pollinationsBaseURL);
    learning::CloneService service(session, documents, models, settings.cloneApiBaseURL, endpoints.cloneApiBaseURL);
    int status = 1;
    async::TaskScope scope(loop);
    scope.spawn(learn(service, storage, arguments[4], status));
    QCoreApplication::exec();
    return status;
}
