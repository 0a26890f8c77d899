#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

#include "support/stand_in_service.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stands in for the model services on the loopback interface; steered under /control."));
    parser.addHelpOption();
    parser.addOption({QStringLiteral("port"), QStringLiteral("The port to listen on; 0 chooses one."),
                      QStringLiteral("number"), QStringLiteral("0")});
    parser.process(application);
    bool isNumber = false;
    const auto port = parser.value(QStringLiteral("port")).toUShort(&isNumber);
    if (!isNumber) {
        std::fputs("--port takes a number from 0 to 65535\n", stderr);
        return 2;
    }
    try {
        const tavrelon::testing::StandInService service(port);
        std::printf("listening on %u\n", service.port());
        std::fflush(stdout);
        return QCoreApplication::exec();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
