// Where windows open: on the available screen, where the user left them, and at the first start
// beside each other. The rule is checked on its own over screens of several sizes and places,
// and on the application's real windows on the screen the tests run on.
#include "views/WindowPlacement.h"

#include "ViewsFixture.h"
#include "core/TVKUserDefaults.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKMainWindow.h"

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

using namespace corvane;
using namespace corvane::test;

namespace {

// Screens as desktops have them: small, common, large, a second monitor to the right and one
// above, a top panel taking a strip.
const std::vector<QRect> kScreens = {
    QRect(0, 0, 800, 600),      QRect(0, 0, 1280, 800),      QRect(0, 0, 1920, 1200),
    QRect(1920, 0, 2560, 1440), QRect(0, -1080, 1920, 1080), QRect(0, 28, 1366, 740),
};

// The frames of the application's windows as they open at the first start: the main window,
// the inspector, the summary, and the TL, TLW, TLW2, NV and DZ windows.
const std::vector<QSize> kWindows = {{1424, 830}, {560, 630}, {1000, 670}, {1272, 640},
                                     {688, 330},  {688, 410}, {884, 640},  {1024, 290}};

std::string describe(const QRect& r)
{
    return QStringLiteral("%1,%2 %3x%4")
        .arg(r.x())
        .arg(r.y())
        .arg(r.width())
        .arg(r.height())
        .toStdString();
}

} // namespace

TEST(WindowPlacement, FirstWindowsLieOnTheScreenAndBesideEachOtherWhereThereIsRoom)
{
    for (const QRect& screen : kScreens) {
        SCOPED_TRACE(describe(screen));
        std::vector<QRect> open;
        for (const QSize& size : kWindows) {
            const QRect frame = placeWindow(size, screen, open);
            EXPECT_TRUE(screen.contains(frame)) << describe(frame) << " leaves the screen";
            EXPECT_EQ(frame.width(), std::min(size.width(), screen.width()));
            EXPECT_EQ(frame.height(), std::min(size.height(), screen.height()));
            // Where some place beside the others is free, the window takes a free place.
            bool freePlace = false;
            for (int x = screen.left(); x + frame.width() <= screen.right() + 1 && !freePlace;
                 x += 8)
                for (int y = screen.top(); y + frame.height() <= screen.bottom() + 1; y += 8) {
                    const QRect trial(QPoint(x, y), frame.size());
                    if (std::none_of(open.begin(), open.end(),
                                     [&](const QRect& o) { return o.intersects(trial); })) {
                        freePlace = true;
                        break;
                    }
                }
            if (freePlace && open.size() == 1) {
                // Beside the first window there is always a place to the right or below.
                for (const QRect& other : open)
                    EXPECT_FALSE(other.intersects(frame))
                        << describe(frame) << " covers " << describe(other);
            }
            // Without room, it keeps off the top of the main window: its header.
            if (!open.empty() && !freePlace && frame.height() + 60 <= screen.height()) {
                const QRect header(open.front().topLeft(), QSize(open.front().width(), 60));
                EXPECT_FALSE(header.intersects(frame))
                    << describe(frame) << " covers the top of the main window";
            }
            open.push_back(frame);
        }
    }
}

TEST(WindowPlacement, RememberedFramesStayWhereTheyWereAndComeBackOnScreen)
{
    for (const QRect& screen : kScreens) {
        SCOPED_TRACE(describe(screen));
        const QSize size(500, 400);
        const std::vector<QPoint> places = {
            screen.topLeft() + QPoint(30, 40),                   // inside
            screen.topLeft() + QPoint(-5000, 10),                // far left
            screen.bottomRight() + QPoint(10, 15),               // past the bottom right
            screen.topLeft() + QPoint(screen.width() - 100, 20), // half over the right
            screen.topLeft() + QPoint(20, screen.height() - size.height() + 15), // 15 below
            QPoint(-30000, -30000),
        };
        for (const QPoint& place : places) {
            const QRect remembered(place, size);
            const QRect frame = placeWindow(size, screen, {}, remembered);
            EXPECT_TRUE(screen.contains(frame))
                << describe(remembered) << " -> " << describe(frame);
            if (screen.contains(remembered)) {
                EXPECT_EQ(frame, remembered) << "a frame on the screen is left alone";
            }
            // Moved no further than onto the screen: it touches the edge it came over.
            if (remembered.bottom() > screen.bottom()) {
                EXPECT_EQ(frame.bottom(), screen.bottom());
            }
            if (remembered.left() < screen.left()) {
                EXPECT_EQ(frame.left(), screen.left());
            }
        }
        // Larger than the screen: shrunk to it.
        const QRect huge(screen.topLeft() - QPoint(50, 50), screen.size() + QSize(300, 300));
        EXPECT_EQ(placeWindow(size, screen, {}, huge), screen);
    }
}

