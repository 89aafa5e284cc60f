// The windows driven as a person drives them, against the real simulated service.
#include "FileSizeLimit.h"
#include "ViewsFixture.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "service/ConfigurationEdits.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvanePictures.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKBundle.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKMultiStateButton.h"

#include <QAction>
#include <QJsonArray>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QTest>
#include <QToolButton>

using namespace corvane;
using namespace corvane::test;

namespace {

// On-screen groups of the main unit and the NV used below.
constexpr qint64 kM = 0;
constexpr qint64 kTransport = 1;
constexpr qint64 kW1 = 2; // W1 and W7, drawn at both ends of the row
constexpr qint64 kW2 = 3;
constexpr qint64 kFirstRing = 17;
constexpr qint64 kNVLCDButtons = 40;

bool pictureLit(const TVKMultiStateButton& picture, qint64 k)
{
    return picture.cell().state() == 1 && picture.shownImage() == picture.images().value(k);
}

} // namespace

TEST_F(ViewsTest, AClickOnAControlSelectsItAndMovesTheSurfaceHighlight)
{
    startApplication();
    CorvaneSurfaceView& surface = mainSurface();
    TVKMultiStateButton& m = button(surface, kM);

    // State 4 of the M picture is M4, on-screen control 3.
    qsizetype from = mark();
    clickSurface(surface, m.geometry().topLeft() + insideControl(m, 4));
    EXPECT_EQ(controller->selectedGroup(), kM);
    EXPECT_EQ(controller->selectedControl(), 3);
    EXPECT_TRUE(pictureLit(m, 4));
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    const std::vector<QJsonObject> echoes = received(QStringLiteral("TCtl"), from);
    // Off for the control selected before, then on for M4 (model-data group 0, index 3).
    EXPECT_EQ(words(echoes[0]).back(), 0);
    EXPECT_EQ(words(echoes[1]), (std::vector<qint64>{0, 3, 0, 1}));
    EXPECT_FALSE(app->mainWindow()->statusText().isEmpty());
    EXPECT_TRUE(app->mainWindow()->statusText().startsWith(QStringLiteral("M4")));

    // The same control again sends nothing; a click between the controls keeps the selection.
    from = mark();
    clickSurface(surface, m.geometry().topLeft() + insideControl(m, 4));
    QTest::mouseClick(&m, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    EXPECT_EQ(m.integerValue(), 4);
    EXPECT_EQ(controller->selectedControl(), 3);
    QTest::qWait(200);
    EXPECT_TRUE(received(QStringLiteral("TCtl"), from).empty());

    // Another group: the first picture goes dark, the transport lights.
    TVKMultiStateButton& transport = button(surface, kTransport);
    clickSurface(surface, transport.geometry().topLeft() + insideControl(transport, 4));
    EXPECT_EQ(controller->selectedGroup(), kTransport);
    EXPECT_EQ(controller->selectedControl(), 3);
    EXPECT_EQ(m.cell().state(), 0);
    EXPECT_TRUE(pictureLit(transport, 4));

    // From the keyboard: the arrows step through the group's controls.
    transport.setFocus();
    QTest::keyClick(&transport, Qt::Key_Left);
    EXPECT_EQ(controller->selectedControl(), 2);
    EXPECT_TRUE(pictureLit(transport, 3));
}

TEST_F(ViewsTest, ClicksReachTheGroupWhoseControlLiesThereThroughOverlappingPictures)
{
    startApplication();
    CorvaneSurfaceView& surface = mainSurface();
    // W7 belongs to the group drawn at both ends of the row, whose frame covers W2…W6 too.
    TVKMultiStateButton& outer = button(surface, kW1);
    TVKMultiStateButton& inner = button(surface, kW2);
    const QPoint w7 = outer.geometry().topLeft() + insideControl(outer, 2);
    const QPoint w2 = inner.geometry().topLeft() + insideControl(inner, 1);
    EXPECT_EQ(surface.childAt(w7), &outer);
    EXPECT_EQ(surface.childAt(w2), &inner);
    clickSurface(surface, w2);
    EXPECT_EQ(controller->selectedGroup(), kW2);
    EXPECT_EQ(controller->modelDataControlIndex(), 1);
    clickSurface(surface, w7);
    EXPECT_EQ(controller->selectedGroup(), kW1);
    EXPECT_EQ(controller->modelDataControlIndex(), 6);
}

TEST_F(ViewsTest, ATouchOnTheSurfaceLightsThePictureOfThatControl)
{
    startApplication();
    CorvaneSurfaceView& surface = mainSurface();
    // Trackball 2 (model-data group 11, index 1): on screen the second ring's control 1.
    qsizetype from = mark();
    service->command(QStringLiteral("send TCtl 11 1 0 1"));
    TVKMultiStateButton& ring = button(surface, kFirstRing + 1);
    ASSERT_TRUE(spinUntil([&] { return ring.cell().state() == 1; }));
    EXPECT_TRUE(pictureLit(ring, 1));
    for (TVKMultiStateButton* other : surface.buttons()) {
        if (other != &ring) {
            EXPECT_EQ(other->cell().state(), 0) << other->descriptionKey().toStdString();
        }
    }
    EXPECT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));

    // A control the model does not have is refused by the controller: M4 stays lit and
    // selected.
    TVKMultiStateButton& m = button(surface, kM);
    from = mark();
    service->command(QStringLiteral("send TCtl 0 3 0 1"));
    ASSERT_TRUE(spinUntil([&] { return pictureLit(m, 4); }));
    // Its echo is in before the next touch is looked at.
    ASSERT_TRUE(service->waitFor(
        [](const QJsonObject& o) {
            return o.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                   words(o) == std::vector<qint64>{0, 3, 0, 1};
        },
        3000, from));
    from = mark();
    service->command(QStringLiteral("send TCtl 0 7 0 1"));
    ASSERT_TRUE(service->waitFor(
        [](const QJsonObject& o) {
            return o.value(QStringLiteral("sent")).toString() == QStringLiteral("TCtl");
        },
        3000, from));
    QTest::qWait(100);
    EXPECT_EQ(controller->modelDataControlIndex(), 3);
    EXPECT_TRUE(pictureLit(m, 4));
    EXPECT_TRUE(received(QStringLiteral("TCtl"), from).empty());

    // A display click turns every picture off and selects the display.
    TVKDisplayView* lcd = surface.displayWithTag(1);
    ASSERT_NE(lcd, nullptr);
    QTest::mouseClick(lcd, Qt::LeftButton, Qt::NoModifier, lcd->cells().back().frame.center());
    EXPECT_TRUE(controller->displaySelected());
    qint64 display = -1;
    qint64 group = -1;
    controller->selectedDisplay(display, group);
    EXPECT_EQ(display, 3);
    EXPECT_EQ(group, 0);
    EXPECT_TRUE(lcd->cellIsSelected(lcd->cells().back()));
    EXPECT_EQ(ring.cell().state(), 0);
}

