// Every control of every unit, as a hand reaches it: a click on it in the application's windows
// and in the virtual surface, a touch reported by the service, and the arrow keys. The controls
// come from the model's tables (the surface constants' groups and their sizes); where each one
// lies comes from the placement table, by its on-screen number. Nothing is taken from the
// pictures' own states or outlines, so a control left without an outline fails here.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "actions/ActionDescription.h"
#include "actions/TVKAction.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneNVLayout.h"
#include "views/CorvanePictures.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKBundle.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMultiStateButton.h"

#include <QApplication>
#include <QHelpEvent>
#include <QJsonArray>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>
#include <map>
#include <set>

using namespace corvane;
using namespace corvane::test;

namespace {

// The TLW and TLW2 draw the RS's F keys a second time, as on-screen group 48: its control i is F
// key i (model-data group 5).
constexpr int kSecondFKeys = 48;
constexpr int kFKeys = 5;

struct ModelControl
{
    int group;
    int index;
    auto operator<=>(const ModelControl&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ModelControl& c)
{
    return out << "model-data " << c.group << "/" << c.index;
}

// Where a hand finds one control in one window.
struct Placement
{
    ModelControl model;
    CorvaneSurfaceView* surface = nullptr;
    TVKMultiStateButton* picture = nullptr;
    int control = 0; // on-screen
    int bank = -1;   // the bank its picture must show; -1 when the picture has no banks
    QPoint point;    // on the control, in the picture
    QRect frame;     // the control, in the picture
    // The picture's other controls (of the first bank), and a point on each.
    std::vector<std::pair<QRect, QPoint>> others;

    QPoint inSurface() const { return picture->geometry().topLeft() + point; }
};

std::ostream& operator<<(std::ostream& out, const Placement& p)
{
    return out << p.model << " (" << p.surface->unit().toStdString() << ", on-screen "
               << p.picture->tag() << "/" << p.control << ")";
}

QPoint pointFrom(const PlistValue& value)
{
    return QPoint(int(value.at(0).toInteger()), int(value.at(1).toInteger()));
}

class SurfaceControlsTest : public ViewsTest
{
protected:
    // Every window with pictures: the RS in the main window and the four expanders.
    std::vector<CorvaneSurfaceView*> openEveryUnit()
    {
        for (const TVKWindow window :
             {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV})
            app->show(window);
        std::vector<CorvaneSurfaceView*> surfaces{&mainSurface()};
        for (const TVKWindow window :
             {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV}) {
            EXPECT_NE(app->expander(window), nullptr);
            if (app->expander(window))
                surfaces.push_back(app->expander(window)->surface());
        }
        // Windows are kept on the small test screen: give each the room its whole surface asks
        // for, so that every control lies inside its window.
        for (CorvaneSurfaceView* surface : surfaces) {
            QWidget* top = surface->window();
            top->resize(top->size().expandedTo(top->sizeHint()).expandedTo(QSize(2600, 1400)));
        }
        return surfaces;
    }

    // Every control of the model: every group of the tables, every index below its size.
    static std::vector<ModelControl> everyControl()
    {
        const TVK_Constant_Server& constants = *TVK_Constant_Server::defaultConstantServer();
        std::vector<ModelControl> all;
        for (int g = 0; g < constants.numberOfControlGroups(); ++g) {
            for (int i = 0; i < constants.numberOfControlsInGroup(g); ++i)
                all.push_back({g, i});
        }
        return all;
    }

    // Where each control of the model lies in the surfaces given: in every picture of the
    // on-screen group the tables put it in, at its on-screen number in the placement table.
    // Unit by unit, in the order of the model's tables.
    static std::vector<Placement> placementsIn(const std::vector<CorvaneSurfaceView*>& surfaces)
    {
        std::vector<Placement> out;
        for (CorvaneSurfaceView* surface : surfaces) {
            std::vector<Placement> unit = placementsInSurface(surface);
            out.insert(out.end(), unit.begin(), unit.end());
        }
        return out;
    }