TEST(WindowPlacement, StoredPlacesNameTheSameSpotOnTheScreenAtEveryScale)
{
    const QRect atTwo(700, 450, 560, 600); // logical pixels at twice the scale
    const PlistValue stored = storedFrame(atTwo.topLeft(), atTwo.size(), 2.0);
    const std::optional<QRect> atOne = frameFromStore(stored, 1.0);
    ASSERT_TRUE(atOne);
    EXPECT_EQ(atOne->topLeft(), QPoint(1400, 900)) << "the same place in device pixels";
    EXPECT_EQ(atOne->size(), atTwo.size()) << "the size the contents need";
    EXPECT_EQ(frameFromStore(stored, 2.0), atTwo);
    EXPECT_EQ(frameFromStore(storedFrame(atTwo.topLeft(), atTwo.size(), 1.5), 1.5), atTwo);

    // What is no frame is no memory: the window opens as at the first start.
    PlistValue broken = stored;
    broken.insert(QStringLiteral("Width"), PlistValue(qint64(-3)));
    EXPECT_FALSE(frameFromStore(broken, 1.0));
    broken = stored;
    broken.insert(QStringLiteral("X"), PlistValue(QStringLiteral("left")));
    EXPECT_FALSE(frameFromStore(broken, 1.0));
    EXPECT_FALSE(frameFromStore(PlistValue(QByteArrayLiteral("xyz")), 1.0));
}

namespace {

class WindowPlacementTest : public ViewsTest
{
protected:
    // Every window the application has, open.
    std::vector<std::pair<const char*, QWidget*>> openEveryWindow()
    {
        app->show(TVKWindow::Summary);
        for (TVKWindow w : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV})
            app->show(w);
        app->showDZ(true);
        std::vector<std::pair<const char*, QWidget*>> windows = {
            {"main", app->mainWindow()},          {"inspector", app->inspector()->panel()},
            {"summary", app->summary()},          {"TL", app->window(TVKWindow::TL)},
            {"TLW", app->window(TVKWindow::TLW)}, {"TLW2", app->window(TVKWindow::TLW2)},
            {"NV", app->window(TVKWindow::NV)},   {"DZ", app->dzWindow()}};
        for (auto& [name, w] : windows) {
            EXPECT_NE(w, nullptr) << name;
            if (w) {
                EXPECT_TRUE(QTest::qWaitForWindowExposed(w)) << name;
            }
        }
        return windows;
    }

    QRect available() const { return app->mainWindow()->screen()->availableGeometry(); }

    // Wholly on the screen: a window whose contents are larger than the screen scrolls them.
    ::testing::AssertionResult onScreen(const char* name, const QWidget& w) const
    {
        const QRect frame = w.frameGeometry();
        if (available().contains(frame))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << name << " at " << describe(frame) << " leaves " << describe(available());
    }

    // The main window's header on the screen: name, layers, lock and connection.
    QRect header() const
    {
        const QWidget* bar = app->mainWindow()->layerButton(0)->parentWidget()->parentWidget();
        return QRect(bar->mapToGlobal(QPoint(0, 0)), bar->size());
    }
};

} // namespace

TEST_F(WindowPlacementTest, EveryWindowOpensOnTheScreenAndTheFirstOnesBesideEachOther)
{
    startApplication();
    const auto windows = openEveryWindow();
    for (const auto& [name, w] : windows)
        EXPECT_TRUE(onScreen(name, *w));

    // The inspector and the summary keep clear of the main window's header where the screen has
    // room for them beside it.
    const QRect inspector = app->inspector()->panel()->frameGeometry();
    if (available().width() >= app->mainWindow()->minimumSizeHint().width() + inspector.width()) {
        EXPECT_FALSE(inspector.intersects(app->mainWindow()->frameGeometry()))
            << "the inspector covers the main window";
    }
    if (available().height() >= inspector.height() + 120) {
        EXPECT_FALSE(inspector.intersects(header())) << "the inspector covers the header";
        EXPECT_FALSE(app->summary()->frameGeometry().intersects(header()))
            << "the summary covers the header";
    }
}

