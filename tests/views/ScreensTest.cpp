// The screens a person looks at, captured on a real X server (Xvfb) into the build folder's
// "screens" folder: the main window in both finishes and in a light and a dark theme, every
// expander window, the sheets, the about box, the manual, the installer's log and the
// uninstaller, New Keyset's list, and a greyed Window menu item's reason. The test checks that each
// capture shows something; the judging is done by eye.
#include "TestConfig.h"
#include "ViewsFixture.h"
#include "app/TVKMenuCommand.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKAboutBox.h"
#include "views/TVKEditorView.h"
#include "views/TVKHelpWindow.h"
#include "views/TVKInstallerWindows.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKMultiStateButton.h"
#include "views/TVKQtDialogs.h"
#include "views/TVKSheetDialogs.h"
#include "views/editors/TVKBuiltInActionEditorView.h"
#include "views/editors/TVKDisplayPreview.h"
#include "views/editors/TVKDisplayTextEditorView.h"
#include "views/editors/TVKEmulationActionEditorView.h"
#include "views/editors/TVKHiResTextEditorView.h"
#include "views/editors/TVKIconEditorView.h"
#include "views/editors/TVKKeySequenceActionEditorView.h"
#include "views/editors/TVKKeystrokeEntryView.h"
#include "views/editors/TVKMIDIActionEditorView.h"
#include "views/editors/TVKModifierBoxes.h"
#include "views/editors/TVKMouseActionEditorView.h"
#include "views/editors/TVKSpecialActionEditorView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QPalette>
#include <QScreen>
#include <QSet>
#include <QSpinBox>
#include <QStyleFactory>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QToolTip>

using namespace corvane;
using namespace corvane::test;

namespace {

QString screensFolder()
{
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    const QString folder = QStringLiteral(CORVANE_BINARY_DIR "/screens/%1x").arg(scale);
    QDir().mkpath(folder);
    return folder;
}

void capture(QWidget& window, const QString& name)
{

    window.show();
    window.raise();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QTest::qWait(50);
    const QImage image = window.grab().toImage();
    ASSERT_FALSE(image.isNull());
    // Not one flat colour: the window drew its contents.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    EXPECT_GT(colours.size(), 8) << name.toStdString();
    ASSERT_TRUE(image.save(QDir(screensFolder()).filePath(name + QStringLiteral(".png"))));
}

QPalette darkPalette()
{
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x2b, 0x2d, 0x31));
    p.setColor(QPalette::WindowText, QColor(0xe6, 0xe7, 0xe9));
    p.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    p.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2b));
    p.setColor(QPalette::Text, QColor(0xe6, 0xe7, 0xe9));
    p.setColor(QPalette::PlaceholderText, QColor(0x8e, 0x91, 0x96));
    p.setColor(QPalette::Button, QColor(0x35, 0x37, 0x3c));
    p.setColor(QPalette::ButtonText, QColor(0xe6, 0xe7, 0xe9));
    p.setColor(QPalette::Highlight, QColor(0x3d, 0x8b, 0xfd));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x35, 0x37, 0x3c));
    p.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe7, 0xe9));
    return p;
}