TEST_F(ViewsTest, TheLayerSelectorAndTheLockFollowTheController)
{
    startApplication();
    TVKMainWindow& main = *app->mainWindow();
    EXPECT_TRUE(main.layerButton(0)->isChecked());
    QTest::mouseClick(main.layerButton(2), Qt::LeftButton);
    EXPECT_EQ(controller->selectedLayer(), 2);
    EXPECT_TRUE(main.layerButton(2)->isChecked());

    // A layer chosen on the surface moves the selector.
    controller->setSelectedLayer(1);
    controller->notifyWithMessage(note::RemoteLayerChange{});
    EXPECT_TRUE(main.layerButton(1)->isChecked());

    QTest::mouseClick(main.lockButton(), Qt::LeftButton);
    EXPECT_TRUE(controller->modelData()->keysetAtIndex(0)->locked());
    EXPECT_TRUE(main.lockButtonState());
    EXPECT_EQ(main.keysetName(), QStringLiteral("Default"));
    EXPECT_EQ(controller->menuItem(TVKMenuCommand::HandleLockUnlockMenu)->text(),
              QStringLiteral("Unlock Default keyset"));
}

TEST_F(ViewsTest, TheFinishChangesEveryPictureAndTheRingsWhiteForBlue)
{
    startApplication();
    auto* model = dynamic_cast<CorvaneModelData*>(controller->modelData());
    ASSERT_NE(model, nullptr);
    app->show(TVKWindow::NV);
    app->show(TVKWindow::TL);
    std::vector<CorvaneSurfaceView*> surfaces = {&mainSurface(),
                                                 app->expander(TVKWindow::NV)->surface(),
                                                 app->expander(TVKWindow::TL)->surface()};
    const auto pictures = [&] {
        std::vector<QImage> out;
        for (CorvaneSurfaceView* s : surfaces) {
            out.push_back(s->grab().toImage());
            for (TVKMultiStateButton* b : s->buttons())
                out.push_back(b->grab().toImage());
        }
        return out;
    };
    ASSERT_EQ(model->hardwareStyle(), 0);
    // Trackball 1 set to colour 2: in the midnight finish its ring shows the white set.
    auto* trackball = dynamic_cast<TVK4WayControl*>(model->controlForKeyset(0, 0, 11, 0));
    ASSERT_NE(trackball, nullptr);
    trackball->setOnColor(2);
    controller->notifyWithMessage(note::SelectedLayerChange{});
    auto& ring = dynamic_cast<CorvaneTrackballRingControl&>(button(mainSurface(), kFirstRing));
    EXPECT_TRUE(ring.image().startsWith(QStringLiteral("TrackballRing_White_")));
    EXPECT_TRUE(ring.image().endsWith(QStringLiteral("_Mid")));
    const std::vector<QImage> midnight = pictures();

    int posted = 0;
    const NotificationCenter::Observation counting =
        NotificationCenter::defaultCenter().observe<note::HdwStyChg>(
            nullptr, [&](const note::HdwStyChg&) { ++posted; });
    model->setHardwareStyle(1);
    dynamic_cast<CorvaneController&>(*controller).setHardwareGraphics(1);
    EXPECT_EQ(posted, 1);
    EXPECT_EQ(mainSurface().picture(), QStringLiteral("CorvaneRS"));
    EXPECT_TRUE(ring.image().startsWith(QStringLiteral("TrackballRing_Blue_")));
    EXPECT_FALSE(ring.image().endsWith(QStringLiteral("_Mid")));
    const std::vector<QImage> silver = pictures();
    ASSERT_EQ(midnight.size(), silver.size());
    for (size_t i = 0; i < silver.size(); ++i)
        EXPECT_NE(midnight[i], silver[i]) << "picture " << i << " kept its finish";
}

