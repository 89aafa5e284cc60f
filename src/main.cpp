// Corvane: the configuration application for the Corvane control surfaces.
#include "app/CorvaneController.h"
#include "app/TVKInstanceLink.h"
#include "platform/TerminationSignals.h"
#include "views/CorvaneViews.h"
#include "views/TVKInstallerWindows.h"
#include "views/TVKQtDialogs.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>
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

    // Installing needs no display: packaging scripts and administrators run it anywhere.
    bool windowless = false;
    for (int i = 1; i < argc; ++i)
        windowless = windowless || qstrcmp(argv[i], "--install") == 0 ||
                     qstrcmp(argv[i], "--uninstall") == 0;
    // The controller draws its generic icons even then, which needs the GUI application on a
    // screen of its own making.
    if (windowless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
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
        return TVKConsoleInstaller::run(parser.isSet(uninstall), controller.controllerName(),
                                        controller.needsSetup(), TVKInstallEnvironment::system());
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
    return application->exec();
}
