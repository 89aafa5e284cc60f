// What each control does, written on the pictures of every unit (View → Show Assignments),
// driven against the real simulated service.
#include "ViewsFixture.h"
#include "actions/ActionDescription.h"
#include "app/TVKUndoManager.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneAssignmentLabels.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKMultiStateButton.h"

#include <QAction>
#include <QMenu>
#include <QTest>
#include <algorithm>
#include <map>
#include <set>

using namespace corvane;
using namespace corvane::test;

namespace {

// A name long enough that no picture has room for all of it.
QString longName(int layer, int group, int index)
{
    return QStringLiteral("L%1 %2 %3 sends the mix to the second bus")
        .arg(layer + 1)
        .arg(group)
        .arg(index + 1);
}

// A label shows its control's whole text, or the start of it followed by an ellipsis.
bool showsStartOf(const QString& drawn, const QString& full)
{
    if (drawn == full)
        return true;
    const QString ellipsis = QStringLiteral("…");
    return drawn.endsWith(ellipsis) && drawn.size() > 1 &&
           full.startsWith(drawn.left(drawn.size() - 1));
}

struct Shown
{
    QString text;
    QRectF rect;
};

class AssignmentLabelsTest : public ViewsTest
{
protected:
    void SetUp() override
    {
        ViewsTest::SetUp();
        // Every control of the first layer named, at length; those of the second carry their
        // kind's developer action and no name.
        CorvaneModelData model;
        const TVKLayer* first = model.keysetAtIndex(0)->layerAtIndex(0);
        for (size_t g = 0; g < first->groups().size(); ++g)
            for (size_t i = 0; i < first->groups()[g].size(); ++i)
                if (TVKControl* control = first->groups()[g][i].get())
                    control->setUserName(longName(0, int(g), int(i)));
        for (const TVKControlGroup& group : model.keysetAtIndex(0)->layerAtIndex(1)->groups())
            for (const auto& control : group)
                control->setActionMode(ActionMode::Developer);
        storeConfiguration(model);
    }

    // Every unit's picture, its window made.
    std::vector<CorvaneSurfaceView*> surfaces()
    {
        std::vector<CorvaneSurfaceView*> all{&mainSurface()};
        for (const TVKWindow window :
             {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV}) {
            app->show(window);
            all.push_back(app->expander(window)->surface());
        }
        app->showDZ(true);
        all.push_back(app->dzWindow()->surface());
        return all;
    }

    // Every bank the NV shows in turn: the LCD buttons' ten banks, and the parameter and
    // action keys of every function key and parameter. The visit is handed what shows its
    // bank again, for when selecting a key showed another.
    template <typename Visit>
    void everyBank(CorvaneSurfaceView* surface, const Visit& visit)
    {
        CorvaneNVController* nv = app->nvController();
        if (!nv || surface != nv->surface()) {
            visit([] {});
            return;
        }
        for (int step = 0; step < 40; ++step) {
            const auto show = [nv, step] {
                nv->setBank(step % 10);
                nv->setFunctionKey(step / 5);
                nv->setParameter(step % 5);
            };
            show();
            visit(show);
        }
    }

    // The labels a picture draws, by the model's control they name.
    static void collect(CorvaneSurfaceView& surface,
                        std::map<std::pair<int, int>, std::vector<Shown>>& byControl)
    {
        CorvaneAssignmentLabels& labels = *surface.assignmentLabels();
        const auto& placed = labels.labels();
        const auto& spots = labels.spots();
        for (const PlacedLabel& label : placed) {
            const auto& spot = spots[size_t(label.spot)];
            byControl[{spot.group, spot.index}].push_back({label.text, label.rect});
        }
    }

    // The outline of control k of a picture, in the surface's coordinates.
    static QPainterPath outlineOf(const TVKMultiStateButton& picture, qint64 k)
    {
        const QPainterPath* path = picture.hitTestPath(k);
        return path ? path->translated(picture.geometry().topLeft()) : QPainterPath();
    }

    QAction* viewMenuItem(TVKMenuBar* bar)
    {
        for (QAction* menu : bar->actions()) {
            if (menu->text() != QStringLiteral("&View") || !menu->menu())
                continue;
            for (QAction* item : menu->menu()->actions()) {
                if (item->text() == QStringLiteral("Show Assignments"))
                    return item;
            }
        }
        return nullptr;
    }
};

} // namespace