    static std::vector<Placement> placementsInSurface(CorvaneSurfaceView* surface)
    {
        const TVK_Constant_Server& constants = *TVK_Constant_Server::defaultConstantServer();
        std::vector<Placement> out;
        for (const ModelControl& model : everyControl()) {
            std::vector<std::pair<int, int>> drawnAt(1);
            constants.modelDataGroupID(model.group, model.index, drawnAt[0].first,
                                       drawnAt[0].second);
            if (model.group == kFKeys)
                drawnAt.push_back({kSecondFKeys, model.index});
            {
                const PlistValue& buttons =
                    TVKBundle::mainBundle().surface(surface->unit()).value(u"Buttons");
                for (qsizetype j = 0; j < buttons.size(); ++j) {
                    TVKMultiStateButton* picture = surface->buttons().at(size_t(j));
                    for (const auto& [group, control] : drawnAt) {
                        if (picture->tag() != group)
                            continue;
                        // The NV's banked pictures show control b·n + m at the place of the first
                        // bank's control m.
                        const int bankSize = int(buttons.at(j).value(u"Bank").toInteger());
                        const int first = bankSize > 0 ? control % bankSize : control;
                        Placement p;
                        p.model = model;
                        p.surface = surface;
                        p.picture = picture;
                        p.control = control;
                        p.bank = bankSize > 0 ? control / bankSize : -1;
                        const PlistValue& controls = buttons.at(j).value(u"Controls");
                        bool found = false;
                        for (qsizetype c = 0; c < controls.size(); ++c) {
                            const QRect frame = TVKBundle::rectFrom(controls.at(c).value(u"Frame"));
                            if (controls.at(c).value(u"Control").toInteger() == first) {
                                p.point = pointFrom(controls.at(c).value(u"Point"));
                                p.frame = frame;
                                found = true;
                            } else {
                                p.others.push_back(
                                    {frame, pointFrom(controls.at(c).value(u"Point"))});
                            }
                        }
                        EXPECT_TRUE(found) << p << " has no place in its picture";
                        if (found)
                            out.push_back(p);
                    }
                }
            }
        }
        return out;
    }

    // A press and release of the left button where the window has that point of the surface,
    // delivered through the window as the pointer's are: whatever widget lies there gets it.
    static void click(const Placement& p)
    {
        if (auto* banked = dynamic_cast<CorvaneBankedPicture*>(p.picture); banked && p.bank >= 0)
            banked->setBank(p.bank);
        QWidget* window = p.surface->window();
        const QPoint at = p.surface->mapTo(window, p.inSurface());
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
    }

    bool selected(const ModelControl& model) const
    {
        return !controller->displaySelected() && controller->modelDataGroupIndex() == model.group &&
               controller->modelDataControlIndex() == model.index;
    }

    // The picture is lit at the control, and only there: drawn lit and unlit, it differs on the
    // control and nowhere on its other controls (where those share its place, as a ball in its
    // ring and the arms of the cursor switch do, nowhere around their points).
    static void expectLitAt(const Placement& p)
    {
        ASSERT_EQ(p.picture->cell().state(), 1) << p << " is not lit";
        const QImage lit = p.picture->grab().toImage();
        p.picture->cell().setState(0);
        const QImage dark = p.picture->grab().toImage();
        p.picture->cell().setState(1);
        const qreal ratio = lit.devicePixelRatio();
        const auto difference = [&](const QRect& area) {
            qint64 sum = 0;
            const QRect pixels =
                QRectF(QPointF(area.topLeft()) * ratio, QSizeF(area.size()) * ratio).toRect();
            for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
                for (int x = pixels.left(); x <= pixels.right(); ++x) {
                    if (!lit.rect().contains(x, y))
                        continue;
                    const QRgb a = lit.pixel(x, y);
                    const QRgb b = dark.pixel(x, y);
                    sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                           std::abs(qBlue(a) - qBlue(b));
                }
            }
            return sum;
        };
        EXPECT_GT(difference(p.frame), 500) << p << " is not lit where it lies";
        for (const auto& [other, point] : p.others) {
            const QRect area = p.frame.intersects(other) ? QRect(point - QPoint(2, 2), QSize(5, 5))
                                                         : other.adjusted(2, 2, -2, -2);
            EXPECT_EQ(difference(area), 0)
                << p << " lights another control at " << point.x() << "," << point.y();
        }
    }
};

// The "TCtl" lines the service received since a mark that turn a control on.
std::vector<ModelControl> turnedOn(const std::vector<QJsonObject>& lines)
{
    std::vector<ModelControl> out;
    for (const QJsonObject& line : lines) {
        const std::vector<qint64> w = words(line);
        if (w.size() == 4 && w[3] == 1)
            out.push_back({int(w[0]), int(w[1])});
    }
    return out;
}

} // namespace

