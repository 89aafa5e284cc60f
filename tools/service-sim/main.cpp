#include "ConfigMirror.h"
#include "ServiceSimulator.h"
#include "VirtualSurface.h"
#include "core/TVKUserDefaults.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int s_signalPipe[2] = {-1, -1};

void onTerminate(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(s_signalPipe[1], &byte, 1);
}

} // namespace

int main(int argc, char** argv)
{
    // The virtual surface needs the widget application; the plain service runs without a display.
    bool window = false;
    for (int i = 1; i < argc; ++i)
        window = window || qstrcmp(argv[i], "--window") == 0;
    std::unique_ptr<QCoreApplication> application =
        window ? std::make_unique<QApplication>(argc, argv)
               : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication& app = *application;
    QCoreApplication::setApplicationName(QStringLiteral("corvane-service-sim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Plays the Corvane background service over the message ports: listens as TVK_Corvane, "
        "answers the application, mirrors its configuration and prints every message it "
        "receives as a JSON line. Commands on standard input: send TCtl <group> <control> "
        "<axis> <value> | send CurC <keyset> <layer> <group> <control> | send CnSt <0|1> | "
        "before-reply <the same as send> (sent when the next request arrives) | "
        "surface <connected|disconnected> | dump <file> | quit."));
    parser.addHelpOption();
    const QCommandLineOption configOption(
        QStringLiteral("config"),
        QStringLiteral("Preference store or configuration file to start from (default: the "
                       "application's preference store)."),
        QStringLiteral("file"));
    const QCommandLineOption disconnectedOption(
        QStringLiteral("disconnected"), QStringLiteral("Start with the surface disconnected."));
    const QCommandLineOption quietOption(QStringLiteral("quiet"),
                                         QStringLiteral("Print no line per message received."));
    const QCommandLineOption windowOption(
        QStringLiteral("window"),
        QStringLiteral("Open the virtual surface: pressing a control touches it, and the control "
                       "the application selects lights."));
    const QCommandLineOption backgroundOption(
        QStringLiteral("background"),
        QStringLiteral("Read no commands: run until terminated, as a background service does."));
    const QCommandLineOption timestampsOption(
        QStringLiteral("timestamps"),
        QStringLiteral("Say on every line when it happened: \"us\", microseconds of the "
                       "system's monotonic clock (a message received: when it arrived; one sent: "
                       "when its sending began)."));
    parser.addOptions({configOption, disconnectedOption, quietOption, windowOption,
                       backgroundOption, timestampsOption});
    parser.process(app);

    ServiceSimulator::Options options;
    options.configPath = parser.isSet(configOption) ? parser.value(configOption)
                                                    : corvane::TVKUserDefaults::defaultPath();
    options.surfaceConnected = !parser.isSet(disconnectedOption);
    options.quiet = parser.isSet(quietOption);
    options.readCommands = !parser.isSet(backgroundOption);
    options.timestamps = parser.isSet(timestampsOption);

    auto mirror = std::make_unique<ConfigMirror>();
    QString reason;
    if (!mirror->load(options.configPath, &reason)) {
        std::fprintf(stderr, "corvane-service-sim: cannot read the configuration: %s\n",
                     qPrintable(reason));
        return 1;
    }

    // An application that quits while a message is on its way must not end the service.
    std::signal(SIGPIPE, SIG_IGN);
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, s_signalPipe) != 0)
        return 1;
    struct sigaction action = {};
    action.sa_handler = onTerminate;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    QSocketNotifier terminate(s_signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&terminate, &QSocketNotifier::activated, &app, &QCoreApplication::quit);

    ServiceSimulator simulator(options, std::move(mirror));
    QObject::connect(&simulator, &ServiceSimulator::finished, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    if (!simulator.start())
        return 1;
    std::unique_ptr<VirtualSurface> surface;
    if (window) {
        surface = std::make_unique<VirtualSurface>(simulator);
        surface->showOnScreen();
        QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &app, &QCoreApplication::quit);
    }
    return app.exec();
}
