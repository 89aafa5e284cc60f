#include "VirtualSurface.h"

#include "ConfigMirror.h"
#include "ServiceSimulator.h"
#include "views/ControlToolTips.h"
#include "views/CorvaneSurfaceView.h"
#include "views/SurfaceScrollArea.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMultiStateButton.h"
#include "views/WindowPlacement.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QJsonArray>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>

VirtualSurface::VirtualSurface(ServiceSimulator& simulator) : m_simulator(simulator)
{
    setWindowTitle(QStringLiteral("Corvane virtual surface"));
    for (const auto& [unit, title] :
         {std::pair{QStringLiteral("CorvaneRS"), QStringLiteral("RS")},
          std::pair{QStringLiteral("Expander"), QStringLiteral("TL")},
          std::pair{QStringLiteral("CorvaneTLW"), QStringLiteral("TLW")},
          std::pair{QStringLiteral("CorvaneTLW2"), QStringLiteral("TLW2")},
          std::pair{QStringLiteral("CorvaneNV"), QStringLiteral("NV")}}) {
        auto* surface = new CorvaneSurfaceView(unit);
        for (TVKMultiStateButton* button : surface->buttons()) {
            // Presses go to the surface, not to the picture's own selection.
            button->installEventFilter(this);
            button->setFocusPolicy(Qt::NoFocus);
        }
        for (TVKDisplayView* display : surface->displays())
            display->installEventFilter(this);
        auto* scroll = new SurfaceScrollArea;
        scroll->setWidget(surface);
        addTab(scroll, title);
        m_surfaces.push_back(surface);
    }
    connect(&simulator, &ServiceSimulator::controlLit, this, &VirtualSurface::light);
    simulator.setExtraCommands([this](const QStringList& words) { return runCommand(words); });
}

TVKControl* VirtualSurface::controlUnder(QWidget* target, QPoint local) const
{
    ConfigMirror* mirror = m_simulator.mirror();
    if (!mirror)
        return nullptr;
    const corvane::PictureScope scope{&mirror->modelData(), int(m_simulator.currentKeyset()),
                                      int(m_simulator.currentLayer())};
    if (auto* picture = qobject_cast<TVKMultiStateButton*>(target))
        return corvane::controlAt(*picture, local, scope);
    if (auto* view = qobject_cast<TVKDisplayView*>(target))
        return corvane::displayAt(*view, local, scope);
    return nullptr;
}

QString VirtualSurface::toolTipAt(const CorvaneSurfaceView& surface, QPoint point) const
{
    QWidget* target = surface.childAt(point);
    const TVKControl* control =
        target ? controlUnder(target, target->mapFrom(&surface, point)) : nullptr;
    return control ? corvane::controlToolTip(*control) : QString();
}

void VirtualSurface::showOnScreen()
{
    // The whole unit where the screen has room; on a smaller screen the window fits the screen
    // and the unit scrolls.
    // Until the desktop frames the window, a title bar's height stands for its frame.
    const QMargins frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this), 0, 0);
    resize(sizeHint());
    if (const QScreen* shown = screen())
        setGeometry(corvane::placeWindow(size().grownBy(frame), shown->availableGeometry(), {})
                        .marginsRemoved(frame));
    show();
    corvane::keepOnScreen(this);
}

namespace {

QJsonArray rectArray(const QRect& r)
{
    return QJsonArray{r.x(), r.y(), r.width(), r.height()};
}

} // namespace