// The Window menu open, with the tool tip of the greyed TLW item: what a person pointing at it
// reads.
void windowMenuTip(TVKMainWindow& main, TVKController& controller, const QString& name)
{
    QMenu* menu = nullptr;
    for (QAction* top : main.tvkMenuBar()->actions()) {
        if (top->menu() && top->text().remove(QLatin1Char('&')) == QStringLiteral("Window"))
            menu = top->menu();
    }
    ASSERT_NE(menu, nullptr);
    menu->popup(main.mapToGlobal(QPoint(40, 30)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    const QAction* tlw = controller.menuItem(TVKMenuCommand::ShowTLW);
    ASSERT_FALSE(tlw->isEnabled());
    const QPoint at = menu->actionGeometry(const_cast<QAction*>(tlw)).center();
    QHelpEvent help(QEvent::ToolTip, at, menu->mapToGlobal(at));
    QApplication::sendEvent(menu, &help);
    QTest::qWait(400);
    const QRect area =
        QRect(menu->geometry().topLeft(), QSize(menu->width() + 700, menu->height() + 90));
    const QPixmap shot =
        menu->screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    ASSERT_TRUE(shot.save(QDir(screensFolder()).filePath(name + QStringLiteral(".png"))));
    menu->hide();
}

} // namespace

TEST_F(ViewsTest, Screens)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    installCatalogue();
    startApplication();
    auto* model = dynamic_cast<CorvaneModelData*>(controller->modelData());
    ASSERT_NE(model, nullptr);
    auto& corvane = dynamic_cast<CorvaneController&>(*controller);
    // Something selected, as a person would have it: the Play key, touched on the surface.
    service->command(QStringLiteral("send TCtl 1 3 0 1"));
    ASSERT_TRUE(spinUntil([&] { return controller->selectedGroup() == 1; }));
    nextFrame();

    TVKMultiStateButton& play = *mainSurface().buttonWithTag(1);
    // The selection stays lit through every window and finish, at every scale.
    const auto lit = [&](const char* where) {
        EXPECT_EQ(play.cell().state(), 1) << where;
        const QImage picture = play.grab().toImage();
        // Beside the key's glyph, on its lit face.
        const QRectF key = play.hitTestPath(play.imageIndexForControl(3))->boundingRect();
        const QPoint centre =
            QPointF(key.left() + 5, key.center().y()).toPoint() * picture.devicePixelRatio();
        EXPECT_GT(qRed(picture.pixel(centre)), 200) << where << ": the Play key is not lit";
    };
    capture(*app->mainWindow(), QStringLiteral("main-midnight"));
    lit("after the first capture");
    windowMenuTip(*app->mainWindow(), *controller, QStringLiteral("window-menu-why"));
    model->setHardwareStyle(1);
    corvane.setHardwareGraphics(1);
    capture(*app->mainWindow(), QStringLiteral("main-silver"));

    for (const auto& [window, name] : {std::pair{TVKWindow::TL, QStringLiteral("tl")},
                                       std::pair{TVKWindow::TLW, QStringLiteral("tlw")},
                                       std::pair{TVKWindow::TLW2, QStringLiteral("tlw2")},
                                       std::pair{TVKWindow::NV, QStringLiteral("nv")}}) {
        app->show(window);
        capture(*app->window(window), name + QStringLiteral("-silver"));
    }
    lit("with the expanders");
    app->showDZ(true);
    capture(*app->dzWindow(), QStringLiteral("dz-silver"));

    model->setHardwareStyle(0);
    corvane.setHardwareGraphics(0);
    for (const auto& [window, name] : {std::pair{TVKWindow::TL, QStringLiteral("tl")},
                                       std::pair{TVKWindow::TLW, QStringLiteral("tlw")},
                                       std::pair{TVKWindow::TLW2, QStringLiteral("tlw2")},
                                       std::pair{TVKWindow::NV, QStringLiteral("nv")}})
        capture(*app->window(window), name + QStringLiteral("-midnight"));
    capture(*app->dzWindow(), QStringLiteral("dz-midnight"));

    lit("back in midnight");
    controller->showSummary();
    app->summary()->searchField()->setText(QStringLiteral("Fader 1"));
    QTest::qWait(300);
    capture(*app->summary(), QStringLiteral("summary"));

    controller->showPreferencePanel();
    capture(*app->preferencesSheet(), QStringLiteral("preferences"));
    controller->cancelPrefsWindow();
    controller->showAppPortPanel();
    capture(*app->appPortSheet(), QStringLiteral("application-port"));
    controller->cancelAppPortWindow();
    app->showHelp(QStringLiteral("expanders"));
    capture(*app->helpWindow(), QStringLiteral("help"));

    lit("after the sheet");
    app->show(TVKWindow::AboutBox);
    QTest::qWait(700); // the light sweep half way across
    capture(*app->aboutBox(), QStringLiteral("about"));

    lit("after the about box");
    // The inspector with every kind of editor, each on the tab a person would use most.
    controller->handleEmulationMenu(qint64(corvane::EmulationMode::A));
    controller->showInspector();
    InspectorController& inspector = *app->inspector();
    const auto shoot = [&](int type, const char* tab, const QString& name,
                           const std::function<void(QWidget&)>& edit = {}) {
        ASSERT_NE(selectFirstOfType(type), nullptr) << name.toStdString();
        TVKEditorView& editor = *inspector.currentEditor();
        editor.selectActionEditorWithIdentifier(fourCharCodeFromString(QString::fromLatin1(tab)));
        if (edit)
            edit(*editor.editorTabs()->currentWidget());
        capture(*inspector.panel(), QStringLiteral("inspector-") + name);
    };
    const auto typeKey = [](QWidget& tab) {
        auto& keys = static_cast<TVKKeySequenceActionEditorView&>(tab);
        QTest::mouseClick(keys.entryView(), Qt::LeftButton);
        QTest::keyClick(keys.entryView(), Qt::Key_S, Qt::ControlModifier);
    };
    const auto customMIDI = [](QWidget& tab) {
        auto& midi = static_cast<TVKMIDIActionEditorView&>(tab);
        midi.modeGroup()->button(2)->click();
        midi.commandPopUp()->setCurrentIndex(midi.commandPopUp()->findData(0xB0));
        Q_EMIT midi.commandPopUp()->activated(midi.commandPopUp()->currentIndex());
        midi.data1()->setValue(7);
        midi.data2FollowsValue()->click();
    };
    shoot(ControlType::Button, "KEYS", QStringLiteral("keys"), typeKey);
    shoot(ControlType::Encoder, "MIDI", QStringLiteral("midi"), customMIDI);
    shoot(ControlType::FourWay, "MOUS", QStringLiteral("mouse-trackball"));
    shoot(ControlType::Jog, "EMUL", QStringLiteral("emulation-jog"));
    // A keyset of an application the command catalogue knows.
    controller->modelData()->selectedKeyset()->setBundleID(
        QStringLiteral("org.audacityteam.Audacity"));
    controller->modelData()->selectedKeyset()->setName(QStringLiteral("Audacity"));
    controller->notifyWithMessage(note::SelectedKeysetChange{});
    shoot(ControlType::Button, "BILT", QStringLiteral("builtin"));
    shoot(ControlType::Button, "SPEC", QStringLiteral("special"));
    shoot(ControlType::LCDDisplay, "TEXT", QStringLiteral("lcd-text"));
    shoot(ControlType::TimecodeDisplay, "EMUL", QStringLiteral("timecode"));
    shoot(ControlType::MultiColorButton, "MIDI", QStringLiteral("multicolour"), customMIDI);
    shoot(ControlType::LCDButtonDisplay, "TEXT", QStringLiteral("lcd-button-text"));
    shoot(
        ControlType::LCDButtonDisplay, "ICON", QStringLiteral("lcd-button-icon"),
        [](QWidget& tab) { static_cast<TVKIconEditorView&>(tab).iconGroup()->button(0)->click(); });
    capture(*app->window(TVKWindow::TLW), QStringLiteral("tlw-with-an-icon"));
    shoot(ControlType::NVLCDDisplay, "ENAM", QStringLiteral("nv-display"));
    // In mode C an encoder plays no console control: the emulation tab says so when chosen.
    controller->handleEmulationMenu(3);
    shoot(ControlType::Encoder, "MIDI", QStringLiteral("emulation-refused"), [&](QWidget&) {
        TVKEditorView& editor = *inspector.currentEditor();
        for (int i = 0; i < editor.editorTabs()->count(); ++i)
            if (editor.editorTabs()->tabBar()->tabData(i).value<FourCharCode>() == fourCC("EMUL"))
                editor.editorTabs()->setCurrentIndex(i);
    });
    controller->handleEmulationMenu(1);

    // The installer as the first start shows it, then with its setup page.
    const auto installer = [&](const QString& name) {
        TVKInstallerDialog window(TVKInstallerDialog::Kind::Install, controller->defaults(),
                                  controller->corvaneModelData(), app->mainWindow());
        TVKInstallerFace face;
        face.message = QStringLiteral(
            "Additional software components must be installed in order for the control surface "
            "to function. This installation only takes place the first time you run the "
            "software, after an update, or when you choose \"Install\" from the File Menu.");
        face.cancel = {QStringLiteral("Cancel"), true, true};
        face.proceed = {QStringLiteral("Install"), true, true};
        face.quitMIDIWarningShown = true;
        window.refresh(face);
        window.adjustSize();
        capture(window, name);
        face.cancel.title = QStringLiteral("Setup Later");
        face.proceed.title = QStringLiteral("Apply");
        face.quitMIDIWarningShown = false;
        window.refresh(face);
        window.showSetupPage(QStringLiteral("corvaneEthernet"));
        capture(window, name + QStringLiteral("-setup"));
    };
    installer(QStringLiteral("installer"));
    // The steps' log, and the uninstaller's question.
    const auto log = [&](const QString& name) {
        TVKInstallerDialog window(TVKInstallerDialog::Kind::Install, controller->defaults(),
                                  controller->corvaneModelData(), app->mainWindow());
        TVKInstallerFace face;
        face.message = QStringLiteral(
            "installing midi driver\n________\ninstalling application support\ncould not copy "
            "Tavrik\n    Permission denied\n________\ninstalling background application\n"
            "background application installed\n________\n*** Click Finish to continue ***");
        face.cancel.shown = false;
        face.proceed = {QStringLiteral("Finish"), true, true};
        window.refresh(face);
        window.adjustSize();
        capture(window, name);
        TVKInstallerDialog uninstall(TVKInstallerDialog::Kind::Uninstall, controller->defaults(),
                                     controller->corvaneModelData(), app->mainWindow());
        face.message =
            QStringLiteral("Do you want to uninstall the Corvane Ethernet software components?");
        face.cancel = {QStringLiteral("Cancel"), true, true};
        face.proceed = {QStringLiteral("Uninstall"), true, true};
        face.quitMIDIWarningShown = true;
        uninstall.refresh(face);
        uninstall.adjustSize();
        capture(uninstall, name + QStringLiteral("-uninstall"));
    };
    log(QStringLiteral("installer-log"));
    // New Keyset's list of applications, some of them without an icon.
    const auto chooser = [&](const QString& name) {
        std::vector<DesktopApplication> applications;
        for (const char* title : {"Audacity", "Ardour", "Zrythm", "Bitwig Studio", "Hydrogen"}) {
            DesktopApplication a;
            a.name = QString::fromLatin1(title);
            a.id = a.name.toLower();
            a.iconName = QStringLiteral("no-such-icon-") + a.id;
            applications.push_back(a);
        }
        applications[1].iconName = QStringLiteral("audio-x-generic");
        TVKQtDialogs dialogs;
        dialogs.setParentWindow(app->mainWindow());
        QTimer::singleShot(300, [&] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                capture(*modal, name);
                modal->close();
            }
        });
        (void)dialogs.chooseApplication(applications);
    };
    chooser(QStringLiteral("new-keyset"));

    QApplication::setPalette(darkPalette());
    installer(QStringLiteral("installer-dark-theme"));
    log(QStringLiteral("installer-log-dark-theme"));
    chooser(QStringLiteral("new-keyset-dark-theme"));
    controller->showPreferencePanel();
    capture(*app->preferencesSheet(), QStringLiteral("preferences-dark-theme"));
    controller->cancelPrefsWindow();
    capture(*app->helpWindow(), QStringLiteral("help-dark-theme"));
    shoot(ControlType::LCDDisplay, "TEXT", QStringLiteral("lcd-text-dark-theme"));
    shoot(ControlType::Button, "KEYS", QStringLiteral("keys-dark-theme"));
    shoot(ControlType::MultiColorButton, "MIDI", QStringLiteral("multicolour-dark-theme"));
    capture(*app->mainWindow(), QStringLiteral("main-midnight-dark-theme"));
    capture(*app->summary(), QStringLiteral("summary-dark-theme"));
    capture(*app->nvController(), QStringLiteral("nv-midnight-dark-theme"));
}