TEST_F(ViewsTest, TheNVMenuIsInTheMenusOnlyWhileTheNVWindowIsMain)
{
    startApplication();
    app->show(TVKWindow::NV);
    CorvaneNVController& nv = *app->nvController();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&nv));
    const auto hasNVMenu = [&](QMenuBar* bar) {
        return bar->actions().contains(nv.corvaneNVMenu()->menuAction());
    };
    EXPECT_TRUE(spinUntil([&] { return controller->corvaneNVMenuActive(); }));
    EXPECT_TRUE(hasNVMenu(nv.tvkMenuBar()));
    EXPECT_TRUE(hasNVMenu(app->mainWindow()->tvkMenuBar()));

    app->makeKeyAndOrderFront(TVKWindow::Main);
    ASSERT_TRUE(QTest::qWaitForWindowActive(app->mainWindow()));
    EXPECT_TRUE(spinUntil([&] { return !controller->corvaneNVMenuActive(); }));
    EXPECT_FALSE(hasNVMenu(nv.tvkMenuBar()));
    EXPECT_FALSE(hasNVMenu(app->mainWindow()->tvkMenuBar()));
}

TEST_F(ViewsTest, TheNVShowsTheBankOfTheButtonTouchedAndGroupsItsButtons)
{
    startApplication();
    app->show(TVKWindow::NV);
    CorvaneNVController& nv = *app->nvController();
    auto& lcd = dynamic_cast<CorvaneBankedPicture&>(button(*nv.surface(), kNVLCDButtons));

    // Button 7 of bank 2 is control 30 of the 240.
    service->command(QStringLiteral("send TCtl 24 30 0 1"));
    ASSERT_TRUE(spinUntil([&] { return nv.bank() == 1; }));
    EXPECT_TRUE(pictureLit(lcd, 7));

    // Clicking button 3 in that bank selects control 26.
    clickSurface(*nv.surface(), lcd.geometry().topLeft() + insideControl(lcd, 3));
    EXPECT_EQ(controller->modelDataControlIndex(), 26);

    views.textAnswers.push_back(QStringLiteral("Strings"));
    QAction newGroup;
    TVKMenuItems::setCommand(&newGroup, TVKMenuCommand::HandleCorvaneNVMenuItems,
                             CorvaneNVController::NewGroup);
    ASSERT_TRUE(controller->validateMenuItem(&newGroup));
    controller->perform(&newGroup);
    auto* model = dynamic_cast<CorvaneModelData*>(controller->modelData());
    ASSERT_EQ(model->numCorvaneNVGroups(), 1);
    EXPECT_EQ(model->nameOfGroupWithID(0), QStringLiteral("Strings"));
    EXPECT_EQ(model->corvaneNVGroupForButtonWithID(26), 0);
    ASSERT_EQ(controller->selectGroupMenu().size(), 1u);
    EXPECT_EQ(controller->selectGroupMenu().front()->text(), QStringLiteral("Strings"));

    // The group reached the service, and the recovery journal keeps it: the stored
    // configuration with the journal applied, as the next start after a crash reads it, has it.
    EXPECT_TRUE(waitForCount(QStringLiteral("TUNV"), 2, 0));
    EXPECT_TRUE(serviceInStep());
    const PlistValue stored = TVKUserDefaults(storePath).objectForKey(key::ModelData);
    std::unique_ptr<TVKModelData> recovered = stored.isDict()
                                                  ? controller->makeModelDataWithArchive(stored)
                                                  : controller->makeModelData();
    for (const TVKRecoveryJournal::Record& record :
         TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath)).read().records) {
        // A compacted journal starts from its snapshot of the configuration.
        if (record.id == TVKRecoveryJournal::Snapshot) {
            const PlistReadResult snapshot = PlistCodec::read(record.body);
            ASSERT_TRUE(snapshot.ok);
            recovered = controller->makeModelDataWithArchive(snapshot.value.value(key::ModelData));
            continue;
        }
        ASSERT_TRUE(applyConfigurationMessage(*recovered, record.id, record.body,
                                              record.editedKeyset, nullptr));
    }
    PlistValue mine = PlistValue::makeDict();
    controller->modelData()->writeTo(mine);
    PlistValue theirs = PlistValue::makeDict();
    recovered->writeTo(theirs);
    EXPECT_EQ(theirs.value(key::Keysets), mine.value(key::Keysets));
}

