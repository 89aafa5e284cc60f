// A touch on the surface is answered before any window does its work: the echo to the service
// goes out while the windows have only asked for their next frame, and in that frame every
// window shows the touched control. The touches come from the real simulator, with every window
// open, over every group of the layer as the model lists them.
#include "ViewsFixture.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"
#include "service/TVK_PrivateMessenger.h"
#include "views/InspectorController.h"
#include "views/TVKMainWindow.h"
#include "views/TVKNextFrame.h"

#include <QApplication>
#include <QJsonArray>

using namespace corvane;
using namespace corvane::test;

namespace {

// Counts the paint events of every widget of the program.
class PaintCounter : public QObject
{
public:
    PaintCounter() { qApp->installEventFilter(this); }
    ~PaintCounter() override { qApp->removeEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

class TouchAnswerTest : public ViewsTest
{
protected:
    void openEveryWindow()
    {
        for (const TVKWindow window : {TVKWindow::Inspector, TVKWindow::TL, TVKWindow::TLW,
                                       TVKWindow::TLW2, TVKWindow::NV, TVKWindow::Summary})
            app->show(window);
        app->showDZ(true);
        nextFrame();
    }

    // Every control of the selected layer that a touch can reach: the first and the last of
    // each group, from the model's own tables.
    std::vector<TVKControl*> touchable() const
    {
        std::vector<TVKControl*> controls;
        const TVKLayer* layer = controller->modelData()->selectedLayer();
        for (const auto& group : layer->groups()) {
            if (group.empty())
                continue;
            for (const auto* end : {&group.front(), &group.back()}) {
                if (*end && (controls.empty() || controls.back() != end->get()))
                    controls.push_back(end->get());
            }
        }
        return controls;
    }
};

TEST_F(TouchAnswerTest, EveryTouchIsAnsweredBeforeAnyWindowDrawsAndShownInTheNextFrame)
{
    PaintCounter counter;
    // Observers are called in the order they came: this one before every window's, the one
    // below after them all.
    int paintsAtNotice = -1;
    NotificationCenter::Observation first =
        NotificationCenter::defaultCenter().observe<note::RemoteSelectionChange>(
            nullptr, [&](const note::RemoteSelectionChange&) { paintsAtNotice = counter.paints; });
    ASSERT_TRUE(startService({QStringLiteral("--timestamps")}));
    startApplication();
    openEveryWindow();
    InspectorController& inspector = *app->inspector();
    int paintsAfterNotice = -1;
    NotificationCenter::Observation last =
        NotificationCenter::defaultCenter().observe<note::RemoteSelectionChange>(
            nullptr,
            [&](const note::RemoteSelectionChange&) { paintsAfterNotice = counter.paints; });
    // The inspector's refresh tells its action editors; it must not have run at the answer.
    int refreshes = 0;
    NotificationCenter::Observation editors =
        NotificationCenter::defaultCenter().observe<note::NewActionSelected>(
            &inspector, [&](const note::NewActionSelected&) { ++refreshes; });

    // What the windows had done when the answer for the touched control went out.
    struct AtEcho
    {
        bool sent = false;
        int paints = 0;
        int framesAsked = 0;
        int refreshes = 0;
        const TVKControl* edited = nullptr;
    } atEcho;
    controller->messenger()->setSendObserver([&](MessageID id, const QByteArray& body) {
        if (id == msg::TCtl && TVK_IncomingControlStateSpec(body).value() == 1)
            atEcho = {true, counter.paints, TVKNextFrame::pendingCount(), refreshes,
                      inspector.theControl()};
    });
    const auto isCode = [](const char* code) {
        return [code](const QJsonObject& line) {
            return line.value(QStringLiteral("code")).toString() == QLatin1String(code);
        };
    };

    const std::vector<TVKControl*> controls = touchable();
    ASSERT_GT(controls.size(), 30u);
    for (TVKControl* control : controls) {
        SCOPED_TRACE(control->name().toStdString());
        if (controller->modelDataGroupIndex() == control->groupID() &&
            controller->modelDataControlIndex() == control->index())
            continue;
        atEcho = {};
        refreshes = 0;
        const qsizetype from = mark();
        service->command(
            QStringLiteral("send TCtl %1 %2 0 1").arg(control->groupID()).arg(control->index()));
        ASSERT_TRUE(spinUntil([&] { return atEcho.sent; }));
        // No window drew from the start of the notice to the answer; the windows had asked for
        // their next frame and done none of its work, but what is edited is the touched control.
        EXPECT_EQ(paintsAfterNotice, paintsAtNotice) << "a window drew inside the notice";
        EXPECT_EQ(atEcho.paints, paintsAtNotice) << "a window drew before the answer";
        EXPECT_GT(atEcho.framesAsked, 0);
        EXPECT_EQ(atEcho.refreshes, 0) << "the inspector redrew before the answer";
        EXPECT_EQ(atEcho.edited, control);

        // The next frame shows the touched control everywhere.
        nextFrame();
        EXPECT_GT(counter.paints, atEcho.paints) << "nothing was drawn after the touch";
        EXPECT_EQ(refreshes, 1);
        EXPECT_EQ(inspector.theControl(), control);
        EXPECT_EQ(inspector.selectedEditor(), control->tvkControlType());
        EXPECT_TRUE(
            inspector.panel()->windowTitle().contains(control->name() + QStringLiteral(" (")));
        EXPECT_TRUE(
            app->mainWindow()->statusText().startsWith(control->name() + QStringLiteral("  ·  ")))
            << app->mainWindow()->statusText().toStdString();

        // From the simulator's side: the answer for the touched control came after the touch.
        const auto sent = service->waitFor(
            [](const QJsonObject& line) {
                return line.value(QStringLiteral("sent")).toString() == QLatin1String("TCtl");
            },
            5000, from);
        const auto echo = service->waitFor(
            [&](const QJsonObject& line) {
                return isCode("TCtl")(line) && words(line).size() == 4 && words(line)[3] == 1;
            },
            5000, from);
        ASSERT_TRUE(sent && echo);
        EXPECT_EQ(words(*echo), (std::vector<qint64>{control->groupID(), control->index(), 0, 1}));
        EXPECT_GE(echo->value(QStringLiteral("us")).toDouble(),
                  sent->value(QStringLiteral("us")).toDouble());
        EXPECT_GT(sent->value(QStringLiteral("us")).toDouble(), 0);
    }
}

TEST_F(TouchAnswerTest, TouchesBeforeAFrameAreShownOnceTheLastOne)
{
    startApplication();
    openEveryWindow();
    InspectorController& inspector = *app->inspector();
    int refreshes = 0;
    NotificationCenter::Observation editors =
        NotificationCenter::defaultCenter().observe<note::NewActionSelected>(
            &inspector, [&](const note::NewActionSelected&) { ++refreshes; });

    // Touches read from the link together, before the event loop comes round again.
    const std::vector<TVKControl*> controls = touchable();
    ASSERT_GE(controls.size(), 6u);
    for (size_t i = 0; i < 6; ++i)
        controller->hardwareControlChangeForGroup(controls[i]->groupID(), controls[i]->index(), 0,
                                                  1);
    EXPECT_EQ(refreshes, 0) << "the inspector redrew inside a notice";
    // What is edited follows at once, so that an edit goes to the touched control.
    EXPECT_EQ(inspector.theControl(), controls[5]);

    nextFrame();
    EXPECT_EQ(refreshes, 1) << "one frame, one refresh";
    EXPECT_EQ(inspector.selectedEditor(), controls[5]->tvkControlType());
    EXPECT_TRUE(
        inspector.panel()->windowTitle().contains(controls[5]->name() + QStringLiteral(" (")));
    EXPECT_TRUE(
        app->mainWindow()->statusText().startsWith(controls[5]->name() + QStringLiteral("  ·  ")));
    EXPECT_EQ(TVKNextFrame::pendingCount(), 0);
}

} // namespace