TEST_F(AssignmentLabelsTest, EveryNamedControlOfEveryUnitIsLabelledWithinItsPictureAndNoLabelsMeet)
{
    startApplication();
    app->showAssignments(true);
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    ASSERT_NE(constants, nullptr);

    std::map<std::pair<int, int>, std::vector<Shown>> byControl;
    for (CorvaneSurfaceView* surface : surfaces()) {
        ASSERT_TRUE(surface->showsAssignments()) << surface->unit().toStdString();
        everyBank(surface, [&](const auto&) {
            CorvaneAssignmentLabels& labels = *surface->assignmentLabels();
            const auto& placed = labels.labels();
            const QRectF picture(surface->rect());
            // Every outline the picture draws, whatever its label.
            std::vector<std::pair<QPainterPath, std::pair<qint64, qint64>>> outlines;
            for (const TVKMultiStateButton* button : surface->buttons())
                for (qint64 k = 1; k < button->numImages(); ++k)
                    outlines.push_back(
                        {outlineOf(*button, k), {button->tag(), button->controlForImageIndex(k)}});
            for (size_t a = 0; a < placed.size(); ++a) {
                const auto& spot = labels.spots()[size_t(placed[a].spot)];
                EXPECT_TRUE(picture.contains(placed[a].rect))
                    << surface->unit().toStdString() << " group " << spot.tag;
                for (size_t b = a + 1; b < placed.size(); ++b)
                    EXPECT_FALSE(placed[a].rect.intersects(placed[b].rect))
                        << surface->unit().toStdString() << ": " << placed[a].text.toStdString()
                        << " meets " << placed[b].text.toStdString();
                // A label hides no other control.
                for (const auto& [outline, control] : outlines) {
                    if (control == std::make_pair(spot.tag, spot.control))
                        continue;
                    EXPECT_FALSE(outline.intersects(placed[a].rect))
                        << surface->unit().toStdString() << ": the label of " << spot.tag << "/"
                        << spot.control << " covers " << control.first << "/" << control.second;
                }
                // Nor a display.
                for (const QWidget* display : surface->displays())
                    EXPECT_FALSE(QRectF(display->geometry()).intersects(placed[a].rect));
            }
            collect(*surface, byControl);
        });
    }

    // Every control of the model's tables that the first layer names has a label that shows
    // the start of its name; only the lit control may go without one.
    const TVKControl* lit = controller->modelData()->selectedControl();
    int labelled = 0;
    for (int group = 0; constants->numberOfControlsInGroup(group) > 0; ++group) {
        for (int index = 0; index < constants->numberOfControlsInGroup(group); ++index) {
            const TVKControl* control =
                controller->modelData()->controlForKeyset(0, 0, group, index);
            ASSERT_NE(control, nullptr) << group << "/" << index;
            const QString full = assignmentLabel(*control);
            ASSERT_EQ(full, longName(0, group, index));
            const auto found = byControl.find({group, index});
            if (found == byControl.end()) {
                EXPECT_EQ(control, lit) << "no label for " << group << "/" << index;
                continue;
            }
            ++labelled;
            for (const Shown& shown : found->second)
                EXPECT_TRUE(showsStartOf(shown.text, full))
                    << shown.text.toStdString() << " for " << full.toStdString();
        }
    }
    EXPECT_GT(labelled, 600);
}

TEST_F(AssignmentLabelsTest, TheLitControlOfEveryPictureStaysInViewUnderTheLabels)
{
    startApplication();
    app->showAssignments(true);
    std::set<std::pair<qint64, qint64>> checked;
    for (CorvaneSurfaceView* surface : surfaces()) {
        everyBank(surface, [&](const auto& showBank) {
            // The controls shown now, by picture and state.
            std::vector<std::pair<TVKMultiStateButton*, qint64>> controls;
            for (TVKMultiStateButton* button : surface->buttons())
                for (qint64 k = 1; k < button->numImages(); ++k)
                    controls.push_back({button, button->controlForImageIndex(k)});
            for (const auto& [button, control] : controls) {
                // Every control once, in whichever bank shows it first.
                if (!checked.insert({button->tag(), control}).second)
                    continue;
                showBank();
                const qint64 k = button->imageIndexForControl(control);
                ASSERT_GE(k, 1);
                button->chooseControl(control);
                ASSERT_EQ(button->cell().state(), 1);
                ASSERT_EQ(button->shownImage(), button->images().value(k));
                const QPainterPath outline = outlineOf(*button, k);
                for (const PlacedLabel& label : surface->assignmentLabels()->labels())
                    EXPECT_FALSE(outline.intersects(label.rect))
                        << surface->unit().toStdString() << ": " << label.text.toStdString()
                        << " covers lit " << button->tag() << "/" << control;
                // What is drawn: within the lit outline, the picture is the same with the
                // labels as without them.
                const QRect box = outline.boundingRect().toAlignedRect();
                const QImage with = surface->grab(box).toImage();
                surface->setShowsAssignments(false);
                const QImage without = surface->grab(box).toImage();
                surface->setShowsAssignments(true);
                for (int y = 0; y < box.height(); y += 2)
                    for (int x = 0; x < box.width(); x += 2) {
                        if (!outline.contains(QPointF(box.left() + x + 0.5, box.top() + y + 0.5)))
                            continue;
                        ASSERT_EQ(with.pixel(x * with.width() / box.width(),
                                             y * with.height() / box.height()),
                                  without.pixel(x * without.width() / box.width(),
                                                y * without.height() / box.height()))
                            << surface->unit().toStdString() << " lit " << button->tag() << "/"
                            << control << " covered at " << x << "," << y;
                    }
            }
        });
    }
}

