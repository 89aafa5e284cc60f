// Every unit's window with View → Show Assignments on, captured on a real X server into the build
// folder's "screens" folder: both finishes, a light and a dark theme, at the scale the run was
// started with (QT_SCALE_FACTOR). The test checks that the labels were drawn; the judging of
// their legibility is done by eye.
#include "TestConfig.h"
#include "ViewsFixture.h"
#include "app/CorvaneController.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "views/CorvaneAssignmentLabels.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKMainWindow.h"

#include <QApplication>
#include <QDir>
#include <QStyle>
#include <QStyleFactory>
#include <QTest>

using namespace corvane;
using namespace corvane::test;

namespace {

QString labelScreensFolder()
{
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    const QString folder = QStringLiteral(CORVANE_BINARY_DIR "/screens/%1x").arg(scale);
    QDir().mkpath(folder);
    return folder;
}

QPalette darkTheme()
{
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x2b, 0x2d, 0x31));
    p.setColor(QPalette::WindowText, QColor(0xe6, 0xe7, 0xe9));
    p.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    p.setColor(QPalette::Text, QColor(0xe6, 0xe7, 0xe9));
    p.setColor(QPalette::Button, QColor(0x35, 0x37, 0x3c));
    p.setColor(QPalette::ButtonText, QColor(0xe6, 0xe7, 0xe9));
    return p;
}

} // namespace

TEST_F(ViewsTest, LabelledScreens)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    installCatalogue();
    // Some controls named as a person names them; the rest say what their action does.
    CorvaneModelData configured;
    TVKLayer* layer = configured.keysetAtIndex(0)->layerAtIndex(0);
    // The expanders' strips and keys send their own MIDI; the main unit's work the application.
    for (size_t g = 0; g < layer->groups().size(); ++g)
        for (const auto& control : layer->groups()[g])
            control->setActionMode(g >= 16 ? ActionMode::NativeMIDI : ActionMode::Developer);
    const std::pair<int, const char*> names[] = {
        {0, "Save"},        {1, "Undo"},         {2, "Redo"},     {3, "Cut"},
        {4, "Paste"},       {13, "Zoom to Fit"}, {20, "Marker"},  {21, "Loop Selection"},
        {16, "Mute Drums"}, {24, "Vocal Bus"},   {100, "Reverb"}, {160, "Record Arm"}};
    for (const auto& [at, name] : names) {
        // Spread over the groups: the main unit's M keys, then a few of the big groups.
        const int group = at < 5 ? 0 : at < 16 ? 13 : at < 23 ? 17 : 24;
        const int index = at < 5 ? at : at < 16 ? at - 5 : at < 23 ? at - 16 : at - 24;
        if (TVKControl* control = layer->groups()[size_t(group)][size_t(index)].get())
            control->setUserName(QString::fromUtf8(name));
    }
    storeConfiguration(configured);
    startApplication();
    app->showAssignments(true);
    auto* model = dynamic_cast<CorvaneModelData*>(controller->modelData());
    ASSERT_NE(model, nullptr);
    auto& corvane = dynamic_cast<CorvaneController&>(*controller);
    // Something lit: the Play key, touched on the surface.
    service->command(QStringLiteral("send TCtl 1 3 0 1"));
    ASSERT_TRUE(spinUntil([&] { return controller->selectedGroup() == 1; }));

    for (const TVKWindow window : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV})
        app->show(window);
    app->showDZ(true);
    const std::pair<QWidget*, QString> windows[] = {
        {app->mainWindow(), QStringLiteral("main")},
        {app->window(TVKWindow::TL), QStringLiteral("tl")},
        {app->window(TVKWindow::TLW), QStringLiteral("tlw")},
        {app->window(TVKWindow::TLW2), QStringLiteral("tlw2")},
        {app->window(TVKWindow::NV), QStringLiteral("nv")},
        {app->dzWindow(), QStringLiteral("dz")}};

    const QPalette light = QApplication::style()->standardPalette();
    for (const auto& [palette, theme] : {std::pair{light, QStringLiteral("light")},
                                         std::pair{darkTheme(), QStringLiteral("dark")}}) {
        QApplication::setPalette(palette);
        for (const int style : {0, 1}) {
            model->setHardwareStyle(style);
            corvane.setHardwareGraphics(style);
            for (const auto& [window, name] : windows) {
                window->show();
                window->raise();
                ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
                QTest::qWait(50);
                auto* surface = window->findChild<CorvaneSurfaceView*>();
                ASSERT_NE(surface, nullptr);
                ASSERT_TRUE(surface->showsAssignments());
                // The DZ has displays only: nothing to label.
                if (name != QStringLiteral("dz")) {
                    EXPECT_FALSE(surface->assignmentLabels()->labels().empty());
                }
                const QImage image = window->grab().toImage();
                ASSERT_FALSE(image.isNull());
                ASSERT_TRUE(
                    image.save(QDir(labelScreensFolder())
                                   .filePath(QStringLiteral("labels-%1-%2-%3.png")
                                                 .arg(name,
                                                      style == 1 ? QStringLiteral("silver")
                                                                 : QStringLiteral("midnight"),
                                                      theme))));
            }
        }
    }
}