TEST_F(SurfaceControlsTest, AClickOnEveryControlOfEveryUnitSelectsExactlyItAndTellsTheService)
{
    startApplication();
    const std::vector<Placement> placements = placementsIn(openEveryUnit());
    std::set<ModelControl> drawn;
    for (const Placement& p : placements)
        drawn.insert(p.model);
    for (const ModelControl& model : everyControl())
        EXPECT_TRUE(drawn.count(model)) << model << " is drawn in no window";

    // Something else first, so that the first control's click moves the selection.
    click(placements.back());
    const qsizetype from = mark();
    std::vector<ModelControl> expected;
    for (const Placement& p : placements) {
        click(p);
        EXPECT_TRUE(selected(p.model))
            << "a click on " << p << " selected model-data " << controller->modelDataGroupIndex()
            << "/" << controller->modelDataControlIndex();
        // A group drawn a second time (the TLW's function keys) selects the model's control,
        // which the main unit's numbering names.
        if (controller->selectedGroup() != p.picture->tag()) {
            EXPECT_EQ(p.picture->tag(), 48) << p;
        } else {
            EXPECT_EQ(controller->selectedControl(), p.control) << p;
        }
        // Its picture shows it, and no other picture of the unit shows anything.
        expectLitAt(p);
        for (TVKMultiStateButton* other : p.surface->buttons()) {
            if (other != p.picture) {
                EXPECT_EQ(other->cell().state(), 0)
                    << other->descriptionKey().toStdString() << " stays lit after " << p;
            }
        }
        expected.push_back(p.model);
    }
    // Each click told the service: the control before off, then this one on.
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), int(2 * expected.size()), from, 20000));
    EXPECT_EQ(turnedOn(received(QStringLiteral("TCtl"), from)), expected);
}

TEST_F(SurfaceControlsTest, ATouchOfEveryControlOnTheSurfaceLightsItsPicture)
{
    startApplication();
    const std::vector<CorvaneSurfaceView*> surfaces = openEveryUnit();
    const std::vector<Placement> placements = placementsIn(surfaces);
    service->command(QStringLiteral("send TCtl 1 0 0 1"));
    ASSERT_TRUE(spinUntil([&] { return selected({1, 0}); }));
    for (const ModelControl& model : everyControl()) {
        service->command(QStringLiteral("send TCtl %1 %2 0 1").arg(model.group).arg(model.index));
        ASSERT_TRUE(spinUntil([&] { return selected(model); })) << model << " was not selected";
        // The NV shows the touched control's bank on the next frame.
        nextFrame();
        // Every picture that draws the control lights it: the TLW's function keys beside the
        // main unit's.
        std::set<const TVKMultiStateButton*> lit;
        for (const Placement& p : placements) {
            if (p.model == model) {
                expectLitAt(p);
                lit.insert(p.picture);
            }
        }
        EXPECT_FALSE(lit.empty()) << model << " lights no picture";
        for (CorvaneSurfaceView* surface : surfaces) {
            for (TVKMultiStateButton* picture : surface->buttons()) {
                if (!lit.count(picture)) {
                    EXPECT_EQ(picture->cell().state(), 0)
                        << picture->descriptionKey().toStdString() << " is lit for " << model;
                }
            }
        }
    }
}

