#include "ViewsFixture.h"

#include "TestConfig.h"
#include "actions/BuiltInCommandCatalogue.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "platform/InstallPlatform.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMultiStateButton.h"
#include "views/TVKNextFrame.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

namespace corvane::test {

void ViewsTest::SetUp()
{
    // The widgets need the widget application; the controller's fixture takes what exists.
    if (!QCoreApplication::instance()) {
        static int argc = 1;
        static char name[] = "views_tests";
        static char* argv[] = {name, nullptr};
        static QApplication* application = new QApplication(argc, argv);
        (void)application;
    }
    ControllerTest::SetUp();
    // The background components are in place, as after the first start: the installation
    // check at start-up finds nothing to do and shows no window.
    qputenv("CORVANE_BUNDLE_DIR", CORVANE_BINARY_DIR "/share/corvane");
    const QString driver = QStringLiteral("CorvaneEthernetMIDIDriver.plugin");
    const QString installed =
        InstallPlatform::expandUserPath(QStringLiteral("~/Library/Audio/MIDI Drivers/") + driver);
    QDir().mkpath(QFileInfo(installed).path());
    ASSERT_TRUE(InstallPlatform::copyItem(
        QStringLiteral(CORVANE_BINARY_DIR "/share/corvane/Contents/Helpers/") + driver, installed));
    QDir().mkpath(
        InstallPlatform::expandUserPath(QStringLiteral("~/Library/Application Support/Tavrik")));
}

void ViewsTest::TearDown()
{
    if (controller)
        controller->handleTerminateMessage();
    app.reset();
    ControllerTest::TearDown();
}

CorvaneViews& ViewsTest::startApplication()
{
    if (!service) {
        EXPECT_TRUE(startService());
    }
    const qsizetype from = mark();
    controller = std::make_unique<CorvaneController>();
    app = std::make_unique<CorvaneViews>(*controller, views);
    app->start();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(app->mainWindow()));
    EXPECT_TRUE(service->waitForEvent(QStringLiteral("connected"), from));
    return *app;
}

CorvaneSurfaceView& ViewsTest::mainSurface() const
{
    return *app->mainWindow()->surface();
}

TVKMultiStateButton& ViewsTest::button(const CorvaneSurfaceView& surface, qint64 tag) const
{
    TVKMultiStateButton* found = surface.buttonWithTag(tag);
    EXPECT_NE(found, nullptr) << "no picture for group " << tag;
    return *found;
}

QPoint ViewsTest::insideControl(const TVKMultiStateButton& button, qint64 k) const
{
    const QPainterPath* path = button.hitTestPath(k);
    if (!path)
        return QPoint(-1, -1);
    // The centre of the outline's box lies inside for every shape but a ring; for a ring, a
    // point half way across its band.
    const QRectF box = path->boundingRect();
    const QPoint centre = box.center().toPoint();
    if (path->contains(centre))
        return centre;
    for (int dx = 1; dx < int(box.width() / 2); ++dx) {
        const QPoint p = centre + QPoint(dx, 0);
        if (path->contains(p))
            return p + QPoint(6, 0);
    }
    return QPoint(-1, -1);
}

void ViewsTest::clickSurface(CorvaneSurfaceView& surface, QPoint point)
{
    QWidget* target = surface.childAt(point);
    if (!target)
        target = &surface;
    const QPoint local = target->mapFrom(&surface, point);
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, local);
}

void ViewsTest::installCatalogue()
{
    const QString target = BuiltInCommandCatalogue::defaultCataloguePath();
    QDir().mkpath(BuiltInCommandCatalogue::supportFolder());
    QFile::remove(target);
    ASSERT_TRUE(QFile::copy(
        QStringLiteral(CORVANE_SOURCE_DIR "/resources/BuiltInCommands/TVK_Built_In_Commands.xml"),
        target));
}

void ViewsTest::nextFrame()
{
    ASSERT_TRUE(spinUntil([] { return TVKNextFrame::pendingCount() == 0; }));
    QCoreApplication::processEvents();
}

TVKControl* ViewsTest::selectFirstOfType(int type)
{
    TVKModelData* model = controller->modelData();
    const TVKLayer* layer = model ? model->selectedLayer() : nullptr;
    if (!layer)
        return nullptr;
    const bool display = ControlType::isDisplayType(type);
    const auto& groups = display ? layer->displayGroups() : layer->groups();
    for (size_t group = 0; group < groups.size(); ++group)
        for (size_t index = 0; index < groups[group].size(); ++index) {
            if (!groups[group][index] || groups[group][index]->tvkControlType() != type)
                continue;
            if (display)
                controller->handleDisplay(qint64(index), qint64(group));
            else
                controller->selectionChangedInSummaryWindowToGroup(qint64(group), qint64(index));
            nextFrame();
            return groups[group][index].get();
        }
    return nullptr;
}

std::vector<qint64> words(const QJsonObject& line)
{
    std::vector<qint64> out;
    for (const QJsonValue& word : line.value(QStringLiteral("words")).toArray())
        out.push_back(word.toInteger());
    return out;
}

} // namespace corvane::test