TEST_F(AssignmentLabelsTest, LabelsFollowEditsUndoRedoAndTheLayer)
{
    startApplication();
    app->showAssignments(true);
    CorvaneSurfaceView& surface = mainSurface();
    const auto labelOf = [&](int group, int index) {
        std::map<std::pair<int, int>, std::vector<Shown>> byControl;
        collect(surface, byControl);
        const auto found = byControl.find({group, index});
        return found == byControl.end() ? QString() : found->second.front().text;
    };
    // M3 (model group 0, control 2) renamed, then the keypad's first key selected, so that M3
    // is not lit.
    const auto awayFromM3 = [&] { controller->selectionChangedInSummaryWindowToGroup(13, 0); };
    controller->selectionChangedInSummaryWindowToGroup(0, 2);
    NotificationCenter::defaultCenter().post(note::UserNameChange{QStringLiteral("Save"), false},
                                             nullptr);
    awayFromM3();
    EXPECT_EQ(labelOf(0, 2), QStringLiteral("Save"));

    // The second layer: no names there, so the labels say what the actions do.
    controller->handleTVKLayerSelector(1);
    ASSERT_EQ(controller->selectedLayer(), 1);
    for (int index = 0; index < 5; ++index) {
        const TVKControl* control = controller->modelData()->controlForKeyset(0, 1, 0, index);
        ASSERT_NE(control, nullptr);
        const QString full = assignmentLabel(*control);
        ASSERT_FALSE(full.isEmpty());
        EXPECT_TRUE(showsStartOf(labelOf(0, index), full))
            << labelOf(0, index).toStdString() << " for " << full.toStdString();
    }
    const QString before = labelOf(0, 2);

    // Its action deleted: nothing to say; undone and redone, the label comes and goes with it.
    controller->selectionChangedInSummaryWindowToGroup(0, 2);
    NotificationCenter::defaultCenter().post(note::DeleteAction{false}, nullptr);
    awayFromM3();
    EXPECT_TRUE(labelOf(0, 2).isEmpty()) << labelOf(0, 2).toStdString();
    controller->undoManager().undo();
    awayFromM3();
    EXPECT_EQ(labelOf(0, 2), before);
    controller->undoManager().redo();
    awayFromM3();
    EXPECT_TRUE(labelOf(0, 2).isEmpty()) << labelOf(0, 2).toStdString();

    // Back on the first layer, its names.
    controller->handleTVKLayerSelector(0);
    EXPECT_EQ(labelOf(0, 2), QStringLiteral("Save"));

    // A click on a label that lies on its control selects the control.
    const auto& placed = surface.assignmentLabels()->labels();
    const auto on = std::find_if(placed.begin(), placed.end(),
                                 [](const PlacedLabel& label) { return label.onControl; });
    ASSERT_NE(on, placed.end());
    const auto spot = surface.assignmentLabels()->spots()[size_t(on->spot)];
    clickSurface(surface, on->rect.center().toPoint());
    EXPECT_EQ(controller->selectedGroup(), spot.tag);
    EXPECT_EQ(controller->selectedControl(), spot.control);

    // Off: nothing drawn over the picture.
    app->showAssignments(false);
    EXPECT_FALSE(surface.showsAssignments());
    EXPECT_FALSE(surface.assignmentLabels()->isVisible());
}

TEST_F(AssignmentLabelsTest, ShowAssignmentsIsOffAtFirstAndRememberedAcrossRuns)
{
    startApplication();
    QAction* item = viewMenuItem(app->mainWindow()->tvkMenuBar());
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->isCheckable());
    EXPECT_FALSE(item->isChecked());
    EXPECT_FALSE(mainSurface().showsAssignments());

    // Chosen from the TL window's menus: every window follows, open or opened later.
    app->show(TVKWindow::TL);
    QAction* fromTL = viewMenuItem(app->expander(TVKWindow::TL)->tvkMenuBar());
    ASSERT_NE(fromTL, nullptr);
    fromTL->trigger();
    EXPECT_TRUE(item->isChecked());
    EXPECT_TRUE(mainSurface().showsAssignments());
    EXPECT_TRUE(app->expander(TVKWindow::TL)->surface()->showsAssignments());
    app->show(TVKWindow::NV);
    EXPECT_TRUE(app->expander(TVKWindow::NV)->surface()->showsAssignments());

    app->quit();
    app.reset();
    controller.reset();
    EXPECT_TRUE(TVKUserDefaults(storePath).objectForKey(key::ShowAssignments).toBool());

    startApplication();
    item = viewMenuItem(app->mainWindow()->tvkMenuBar());
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->isChecked());
    EXPECT_TRUE(mainSurface().showsAssignments());
    EXPECT_FALSE(mainSurface().assignmentLabels()->labels().empty());

    item->trigger();
    app->quit();
    app.reset();
    controller.reset();
    startApplication();
    EXPECT_FALSE(viewMenuItem(app->mainWindow()->tvkMenuBar())->isChecked());
    EXPECT_FALSE(mainSurface().showsAssignments());
}
