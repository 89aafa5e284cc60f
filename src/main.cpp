// Corvane: the configuration application for the Corvane control surfaces.
#include "app/CorvaneController.h"
#include "app/TVKInstanceLink.h"
#include "core/Log.h"
#include "platform/TerminationSignals.h"
#include "views/CorvaneViews.h"
#include "views/TVKInstallerWindows.h"
#include "views/TVKQtDialogs.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <memory>

namespace {

void describe(QCommandLineParser& parser, const QCommandLineOption& install,
              const QCommandLineOption& uninstall)
{
    parser.setApplicationDescription(QStringLiteral(
        "Configures the Corvane RS control surface and its expanders: one keyset per "
        "application, four layers each, an action on every control. The background service "
        "performs the actions; it is installed, with its login entry, on the first start.\n"
        "The configuration lives in $XDG_CONFIG_HOME; the service's message ports in "
        "$TVK_PORT_DIR (else $XDG_RUNTIME_DIR/tvk)."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({install, uninstall});
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QStringLiteral("Keyset files (.CvKs) to import."),
                                 QStringLiteral("[files...]"));
}

} // namespace

int main(int argc, char** argv)
{
    const QCommandLineOption install(
        QStringLiteral("install"),
        QStringLiteral("Install the background components without windows, and exit."));
    const QCommandLineOption uninstall(
        QStringLiteral("uninstall"),
        QStringLiteral("Uninstall the background components without windows, and exit."));

    // Help, the version and installing need no display: packaging scripts and administrators
    // run them anywhere, so these are answered before any window system is opened.
    bool windowless = false;
    bool textOnly = false;
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        windowless = windowless || argument == "--install" || argument == "--uninstall";
        textOnly = textOnly || argument == "-h" || argument == "--help" || argument == "-?" ||
                   argument == "--help-all" || argument == "-v" || argument == "--version";
    }
    if (textOnly) {
        QCoreApplication application(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("Corvane"));
        QCoreApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
        QCommandLineParser parser;
        describe(parser, install, uninstall);
        parser.process(application); // prints and exits
        return 0;
    }
    // The installer prints plain progress lines; what is logged meanwhile, Qt's own warnings
    // included, is kept back and shown only when it failed. The controller draws its generic
    // icons even then, which needs the GUI application on a screen of its own making.
    std::unique_ptr<corvane::LogCapture> logged;
    if (windowless) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        logged = std::make_unique<corvane::LogCapture>();
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            corvane::log(message);
        });
    } else {
        // A termination signal from now on is kept until the program can honour it.
        corvane::TerminationSignals::catchEarly();
    }
    // A file size limit (ulimit -f) makes a write that passes it fail, like a full disk, rather
    // than end the program: the recovery journal and the store report it and carry on.
    std::signal(SIGXFSZ, SIG_IGN);
    std::unique_ptr<QCoreApplication> application =
        windowless ? std::make_unique<QGuiApplication>(argc, argv)
                   : std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Corvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QCommandLineParser parser;
    describe(parser, install, uninstall);
    parser.process(*application);

    if (windowless) {
        CorvaneController controller;
        const int code =
            TVKConsoleInstaller::run(parser.isSet(uninstall), controller.controllerName(),
                                     controller.needsSetup(), TVKInstallEnvironment::system());
        // The log is for diagnosing a failure, not for the person or script watching.
        if (code != 0) {
            for (const QString& line : logged->lines())
                std::fprintf(stderr, "%s\n", qPrintable(line));
        }
        return code;
    }

    QGuiApplication::setDesktopFileName(QStringLiteral("corvane"));
    QGuiApplication::setWindowIcon(CorvaneViews::applicationIcon());
    // The configuration is written when the main window closes, not when the last one does.
    QApplication::setQuitOnLastWindowClosed(false);

    QStringList files;
    for (const QString& file : parser.positionalArguments())
        files.append(QFileInfo(file).absoluteFilePath());
    // A running Corvane opens the files itself and comes to the front.
    if (TVKInstanceLink::sendToRunningInstance(files))
        return 0;
    TVKInstanceLink instance;
    instance.listen();

    corvane::TerminationSignals signals;
    TVKQtDialogs dialogs;
    CorvaneController controller;
    CorvaneViews views(controller, dialogs);
    views.endProgramWith(signals);
    const auto open = [&](const QStringList& paths) {
        views.makeKeyAndOrderFront(TVKWindow::Main);
        for (const QString& path : paths)
            controller.importKeysetFile(path);
    };
    QObject::connect(&instance, &TVKInstanceLink::openRequested, &controller, open);
    views.start();
    if (!files.isEmpty())
        QTimer::singleShot(0, &controller, [open, files] { open(files); });
    // Ended during the start-up (a signal or Quit while one of its alerts was up): the
    // configuration is written, and the main loop is not entered.
    if (views.isEnding())
        return 0;
    return application->exec();
}