TEST_F(SurfaceControlsTest, TheArrowKeysWalkEveryGroupAndEveryPictureInOrder)
{
    startApplication();
    for (CorvaneSurfaceView* surface : openEveryUnit()) {
        QWidget* window = surface->window();
        window->activateWindow();
        window->raise();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        const std::vector<Placement> placements = placementsIn({surface});
        const auto press = [&](Qt::Key key) {
            QWidget* focus = window->focusWidget();
            ASSERT_NE(focus, nullptr);
            QTest::keyClick(focus, key);
        };
        const auto expectOn = [&](const Placement& p, const char* how) {
            EXPECT_TRUE(selected(p.model))
                << how << ": expected " << p << ", selected model-data "
                << controller->modelDataGroupIndex() << "/" << controller->modelDataControlIndex();
            EXPECT_EQ(window->focusWidget(), p.picture) << how << ": the keyboard left " << p;
            EXPECT_EQ(p.picture->cell().state(), 1) << how << ": " << p << " is not lit";
        };

        // Left and Right: each model group this unit draws, control by control, round and back.
        std::map<int, std::vector<const Placement*>> byGroup;
        for (const Placement& p : placements)
            byGroup[p.model.group].push_back(&p);
        for (auto& [group, walk] : byGroup) {
            std::sort(walk.begin(), walk.end(),
                      [](const Placement* a, const Placement* b) { return a->model < b->model; });
            click(*walk.front());
            ASSERT_TRUE(selected(walk.front()->model)) << *walk.front();
            for (size_t step = 1; step <= walk.size(); ++step) {
                press(Qt::Key_Right);
                expectOn(*walk[step % walk.size()], "Right");
            }
            for (size_t step = walk.size(); step-- > 0;) {
                press(Qt::Key_Left);
                expectOn(*walk[step], "Left");
            }
        }

        // Up and Down: each picture's own controls (of the bank shown), in on-screen order.
        std::map<TVKMultiStateButton*, std::vector<const Placement*>> byPicture;
        for (const Placement& p : placements) {
            if (p.bank <= 0)
                byPicture[p.picture].push_back(&p);
        }
        for (auto& [picture, walk] : byPicture) {
            std::sort(walk.begin(), walk.end(), [](const Placement* a, const Placement* b) {
                return a->control < b->control;
            });
            click(*walk.front());
            for (size_t step = 1; step <= walk.size(); ++step) {
                press(Qt::Key_Down);
                expectOn(*walk[step % walk.size()], "Down");
            }
            press(Qt::Key_Up);
            expectOn(*walk.back(), "Up");
        }
    }
}