TEST_F(ViewsTest, TheVirtualSurfaceTouchesControlsAndLightsTheSelection)
{
    ASSERT_TRUE(startService({QStringLiteral("--window")}));
    startApplication();
    TVKMultiStateButton& m = button(mainSurface(), kM);
    // The simulator draws the same layout: the point of M3 in the application is M3 there.
    const QPoint m3 = m.geometry().topLeft() + insideControl(m, 3);
    const qsizetype from = mark();
    service->command(QStringLiteral("click CorvaneRS %1 %2").arg(m3.x()).arg(m3.y()));
    ASSERT_TRUE(spinUntil([&] { return controller->selectedControl() == 2; }));
    EXPECT_EQ(controller->selectedGroup(), kM);
    EXPECT_TRUE(pictureLit(m, 3));
    const auto lit = service->waitFor(
        [](const QJsonObject& line) { return line.contains(QStringLiteral("lit")); }, 5000, from);
    ASSERT_TRUE(lit.has_value());
    EXPECT_EQ(lit->value(QStringLiteral("group")).toInteger(), kM);
    EXPECT_EQ(lit->value(QStringLiteral("control")).toInteger(), 2);
    // Pressed, then let go: the hardware's two reports.
    EXPECT_EQ(service->count(
                  [](const QJsonObject& line) { return line.contains(QStringLiteral("touched")); }),
              2);
}

TEST_F(ViewsTest, WindowsComeBackWhereTheyWereAndTheDisplaysStayOpen)
{
    startApplication();
    app->showDZ(true);
    // Somewhere else on the screen, not where the first start put it.
    TVKMainWindow& main = *app->mainWindow();
    const QRect screen = main.screen()->availableGeometry();
    const QRect outer = main.frameGeometry();
    const QRect inner = main.geometry();
    main.setGeometry(QRect(
        screen.left() + inner.left() - outer.left(), screen.top() + 60 + inner.top() - outer.top(),
        screen.width() - (outer.width() - inner.width()), screen.height() * 3 / 4));
    const QRect frame = main.geometry();
    app->quit();
    app.reset();
    controller.reset();

    startApplication();
    ASSERT_NE(app->dzWindow(), nullptr);
    EXPECT_TRUE(app->dzWindow()->isVisible());
    EXPECT_TRUE(app->dzAction()->isChecked());
    EXPECT_EQ(app->mainWindow()->geometry(), frame);
    // None of it is configuration.
    EXPECT_FALSE(controller->defaults().objectForKey(key::ModelData).contains(key::WindowFrames));
}

