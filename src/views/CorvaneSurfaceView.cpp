#include "views/CorvaneSurfaceView.h"

#include "core/Notifications.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneAssignmentLabels.h"
#include "views/CorvanePictures.h"
#include "views/TVKBundle.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMultiStateButton.h"

#include <QPaintEvent>
#include <QPainter>

using corvane::PlistValue;

namespace {

TVKMultiStateButton* makeButton(const PlistValue& entry, QWidget* parent)
{
    const QString key = entry.value(u"InfoKey").toString();
    const QString cls = entry.value(u"Class").toString();
    const int bank = int(entry.value(u"Bank").toInteger());
    if (cls == QStringLiteral("ring"))
        return new CorvaneTrackballRingControl(int(entry.value(u"TrackballNumber").toInteger()),
                                               parent);
    if (cls == QStringLiteral("lcdbutton")) {
        std::vector<CorvaneLCDButtonPicture::ControlFrame> frames;
        const PlistValue& controls = entry.value(u"Controls");
        for (qsizetype i = 0; i < controls.size(); ++i) {
            frames.push_back({int(controls.at(i).value(u"Control").toInteger()),
                              TVKBundle::rectFrom(controls.at(i).value(u"Frame"))});
        }
        return new CorvaneLCDButtonPicture(key, bank, std::move(frames), parent);
    }
    if (bank > 0)
        return new CorvaneBankedPicture(key, bank, parent);
    if (key == JogShuttleControl::infoKey())
        return new CorvaneJogShuttleControl(parent);
    if (key == VStickControl::infoKey())
        return new VStickControl(parent);
    if (key == JoystickControl::infoKey())
        return new JoystickControl(parent);
    return new TVKMultiStateButton(key, parent);
}

// What a screen reader says for a picture: the name of the group its first control belongs to.
QString accessibleNameFor(const TVKMultiStateButton& button)
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    int group = 0;
    int index = 0;
    if (constants && !button.groupControls().isEmpty() &&
        constants->onscreenGroup(int(button.tag()), button.groupControls().first(), group, index))
        return constants->dataModelGroupNameForGroup(group).trimmed();
    return button.descriptionKey();
}

TVKDisplayView::Kind kindFrom(const QString& kind)
{
    if (kind == QStringLiteral("timecode"))
        return TVKDisplayView::Kind::Timecode;
    if (kind == QStringLiteral("lcdbutton"))
        return TVKDisplayView::Kind::LcdButton;
    return TVKDisplayView::Kind::Lcd;
}

} // namespace

CorvaneSurfaceView::CorvaneSurfaceView(const QString& unit, QWidget* parent)
    : QWidget(parent), m_unit(unit)
{
    const PlistValue& table = TVKBundle::mainBundle().surface(unit);
    m_silver = table.value(u"Picture").toString();
    m_midnight = table.value(u"MidnightPicture").toString();
    const PlistValue& size = table.value(u"Size");
    setFixedSize(int(size.at(0).toInteger()), int(size.at(1).toInteger()));
    setAttribute(Qt::WA_OpaquePaintEvent);

    const PlistValue& buttons = table.value(u"Buttons");
    for (qsizetype i = 0; i < buttons.size(); ++i) {
        TVKMultiStateButton* button = makeButton(buttons.at(i), this);
        button->setGeometry(TVKBundle::rectFrom(buttons.at(i).value(u"Frame")));
        button->awakeFromNib();
        button->setAccessibleName(accessibleNameFor(*button));
        m_buttons.push_back(button);
    }
    const PlistValue& displays = table.value(u"Displays");
    for (qsizetype i = 0; i < displays.size(); ++i) {
        const PlistValue& group = displays.at(i);
        const PlistValue& cellList = group.value(u"Cells");
        QRect united;
        for (qsizetype c = 0; c < cellList.size(); ++c)
            united = united.united(TVKBundle::rectFrom(cellList.at(c).value(u"Frame")));
        std::vector<TVKDisplayView::Cell> cells;
        for (qsizetype c = 0; c < cellList.size(); ++c) {
            cells.push_back({int(cellList.at(c).value(u"Display").toInteger()),
                             TVKBundle::rectFrom(cellList.at(c).value(u"Frame"))
                                 .translated(-united.topLeft())});
        }
        auto* view = new TVKDisplayView(
            int(group.value(u"Group").toInteger()), kindFrom(group.value(u"Kind").toString()),
            int(group.value(u"Characters").toInteger()), std::move(cells), this);
        view->setGeometry(united);
        m_displays.push_back(view);
    }
    // Over everything else, shown on request.
    m_labels = new CorvaneAssignmentLabels(*this);
    m_labels->hide();
    corvane::NotificationCenter::defaultCenter().observeEach<corvane::note::HdwStyChg>(
        m_observations, nullptr, [this] { followHardwareStyle(); });
    followHardwareStyle();
}

void CorvaneSurfaceView::setShowsAssignments(bool shown)
{
    if (shown == showsAssignments())
        return;
    if (shown) {
        m_labels->invalidate();
        m_labels->raise();
    }
    m_labels->setVisible(shown);
}

bool CorvaneSurfaceView::showsAssignments() const
{
    return !m_labels->isHidden();
}

void CorvaneSurfaceView::controlsShownChanged()
{
    m_labels->invalidate();
}

void CorvaneSurfaceView::followHardwareStyle()
{
    showPicture(TVKMultiStateButton::modelHardwareStyle() == 1 ? m_silver : m_midnight);
}

void CorvaneSurfaceView::showPicture(const QString& name)
{
    QString picture = name;
    if (picture.endsWith(QStringLiteral(".png")))
        picture.chop(4);
    if (picture == m_picture)
        return;
    m_picture = picture;
    update();
}

TVKMultiStateButton* CorvaneSurfaceView::buttonWithTag(qint64 tag) const
{
    for (TVKMultiStateButton* button : m_buttons) {
        if (button->tag() == tag)
            return button;
    }
    return nullptr;
}

TVKDisplayView* CorvaneSurfaceView::displayWithTag(int tag) const
{
    for (TVKDisplayView* view : m_displays) {
        if (view->tag() == tag)
            return view;
    }
    return nullptr;
}

void CorvaneSurfaceView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    // The panel's rounded corners show the window behind them.
    painter.fillRect(event->rect(), palette().color(QPalette::Window));
    painter.drawPixmap(0, 0, TVKBundle::mainBundle().sheet(m_picture, devicePixelRatioF()));
}