TEST_F(WindowPlacementTest, RememberedFramesAreKeptAndBroughtBackOnScreen)
{
    // As a larger screen at another scale left them: far off this screen, and one in place.
    TVKUserDefaults store(storePath);
    PlistValue frames = PlistValue::makeDict();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect summaryFrame(screen.topLeft() + QPoint(37, 61), QSize(700, 450));
    frames.insert(QStringLiteral("TVKKeySumPos"),
                  storedFrame(summaryFrame.topLeft(), summaryFrame.size(), 1.0));
    const std::vector<std::pair<const char*, QRect>> offScreen = {
        {"MainWindow", QRect(screen.right() + 400, 100, 1424, 830)},
        {"TVKInsPos", QRect(-2000, -900, 560, 630)},
        {"CorvaneTLW", QRect(100, screen.bottom() - 100, 688, 330)},
        {"CorvaneDZ", QRect(100, screen.bottom() + 15, 1024, 290)},
        {"CorvaneNV", QRect(screen.topLeft(), screen.size() * 3)},
    };
    for (const auto& [name, frame] : offScreen)
        frames.insert(QString::fromLatin1(name), storedFrame(frame.topLeft(), frame.size(), 1.0));
    store.setObject(QStringLiteral("CorvaneWindowFrames"), frames);
    QString error;
    ASSERT_TRUE(store.synchronize(&error));

    startApplication();
    const auto windows = openEveryWindow();
    for (const auto& [name, w] : windows)
        EXPECT_TRUE(onScreen(name, *w));
    EXPECT_EQ(app->summary()->geometry().topLeft(), summaryFrame.topLeft())
        << "the user's place is kept";
    EXPECT_EQ(app->summary()->size(), summaryFrame.size());

    // What is kept on quitting comes back at the next start, exactly.
    std::vector<QRect> before;
    for (const auto& [name, w] : windows)
        before.push_back(w->frameGeometry());
    app->saveWindowState();
    controller->handleTerminateMessage();
    app.reset();
    controller.reset();
    startApplication();
    const auto again = openEveryWindow();
    for (size_t i = 0; i < again.size(); ++i)
        EXPECT_EQ(again[i].second->frameGeometry(), before[i]) << again[i].first;
}

TEST_F(WindowPlacementTest, EveryPartOfEachUnitCanBeBroughtIntoSightAndTheWholeUnitWhereItFits)
{
    startApplication();
    const auto windows = openEveryWindow();
    for (const auto& [name, w] : windows) {
        // However small the screen, the window can be made to fit it.
        const QMargins frame(w->geometry().left() - w->frameGeometry().left(),
                             w->geometry().top() - w->frameGeometry().top(),
                             w->frameGeometry().right() - w->geometry().right(),
                             w->frameGeometry().bottom() - w->geometry().bottom());
        const QSize least = w->minimumSizeHint().grownBy(frame);
        EXPECT_LE(least.width(), available().width()) << name;
        EXPECT_LE(least.height(), available().height()) << name;

        auto* unit = w->findChild<CorvaneSurfaceView*>();
        if (!unit)
            continue;
        auto* scroll = w->findChild<QScrollArea*>();
        ASSERT_NE(scroll, nullptr) << name;
        QWidget* viewport = scroll->viewport();
        // Scrolled to either end, that corner of the unit is in sight.
        const std::pair<QScrollBar*, QScrollBar*> bars = {scroll->horizontalScrollBar(),
                                                          scroll->verticalScrollBar()};
        for (const bool far : {false, true}) {
            bars.first->setValue(far ? bars.first->maximum() : bars.first->minimum());
            bars.second->setValue(far ? bars.second->maximum() : bars.second->minimum());
            const QPoint corner = far ? QPoint(unit->width() - 1, unit->height() - 1) : QPoint();
            EXPECT_TRUE(viewport->rect().contains(unit->mapTo(viewport, corner)))
                << name << (far ? ": the bottom right" : ": the top left") << " is out of sight";
        }
        // A window given the height it asks for scrolls only across, and the other way round.
        if (w != app->mainWindow()) {
            if (w->height() >= w->sizeHint().height()) {
                EXPECT_FALSE(bars.second->isVisible()) << name << ": a bar down the side";
            }
            if (w->width() >= w->sizeHint().width()) {
                EXPECT_FALSE(bars.first->isVisible()) << name << ": a bar below";
            }
        }
        // An expander window opens to its whole unit where the screen has room for it.
        if (w != app->mainWindow() && available().contains(QRect(w->frameGeometry().topLeft(),
                                                                 w->sizeHint().grownBy(frame)))) {
            EXPECT_EQ(unit->visibleRegion().boundingRect(), unit->rect()) << name;
        }
    }
}