// A journal write that fails (a full disk, here the file size limit) puts a warning in the main
// window's status line, with the reason in its tooltip, until the journal is writable again.
TEST_F(ViewsTest, TheStatusLineSaysWhileEditsAreNotProtected)
{
    startApplication();
    TVKMainWindow& main = *app->mainWindow();
    EXPECT_TRUE(main.protectionText().isEmpty());
    const auto* warning = main.findChild<QLabel*>(QStringLiteral("EditsUnprotected"));
    ASSERT_NE(warning, nullptr);
    {
        FileSizeLimit full(0);
        ASSERT_TRUE(full.lowered());
        controller->undoableSetUserName(QStringLiteral("Punch"), 0, 0, 0, 0, false);
        EXPECT_FALSE(main.protectionText().isEmpty());
        EXPECT_TRUE(warning->toolTip().contains(QStringLiteral("large")))
            << qPrintable(warning->toolTip());
        // Another edit says nothing new.
        const QString said = main.protectionText();
        controller->undoableSetUserName(QStringLiteral("Punch 2"), 0, 0, 0, 0, false);
        EXPECT_EQ(main.protectionText(), said);
    }
    ASSERT_TRUE(spinUntil([&] { return main.protectionText().isEmpty(); }, 4000));
    EXPECT_TRUE(warning->isHidden());
}

namespace {

// Every picture of the selected control's group, in the main window and in every unit window
// open, shows that control lit; at least one picture shows it.
::testing::AssertionResult selectionLitEverywhere(const CorvaneViews& app,
                                                  const TVKController& controller)
{
    std::vector<CorvaneSurfaceView*> surfaces{app.mainWindow()->surface()};
    for (const TVKWindow window : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV}) {
        if (app.expander(window) && app.expander(window)->isVisible())
            surfaces.push_back(app.expander(window)->surface());
    }
    int lit = 0;
    for (const CorvaneSurfaceView* surface : surfaces) {
        for (const TVKMultiStateButton* picture : surface->buttons()) {
            if (picture->tag() != controller.selectedGroup())
                continue;
            const qint64 k = picture->imageIndexForControl(controller.selectedControl());
            if (k <= 0)
                continue; // another bank of the NV
            if (!pictureLit(*picture, k))
                return ::testing::AssertionFailure()
                       << surface->unit().toStdString() << " group " << picture->tag()
                       << " does not show control " << controller.selectedControl() << " lit";
            ++lit;
        }
    }
    if (lit == 0)
        return ::testing::AssertionFailure()
               << "no picture shows group " << controller.selectedGroup() << " control "
               << controller.selectedControl();
    return ::testing::AssertionSuccess();
}

} // namespace

