// The controller run as the application runs it, without windows, driven by commands on
// standard input: the tests start it as a child process, edit through it, and then quit it with
// a signal or kill it outright.
#include "ScriptedViews.h"
#include "app/CorvaneController.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "model/TVKModelData.h"
#include "platform/TerminationSignals.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <cstdio>
#include <unistd.h>

namespace {

void reply(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// Posts an edit as the inspector does.
template <class Edit>
void post(const Edit& edit)
{
    corvane::NotificationCenter::defaultCenter().post(edit);
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    corvane::TerminationSignals signals;
    ScriptedViews views;
    CorvaneController controller;
    controller.setViews(views.interfaces());
    QObject::connect(&signals, &corvane::TerminationSignals::terminationRequested, &app, [&] {
        controller.handleTerminateMessage();
        app.quit();
    });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &app,
                     [&] { controller.handleTerminateMessage(); });

    controller.awakeFromNib();
    views.existing.insert(TVKWindow::Main);
    controller.windowIsAwake();
    controller.applicationDidFinishLaunching();
    for (const TVKAlert& alert : views.alerts)
        reply(QStringLiteral("alert %1: %2").arg(alert.message, alert.informativeText));
    reply(QStringLiteral("ready"));

    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &app, [&] {
        char buffer[4096];
        const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (n <= 0) {
            input.setEnabled(false);
            return;
        }
        pending.append(buffer, n);
        qsizetype end = 0;
        while ((end = pending.indexOf('\n')) >= 0) {
            const QStringList words =
                QString::fromUtf8(pending.left(end)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            pending.remove(0, end + 1);
            if (words.isEmpty())
                continue;
            const QString& command = words.first();
            const auto arg = [&](int i) { return words.value(i).toLongLong(); };
            using namespace corvane;
            if (command == QLatin1String("select")) {
                controller.handleTVKControl(arg(2), arg(1));
            } else if (command == QLatin1String("layer")) {
                controller.handleTVKLayerSelector(arg(1));
            } else if (command == QLatin1String("keyset")) {
                controller.setSelectedKeyset(arg(1));
            } else if (command == QLatin1String("latch")) {
                post(note::LatchChange{arg(1) != 0, arg(2) != 0});
            } else if (command == QLatin1String("color")) {
                post(note::ColorChange{arg(1), arg(2) != 0});
            } else if (command == QLatin1String("name")) {
                post(note::UserNameChange{words.value(1), false});
            } else if (command == QLatin1String("delete-action")) {
                post(note::DeleteAction{arg(1) != 0});
            } else if (command == QLatin1String("set-all")) {
                controller.handleSetAllMenuItems(arg(1));
            } else if (command == QLatin1String("emulation")) {
                controller.handleEmulationMenu(arg(1));
            } else if (command == QLatin1String("lock")) {
                controller.handleLockUnlockMenu();
            } else if (command == QLatin1String("lock-button")) {
                controller.handleLockUnlockButton(arg(1) != 0);
            } else if (command == QLatin1String("one-touch")) {
                controller.handleSetOneTouchRecord();
            } else if (command == QLatin1String("one-touch-default")) {
                controller.handleDefaultOneTouchRecord();
            } else if (command == QLatin1String("clear")) {
                controller.handleClearKeyset();
            } else if (command == QLatin1String("delete-keyset")) {
                views.alertAnswers.push_back(0);
                controller.handleDeleteKeyset();
            } else if (command == QLatin1String("undo")) {
                controller.undoManager().undo();
            } else if (command == QLatin1String("redo")) {
                controller.undoManager().redo();
            } else if (command == QLatin1String("dump")) {
                PlistValue dict = PlistValue::makeDict();
                controller.modelData()->writeTo(dict);
                PlistCodec::writeFile(words.value(1), dict);
            } else {
                reply(QStringLiteral("unknown %1").arg(command));
                continue;
            }
            reply(QStringLiteral("ok %1").arg(command));
        }
    });
    return app.exec();
}
