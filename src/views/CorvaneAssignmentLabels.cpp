#include "views/CorvaneAssignmentLabels.h"

#include "actions/ActionDescription.h"
#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMultiStateButton.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

namespace note = corvane::note;

namespace {

// The labels' text size, in the picture's pixels: small beside the pictures' own lettering,
// still legible on a 28-pixel key.
constexpr int kTextPixels = 10;

} // namespace

CorvaneAssignmentLabels::CorvaneAssignmentLabels(CorvaneSurfaceView& surface)
    : QWidget(&surface), m_surface(surface)
{
    setObjectName(QStringLiteral("AssignmentLabels"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    QFont small = font();
    small.setPixelSize(kTextPixels);
    // A narrower face where the desktop has one: a few more letters on a small key.
    small.setStretch(QFont::SemiCondensed);
    setFont(small);
    setGeometry(surface.rect());

    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    // What the labels say: edits (their undo and redo post the same), names, the layer and
    // keyset shown, the emulation that some descriptions name.
    center.observeEach<note::UpdateKSum, note::ShowUserNameChange, note::SelectedLayerChange,
                       note::RemoteLayerChange, note::SelectedKeysetChange, note::KeysetCountChange,
                       note::EmulChg>(m_observations, nullptr, [this] { invalidate(); });
    // Which control is lit.
    center.observeEach<note::SelectionChange, note::RemoteSelectionChange,
                       note::DisplaySelectionChange, note::RemoteDisplaySelectionChange,
                       note::SelectedGroupChange>(m_observations, nullptr,
                                                  [this] { followSelection(); });
}

void CorvaneAssignmentLabels::invalidate()
{
    m_valid = false;
    m_shownValid = false;
    if (isVisible())
        update();
}

const std::vector<CorvaneAssignmentLabels::Spot>& CorvaneAssignmentLabels::spots()
{
    if (!m_valid)
        rebuild();
    return m_spots;
}

int CorvaneAssignmentLabels::litSpot() const
{
    const TVKMultiStateButton* checked = nullptr;
    qint64 lit = -1;
    for (size_t i = 0; i < m_spots.size(); ++i) {
        const Spot& spot = m_spots[i];
        if (spot.picture != checked) {
            checked = spot.picture;
            lit = spot.picture->cell().state() != 0
                      ? spot.picture->images().indexOf(spot.picture->shownImage())
                      : -1;
        }
        if (lit > 0 && spot.state == lit)
            return int(i);
    }
    return -1;
}

const std::vector<corvane::PlacedLabel>& CorvaneAssignmentLabels::labels()
{
    if (!m_valid)
        rebuild();
    const int lit = litSpot();
    if (!m_shownValid || lit != m_shownLit) {
        std::vector<corvane::PlacedLabel> next = m_base;
        if (lit >= 0)
            corvane::AssignmentLabelLayout(font(), rect(), m_keepClear)
                .keepOutlineClear(next, m_geometry, lit);
        // A picture lit by a click before the selection was announced: the label that moved
        // is drawn afresh wherever it went.
        QRegion moved;
        const auto missingFrom = [&moved](const std::vector<corvane::PlacedLabel>& from,
                                          const std::vector<corvane::PlacedLabel>& in) {
            for (const corvane::PlacedLabel& label : from) {
                const bool kept = std::any_of(in.begin(), in.end(), [&](const auto& other) {
                    return other.spot == label.spot && other.rect == label.rect &&
                           other.text == label.text;
                });
                if (!kept)
                    moved |= label.rect.toAlignedRect();
            }
        };
        missingFrom(m_shown, next);
        missingFrom(next, m_shown);
        m_shown = std::move(next);
        m_shownLit = lit;
        m_shownValid = true;
        if (!moved.isEmpty() && isVisible())
            update(moved);
    }
    return m_shown;
}

void CorvaneAssignmentLabels::rebuild()
{
    m_spots.clear();
    m_geometry.clear();
    m_keepClear.clear();
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    const TVKController* controller = TVKController::c();
    const TVKModelData* model = TVKModelData::defaultModelData();
    for (TVKMultiStateButton* picture : m_surface.buttons()) {
        const QPoint offset = picture->geometry().topLeft();
        for (qint64 k = 1; k < picture->numImages(); ++k) {
            const QPainterPath* outline = picture->hitTestPath(k);
            const qint64 control = picture->controlForImageIndex(quint64(k));
            int group = -1;
            int index = -1;
            if (!outline || outline->isEmpty() || control < 0 || !constants ||
                !constants->onscreenGroup(int(picture->tag()), int(control), group, index))
                continue;
            const TVKControl* shown =
                model && controller
                    ? model->controlForKeyset(int(controller->selectedKeyset()),
                                              int(controller->selectedLayer()), group, index)
                    : nullptr;
            m_spots.push_back({picture, k, picture->tag(), control, group, index});
            m_geometry.push_back(
                {outline->translated(offset),
                 shown ? corvane::assignmentLabel(*shown).simplified() : QString()});
        }
    }
    // The displays show text of their own.
    for (const TVKDisplayView* display : m_surface.displays())
        m_keepClear.push_back(QRectF(display->geometry()));
    m_base = corvane::AssignmentLabelLayout(font(), rect(), m_keepClear).layout(m_geometry);
    m_valid = true;
    m_shownValid = false;
}

QRect CorvaneAssignmentLabels::around(int spot) const
{
    if (spot < 0 || size_t(spot) >= m_geometry.size())
        return QRect();
    // Every place the spot's label may take: beside, above, below.
    const QRectF box = m_geometry[size_t(spot)].outline.boundingRect();
    const qreal side = 130;
    const qreal high = 2 * fontMetrics().height();
    return box.adjusted(-side, -high, side, high).toAlignedRect();
}

void CorvaneAssignmentLabels::followSelection()
{
    if (!isVisible())
        return;
    if (!m_valid) {
        update();
        return;
    }
    // Only the lit label moves: the places it leaves and the places it may take.
    QRegion changed = around(m_shownLit);
    const TVKController* controller = TVKController::c();
    if (controller && !controller->displaySelected()) {
        for (size_t i = 0; i < m_spots.size(); ++i) {
            const Spot& spot = m_spots[i];
            if ((spot.tag == controller->selectedGroup() &&
                 spot.control == controller->selectedControl()) ||
                (spot.group == controller->modelDataGroupIndex() &&
                 spot.index == controller->modelDataControlIndex()))
                changed |= around(int(i));
        }
    }
    m_shownValid = false;
    if (!changed.isEmpty())
        update(changed);
}

void CorvaneAssignmentLabels::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        invalidate();
}

void CorvaneAssignmentLabels::paintEvent(QPaintEvent* event)
{
    const std::vector<corvane::PlacedLabel>& shown = labels();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font());
    // A plate of the theme's own base and text colours: readable on either finish, in a light
    // or a dark theme.
    QColor plate = palette().color(QPalette::Base);
    plate.setAlpha(235);
    const QColor ink = palette().color(QPalette::Text);
    QColor rim = ink;
    rim.setAlpha(110);
    for (const corvane::PlacedLabel& label : shown) {
        if (!event->region().intersects(label.rect.toAlignedRect()))
            continue;
        painter.setPen(QPen(rim, 1));
        painter.setBrush(plate);
        painter.drawRoundedRect(label.rect.adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
        painter.setPen(ink);
        painter.drawText(label.rect, Qt::AlignCenter, label.text);
    }
}