TEST_F(SurfaceControlsTest, EveryControlOfTheVirtualSurfaceTouchesItAndLightsWhenSelected)
{
    ASSERT_TRUE(startService({QStringLiteral("--window")}));
    startApplication();
    // The virtual surface draws the same units from the same table as the windows, in surfaces
    // of its own; the windows' pictures only say where a unit's controls are.
    const std::vector<Placement> placements = placementsIn(openEveryUnit());
    const TVK_Constant_Server& constants = *TVK_Constant_Server::defaultConstantServer();

    // The NV's bank, function and parameter keys show their banks there as on the hardware.
    std::map<std::pair<qint64, int>, const Placement*> at;
    for (const Placement& p : placements)
        at[{p.picture->tag(), p.control}] = &p;
    const auto clickInSimulator = [&](const Placement& p) {
        const QPoint point = p.inSurface();
        const qsizetype from = mark();
        service->command(
            QStringLiteral("click %1 %2 %3").arg(p.surface->unit()).arg(point.x()).arg(point.y()));
        int group = -1;
        int control = -1;
        constants.modelDataGroupID(p.model.group, p.model.index, group, control);
        const auto lit = service->waitFor(
            [](const QJsonObject& line) { return line.contains(QStringLiteral("lit")); }, 5000,
            from);
        ASSERT_TRUE(lit.has_value()) << "a click on " << p << " in the virtual surface lit nothing";
        EXPECT_TRUE(selected(p.model))
            << "a click on " << p << " in the virtual surface selected "
            << controller->modelDataGroupIndex() << "/" << controller->modelDataControlIndex();
        EXPECT_EQ(lit->value(QStringLiteral("group")).toInteger(), group) << p;
        EXPECT_EQ(lit->value(QStringLiteral("control")).toInteger(), control) << p;
        const std::vector<QJsonObject> touches = [&] {
            std::vector<QJsonObject> out;
            for (qsizetype i = from; i < service->lineCount(); ++i) {
                if (service->lines()[size_t(i)].contains(QStringLiteral("touched")))
                    out.push_back(service->lines()[size_t(i)]);
            }
            return out;
        }();
        ASSERT_FALSE(touches.empty()) << p;
        const QJsonArray touched = touches.front().value(QStringLiteral("touched")).toArray();
        EXPECT_EQ(touched.at(0).toInteger(), p.model.group) << p;
        EXPECT_EQ(touched.at(1).toInteger(), p.model.index) << p;
        EXPECT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from)) << p;
        EXPECT_EQ(turnedOn(received(QStringLiteral("TCtl"), from)),
                  std::vector<ModelControl>{p.model})
            << p;
    };
    // What the virtual NV shows follows every key touched there, as the hardware's does.
    CorvaneNVBanks shown;
    const Placement* previous = nullptr;
    const auto touch = [&](const Placement* p) {
        ASSERT_NE(p, nullptr);
        // The same control twice in a row moves nothing and is not reported again.
        if (!previous || p->model != previous->model)
            clickInSimulator(*p);
        previous = p;
        if (p->surface->unit() == QLatin1String("CorvaneNV"))
            shown.follow(p->picture->tag(), p->control);
    };
    // Something else first, so that the first control's click moves the selection.
    const auto unbanked = std::find_if(placements.rbegin(), placements.rend(),
                                       [](const Placement& p) { return p.bank < 0; });
    ASSERT_NE(unbanked, placements.rend());
    touch(&*unbanked);
    for (const Placement& p : placements) {
        if (p.surface->unit() == QLatin1String("CorvaneNV") && p.bank >= 0) {
            // Bring its bank up with the NV's own keys: the bank key for the LCD buttons, the
            // function key for the parameter keys, and function and parameter for the actions.
            const int tag = int(p.picture->tag());
            const auto functionKey = [&](int f) { return at[{f < 4 ? 42 : 43, f}]; };
            if (tag == 40 && shown.bank != p.bank) {
                touch(at[{41, p.bank}]);
            } else if (tag == 44 && shown.function != p.bank) {
                touch(functionKey(p.bank));
            } else if (tag == 45 && shown.function * 5 + shown.parameter != p.bank) {
                touch(functionKey(p.bank / 5));
                touch(at[{44, p.bank}]);
            }
        }
        touch(&p);
    }
}

namespace {

// Every control and display of the first layer carries a user name naming its place in the
// model, so that a tooltip shows which control it was asked for.
QString placeName(int group, int index, bool display)
{
    return QStringLiteral("%1%2.%3").arg(QChar(display ? u'D' : u'U')).arg(group).arg(index);
}

void nameEveryControl(TVKLayer& layer)
{
    for (const auto* groups : {&layer.groups(), &layer.displayGroups()}) {
        const bool displays = groups == &layer.displayGroups();
        for (size_t g = 0; g < groups->size(); ++g) {
            for (size_t i = 0; i < (*groups)[g].size(); ++i)
                (*groups)[g][i]->setUserName(placeName(int(g), int(i), displays));
        }
    }
}

// What the tooltip over a control says: its name, the user's, and what it does in full.
QString expectedToolTip(const TVKControl& control)
{
    const TVKAction* action = control.action();
    const QString does = isAssigned(action) ? describeAction(*action, Detail::Full)
                         : ControlType::isDisplayType(control.tvkControlType())
                             ? QStringLiteral("No function assigned")
                             : QStringLiteral("No action assigned");
    return QStringLiteral("%1 “%2”\n%3").arg(control.name().simplified(), control.userName(), does);
}

// The tooltip a widget shows for the pointer resting at a point, in plain text.
QString toolTipAt(QWidget* widget, QPoint point)
{
    QHelpEvent event(QEvent::ToolTip, point, widget->mapToGlobal(point));
    QCoreApplication::sendEvent(widget, &event);
    if (!QToolTip::isVisible())
        return QString();
    QTextDocument document;
    document.setHtml(QToolTip::text());
    return document.toPlainText();
}

} // namespace

