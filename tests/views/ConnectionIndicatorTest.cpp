// The main window's connection indicator: a picture, a text and a tool tip of its own for each
// state of the service, and what can be done about it at hand.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "views/CorvaneViews.h"
#include "views/TVKMainWindow.h"

#include <QAction>
#include <QLabel>
#include <QToolButton>

using namespace corvane;
using namespace corvane::test;

namespace {

const char* const kPictures[] = {"corvane_connect_icon_on", "corvane_connect_icon_off",
                                 "corvane_connect_icon_none"};

} // namespace

TEST(ConnectionPictures, EachStateIsDrawnAtBothScalesAndReadsOnLightAndDarkDesktops)
{
    for (const char* name : kPictures) {
        for (const int scale : {1, 2}) {
            const QString file =
                scale == 1 ? QStringLiteral(":/images/%1.png").arg(QLatin1String(name))
                           : QStringLiteral(":/images/%1@2x.png").arg(QLatin1String(name));
            SCOPED_TRACE(file.toStdString());
            const QImage image = QImage(file).convertToFormat(QImage::Format_ARGB32);
            ASSERT_EQ(image.size(), QSize(24, 24) * scale);
            // Something light and something dark, each opaque enough to be seen: the first
            // stands out on a dark desktop, the second on a light one.
            int light = 0;
            int dark = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    if (c.alphaF() < 0.4)
                        continue;
                    const double luminance =
                        0.2126 * c.redF() + 0.7152 * c.greenF() + 0.0722 * c.blueF();
                    light += luminance > 0.6;
                    dark += luminance < 0.25;
                }
            }
            EXPECT_GE(light, 4 * scale * scale);
            EXPECT_GE(dark, 20 * scale * scale);
        }
    }
}

TEST_F(ViewsTest, TheIndicatorShowsEachStateWithItsOwnPictureTextAndToolTip)
{
    TVKMainWindow& window = *startApplication().mainWindow();
    QWidget* indicator = window.connectionIndicator();
    ASSERT_TRUE(indicator);
    auto* picture = indicator->findChild<QLabel*>();
    ASSERT_TRUE(picture);
    QAction* start = controller->menuItem(TVKMenuCommand::StartBackgroundService);

    struct Seen
    {
        QImage picture;
        QString text;
        QString toolTip;
    };
    std::vector<Seen> seen;
    const auto see = [&](const QString& text) {
        EXPECT_TRUE(spinUntil([&] { return window.connectionText() == text; }, 6000))
            << window.connectionText().toStdString();
        seen.push_back(
            {picture->pixmap().toImage(), window.connectionText(), indicator->toolTip()});
        EXPECT_FALSE(seen.back().picture.isNull());
        EXPECT_FALSE(seen.back().toolTip.isEmpty());
    };

    see(QStringLiteral("Surface connected"));
    EXPECT_TRUE(window.reconnectButton()->isHidden()) << "nothing to do";

    service->command(QStringLiteral("send CnSt 0"));
    see(QStringLiteral("Surface not reachable"));
    EXPECT_FALSE(window.reconnectButton()->isHidden());
    EXPECT_EQ(window.reconnectButton()->text(), QStringLiteral("reconnect"));

    service->kill();
    see(QStringLiteral("No background service"));
    // Right-click offers the way back.
    ASSERT_EQ(indicator->contextMenuPolicy(), Qt::ActionsContextMenu);
    EXPECT_TRUE(indicator->actions().contains(controller->connectionMenuItem()));
    EXPECT_TRUE(indicator->actions().contains(start));
    EXPECT_TRUE(start->isEnabled());

    for (size_t i = 0; i < seen.size(); ++i) {
        for (size_t j = i + 1; j < seen.size(); ++j) {
            EXPECT_NE(seen[i].picture, seen[j].picture);
            EXPECT_NE(seen[i].text, seen[j].text);
            EXPECT_NE(seen[i].toolTip, seen[j].toolTip);
        }
    }

    // Back: drawn again.
    ASSERT_TRUE(startService());
    see(QStringLiteral("Surface connected"));
    EXPECT_EQ(seen.back().picture, seen.front().picture);
}
