// Corvane: the configuration application for the Corvane control surfaces.
#include "app/CorvaneController.h"
#include "platform/TerminationSignals.h"
#include "views/CorvaneViews.h"
#include "views/TVKQtDialogs.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Corvane"));
    QApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("corvane"));
    // The configuration is written when the main window closes, not when the last one does.
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Configures the Corvane RS control surface and its expanders: one keyset per "
        "application, four layers each, an action on every control. The background service "
        "performs the actions; start it first (or corvane-service-sim without hardware).\n"
        "The configuration lives in $XDG_CONFIG_HOME; the service's message ports in "
        "$TVK_PORT_DIR (else $XDG_RUNTIME_DIR/tvk)."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(app);

    corvane::TerminationSignals signals;
    TVKQtDialogs dialogs;
    CorvaneController controller;
    CorvaneViews views(controller, dialogs);
    views.endProgramWith(signals);
    views.start();
    return app.exec();
}