TEST_F(SurfaceControlsTest, EveryControlAndDisplayOfEveryUnitHasItsTooltip)
{
    CorvaneModelData stored;
    nameEveryControl(*stored.keysetAtIndex(0)->layerAtIndex(0));
    storeConfiguration(stored);
    ASSERT_TRUE(startService({QStringLiteral("--window")}));
    startApplication();
    const std::vector<CorvaneSurfaceView*> surfaces = openEveryUnit();
    const std::vector<Placement> placements = placementsIn(surfaces);
    const TVKLayer& layer = *controller->modelData()->keysetAtIndex(0)->layerAtIndex(0);

    // In the application's windows: every control where the placement table puts it, in every
    // bank of the NV's banked pictures.
    for (const Placement& p : placements) {
        if (auto* banked = dynamic_cast<CorvaneBankedPicture*>(p.picture); banked && p.bank >= 0)
            banked->setBank(p.bank);
        const TVKControl& control = *layer.groups()[size_t(p.model.group)][size_t(p.model.index)];
        EXPECT_EQ(toolTipAt(p.picture, p.point).toStdString(),
                  expectedToolTip(control).toStdString())
            << p;
    }

    // Every display of the model, in whichever window and bank shows it.
    std::set<std::pair<int, int>> shown;
    int cells = 0;
    for (CorvaneSurfaceView* surface : surfaces) {
        for (TVKDisplayView* view : surface->displays()) {
            // The NV's button displays show one bank at a time.
            int dataGroup = -1;
            int dataIndex = -1;
            const bool banked =
                !view->cells().empty() &&
                view->modelDisplayAt(view->cells().front().frame.center(), dataGroup, dataIndex) &&
                dataGroup == nv::kButtonDisplayGroup;
            for (int bank = 0; bank < (banked ? nv::kBanks : 1); ++bank) {
                view->setBank(bank);
                for (const TVKDisplayView::Cell& cell : view->cells()) {
                    ++cells;
                    const QString tip = toolTipAt(view, cell.frame.center());
                    bool found = false;
                    for (size_t g = 0; g < layer.displayGroups().size() && !found; ++g) {
                        const TVKControlGroup& group = layer.displayGroups()[g];
                        for (size_t i = 0; i < group.size() && !found; ++i) {
                            if (tip == expectedToolTip(*group[i])) {
                                found = true;
                                shown.insert({int(g), int(i)});
                            }
                        }
                    }
                    EXPECT_TRUE(found) << surface->unit().toStdString() << " display group "
                                       << view->tag() << " cell " << cell.display << " bank "
                                       << bank << ": " << tip.toStdString();
                }
            }
            view->setBank(0);
        }
    }
    size_t displays = 0;
    for (const TVKControlGroup& group : layer.displayGroups())
        displays += group.size();
    EXPECT_EQ(shown.size(), displays) << "displays drawn in no window, of " << cells << " cells";

    // The virtual surface describes what the service would do: its own copy of the keyset.
    for (const Placement& p : placements) {
        if (p.bank > 0)
            continue; // the virtual NV shows the first bank until one of its keys is touched
        const QPoint point = p.inSurface();
        const qsizetype from = mark();
        service->command(QStringLiteral("tooltip %1 %2 %3")
                             .arg(p.surface->unit())
                             .arg(point.x())
                             .arg(point.y()));
        const auto line = service->waitFor(
            [](const QJsonObject& l) { return l.contains(QStringLiteral("tooltip")); }, 5000, from);
        ASSERT_TRUE(line.has_value()) << p;
        const TVKControl& control = *layer.groups()[size_t(p.model.group)][size_t(p.model.index)];
        EXPECT_EQ(line->value(QStringLiteral("tooltip")).toString().toStdString(),
                  expectedToolTip(control).toStdString())
            << p;
    }
}