bool VirtualSurface::runCommand(const QStringList& words)
{
    if (words.size() == 1 && words.at(0) == QLatin1String("window")) {
        // Where the window lies, on what room, and how far the unit shown scrolls each way.
        const auto* scroll = qobject_cast<const QScrollArea*>(currentWidget());
        m_simulator.emitLine({{QStringLiteral("frame"), rectArray(frameGeometry())},
                              {QStringLiteral("available"),
                               rectArray(screen() ? screen()->availableGeometry() : QRect())},
                              {QStringLiteral("scrolls"),
                               QJsonArray{scroll ? scroll->horizontalScrollBar()->maximum() : 0,
                                          scroll ? scroll->verticalScrollBar()->maximum() : 0}}});
        return true;
    }
    if (words.size() != 4 ||
        (words.at(0) != QLatin1String("click") && words.at(0) != QLatin1String("tooltip")))
        return false;
    for (CorvaneSurfaceView* surface : m_surfaces) {
        if (surface->unit() != words.at(1))
            continue;
        const QPoint at(words.at(2).toInt(), words.at(3).toInt());
        if (words.at(0) == QLatin1String("tooltip")) {
            m_simulator.emitLine({{QStringLiteral("tooltip"), toolTipAt(*surface, at)},
                                  {QStringLiteral("unit"), surface->unit()}});
            return true;
        }
        QWidget* target = surface->childAt(at);
        if (!target)
            return true;
        const QPointF local = target->mapFrom(surface, at);
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, local, target->mapToGlobal(local), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(target, &event);
        }
        return true;
    }
    return false;
}

bool VirtualSurface::eventFilter(QObject* watched, QEvent* event)
{
    // Tooltips describe what the service does with a control: its keyset's and layer's action.
    if (event->type() == QEvent::ToolTip && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        const auto* help = static_cast<const QHelpEvent*>(event);
        corvane::showControlToolTip(*widget, *help, controlUnder(widget, help->pos()));
        return true;
    }
    auto* button = qobject_cast<TVKMultiStateButton*>(watched);
    if (!button ||
        (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonRelease &&
         event->type() != QEvent::MouseButtonDblClick))
        return QTabWidget::eventFilter(watched, event);
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton)
        return true;
    if (event->type() == QEvent::MouseButtonRelease) {
        if (m_pressedGroup >= 0)
            m_simulator.touch(std::uint32_t(m_pressedGroup), std::uint32_t(m_pressedControl), 0);
        m_pressedGroup = m_pressedControl = -1;
        return true;
    }
    for (qint64 k = 1; k < button->numImages(); ++k) {
        const QPainterPath* path = button->hitTestPath(k);
        if (!path || !path->contains(mouse->position()))
            continue;
        const qint64 onscreen = button->controlForImageIndex(quint64(k));
        int group = 0;
        int control = 0;
        if (onscreen >= 0 &&
            m_constants.onscreenGroup(int(button->tag()), int(onscreen), group, control)) {
            m_pressedGroup = group;
            m_pressedControl = control;
            followNVBanks(int(button->tag()), int(onscreen));
            m_simulator.touch(std::uint32_t(group), std::uint32_t(control), 1);
        }
        break;
    }
    return true;
}

void VirtualSurface::light(std::uint32_t group, std::uint32_t control)
{
    int onscreen = -1;
    int onscreenControl = 0;
    m_constants.modelDataGroupID(int(group), int(control), onscreen, onscreenControl);
    followNVBanks(onscreen, onscreenControl);
    for (CorvaneSurfaceView* surface : m_surfaces) {
        for (TVKMultiStateButton* button : surface->buttons()) {
            const qint64 k =
                button->tag() == onscreen ? button->imageIndexForControl(onscreenControl) : -1;
            if (k > 0 && k < button->numImages()) {
                button->setAlternateImage(button->images().value(k));
                button->cell().setState(1);
                m_simulator.emitLine({{QStringLiteral("lit"), surface->unit()},
                                      {QStringLiteral("group"), button->tag()},
                                      {QStringLiteral("control"), onscreenControl},
                                      {QStringLiteral("state"), k}});
            } else {
                button->cell().setState(0);
            }
        }
    }
}

void VirtualSurface::followNVBanks(int onscreenGroup, int onscreenControl)
{
    if (!m_nvBanks.follow(onscreenGroup, onscreenControl))
        return;
    for (CorvaneSurfaceView* surface : m_surfaces) {
        if (surface->unit() == QLatin1String("CorvaneNV"))
            m_nvBanks.apply(*surface);
    }
}