// The picture always shows the selected control lit: at start-up, with each unit's window open
// as the preferences ask; and in a unit window opened after its control was touched.
TEST_F(ViewsTest, TheSelectedControlIsLitFromStartUpAndInWindowsOpenedLater)
{
    struct Unit
    {
        const char* name;
        TVKWindow window;
        QString surface;
        void (CorvaneModelData::*set)(bool);
    };
    const std::vector<Unit> units = {
        {"TL", TVKWindow::TL, QStringLiteral("Expander"), &CorvaneModelData::setStandaloneTL},
        {"TLW", TVKWindow::TLW, QStringLiteral("CorvaneTLW"), &CorvaneModelData::setStandaloneTLW},
        {"TLW2", TVKWindow::TLW2, QStringLiteral("CorvaneTLW2"),
         &CorvaneModelData::setStandaloneTLW2},
        {"NV", TVKWindow::NV, QStringLiteral("CorvaneNV"), &CorvaneModelData::setStandaloneNV}};
    for (int standalone = -1; standalone < int(units.size()); ++standalone) {
        SCOPED_TRACE(standalone < 0 ? std::string("the RS alone")
                                    : std::string(units[size_t(standalone)].name) + " alone");
        CorvaneModelData model;
        for (size_t i = 0; i < units.size(); ++i)
            (model.*units[i].set)(int(i) == standalone);
        PlistValue globals = PlistValue::makeDict();
        globals.insert(key::StandaloneTL, PlistValue(qint64(standalone == 0 ? 1 : 0)));
        storeConfiguration(model, globals);
        startApplication();
        if (standalone >= 0) {
            const TVKWindow window = units[size_t(standalone)].window;
            ASSERT_TRUE(
                spinUntil([&] { return app->window(window) && app->window(window)->isVisible(); }));
        }
        EXPECT_TRUE(selectionLitEverywhere(*app, *controller));

        if (standalone < 0) {
            // A unit's first control touched while its window is closed; the window opened
            // then.
            const TVK_Constant_Server& constants = *TVK_Constant_Server::defaultConstantServer();
            for (const Unit& unit : units) {
                SCOPED_TRACE(unit.name);
                const PlistValue& pictures =
                    TVKBundle::mainBundle().surface(unit.surface).value(u"Buttons");
                ASSERT_GT(pictures.size(), 0);
                const qint64 tag = pictures.at(0).value(u"ControlTag").toInteger();
                const QList<int> controls = constants.onscreenControlsInGroup(int(tag));
                ASSERT_FALSE(controls.isEmpty());
                int group = 0;
                int index = 0;
                ASSERT_TRUE(constants.onscreenGroup(int(tag), controls.first(), group, index));
                ASSERT_FALSE(app->window(unit.window) && app->window(unit.window)->isVisible());
                service->command(QStringLiteral("send TCtl %1 %2 0 1").arg(group).arg(index));
                ASSERT_TRUE(spinUntil([&] {
                    return controller->selectedGroup() == tag &&
                           controller->selectedControl() == controls.first();
                }));
                app->show(unit.window);
                EXPECT_TRUE(selectionLitEverywhere(*app, *controller));
                app->close(unit.window);
            }
        }
        app->quit();
        app.reset();
        controller.reset();
    }
}

// The virtual surface lies on the screen whatever its size; where the screen is smaller than
// the RS, the unit scrolls.
TEST_F(ViewsTest, TheVirtualSurfaceLiesOnTheScreenAndScrollsWhereTheScreenIsSmaller)
{
    ASSERT_TRUE(startService({QStringLiteral("--window")}));
    const auto rect = [](const QJsonValue& v) {
        const QJsonArray a = v.toArray();
        return QRect(a.at(0).toInt(), a.at(1).toInt(), a.at(2).toInt(), a.at(3).toInt());
    };
    const qsizetype from = mark();
    service->command(QStringLiteral("window"));
    const auto shown = service->waitFor(
        [](const QJsonObject& line) { return line.contains(QStringLiteral("frame")); }, 5000, from);
    ASSERT_TRUE(shown.has_value());
    const QRect frame = rect(shown->value(QStringLiteral("frame")));
    const QRect available = rect(shown->value(QStringLiteral("available")));
    ASSERT_FALSE(available.isEmpty());
    EXPECT_TRUE(available.contains(frame))
        << frame.x() << "," << frame.y() << " " << frame.width() << "x" << frame.height();
    const PlistValue& size =
        TVKBundle::mainBundle().surface(QStringLiteral("CorvaneRS")).value(u"Size");
    const QJsonArray scrolls = shown->value(QStringLiteral("scrolls")).toArray();
    if (available.width() < size.at(0).toInteger()) {
        EXPECT_GT(scrolls.at(0).toInt(), 0) << "the RS does not scroll across";
    }
    if (available.height() < size.at(1).toInteger()) {
        EXPECT_GT(scrolls.at(1).toInt(), 0) << "the RS does not scroll down";
    }
}

// The layer being edited shows in the selector whatever the palette: the selection colours and
// a bold title, moving with the layer.
TEST_F(ViewsTest, TheLayerSelectorMarksTheLayerEdited)
{
    startApplication();
    TVKMainWindow& main = *app->mainWindow();
    for (const qint64 layer : {qint64(2), qint64(0), qint64(3)}) {
        main.layerButton(int(layer))->click();
        ASSERT_EQ(controller->selectedLayer(), layer);
        for (int each = 0; each < 4; ++each) {
            const QAbstractButton& button = *main.layerButton(each);
            SCOPED_TRACE("layer " + std::to_string(each + 1));
            const QPalette around = button.parentWidget()->palette();
            EXPECT_EQ(button.isChecked(), each == layer);
            EXPECT_EQ(button.font().bold(), each == layer);
            EXPECT_EQ(button.palette().color(QPalette::Button),
                      around.color(each == layer ? QPalette::Highlight : QPalette::Button));
        }
    }
}
