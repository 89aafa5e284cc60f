#include "views/TVKMultiStateButton.h"

#include "app/TVKController.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "surface/TVK_Constant_Server.h"
#include "views/ControlToolTips.h"
#include "views/TVKBundle.h"
#include "views/TVKPictureKeys.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QtMath>
#include <exception>
#include <typeinfo>

namespace note = corvane::note;
using corvane::NotificationCenter;
using corvane::PlistValue;

int TVKMultiStateButton::modelHardwareStyle()
{
    const auto* model = dynamic_cast<const CorvaneModelData*>(TVKModelData::defaultModelData());
    return model ? model->hardwareStyle() : 0;
}

namespace {

// Whether the picture of an on-screen group shows the selected control: the selection is in that
// group, or the group draws the selected control's model group a second time (the function keys
// of the TLW and TLW2 beside the main unit's). `drawn` is the group's controls as the picture
// keeps them: every picture asks on every touch, before the touch is answered.
bool showsSelection(const TVKController& controller, qint64 tag, const QList<int>& drawn)
{
    if (controller.displaySelected())
        return false;
    if (controller.selectedGroup() == tag)
        return true;
    const TVK_Constant_Server* constants = controller.constantServer();
    const qint64 control = controller.selectedControl();
    if (!constants || !drawn.contains(int(control)))
        return false;
    int group = 0;
    int index = 0;
    return constants->onscreenGroup(int(tag), int(control), group, index) &&
           group == controller.modelDataGroupIndex() && index == controller.modelDataControlIndex();
}

TVKImageList midnightNames(const TVKImageList& names)
{
    TVKImageList midnight;
    midnight.reserve(names.size());
    for (const QString& name : names)
        midnight.append(name + QStringLiteral("_Mid"));
    return midnight;
}

TVKImageList namesFrom(const PlistValue& list)
{
    TVKImageList names;
    for (qsizetype i = 0; i < list.size(); ++i)
        names.append(list.at(i).toString());
    return names;
}

} // namespace

// --- The cell ----------------------------------------------------------------------------------

void TVKMultiStateButtonCell::setImageCount(qint64 numImages, const TVKImageList* images,
                                            const TVKHitTestPaths* hitTestPaths)
{
    m_numImages = numImages;
    m_images = images;
    m_hitTestPaths = hitTestPaths;
}

void TVKMultiStateButtonCell::startObserving()
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.observeEach<note::SelectedGroupChange>(m_observations, nullptr,
                                                  [this] { handleSelectedGroupChange(); });
    // The picture shows the selected control lit whoever moved the selection: a touch, a click,
    // the start-up's move to the NV.
    center.observeEach<note::SelectionChange, note::RemoteSelectionChange>(
        m_observations, nullptr, [this] { handleRemoteSelectionChange(); });
    // A display chosen on screen or reached by an undo: no control is lit.
    center.observeEach<note::DisplaySelectionChange, note::RemoteDisplaySelectionChange>(
        m_observations, nullptr, [this] { handleDisplayChange(); });
    // A window opened later shows what is selected already.
    handleRemoteSelectionChange();
}

void TVKMultiStateButtonCell::setState(int state)
{
    if (m_state == state)
        return;
    m_state = state;
    m_button.update();
}

void TVKMultiStateButtonCell::hitTest(QPointF point)
{
    if (m_numImages >= 2 && m_hitTestPaths) {
        for (qint64 k = 1; k < m_numImages; ++k) {
            // A missing outline can never be hit.
            if (size_t(k) >= m_hitTestPaths->size() || !(*m_hitTestPaths)[size_t(k)])
                continue;
            if ((*m_hitTestPaths)[size_t(k)]->contains(point)) {
                m_imageIndex = quint64(k);
                break;
            }
        }
    }
    if (m_images && qsizetype(m_imageIndex) < m_images->size())
        m_button.setAlternateImage(m_images->at(qsizetype(m_imageIndex)));
}

void TVKMultiStateButtonCell::startTrackingAt(QPointF point)
{
    hitTest(point);
    setState(m_imageIndex != 0 ? 1 : 0);
}

void TVKMultiStateButtonCell::stopTracking(QPointF point, bool mouseIsUp)
{
    if (mouseIsUp)
        hitTest(point);
    setState(m_imageIndex != 0 ? 1 : 0);
}

void TVKMultiStateButtonCell::handleSelectedGroupChange()
{
    const TVKController* controller = TVKController::c();
    if (controller && !showsSelection(*controller, m_tag, m_button.groupControls()))
        setState(0);
}

void TVKMultiStateButtonCell::remoteSelectionChange()
{
    const TVKController* controller = TVKController::c();
    if (!controller)
        return;
    if (!showsSelection(*controller, m_tag, m_button.groupControls())) {
        setState(0);
        return;
    }
    const qint64 k = m_button.imageIndexForControl(controller->selectedControl());
    if (k < 0 || k >= m_numImages || !m_images || k >= m_images->size())
        return;
    m_button.setAlternateImage(m_images->at(qsizetype(k)));
    setState(1);
}

void TVKMultiStateButtonCell::handleRemoteSelectionChange()
{
    try {
        remoteSelectionChange();
    } catch (const std::exception& e) {
        corvane::log(
            QStringLiteral("TVKMultiStateButtonCell handleRemoteSelectionChange: Caught %1: %2")
                .arg(QString::fromLatin1(typeid(e).name()), QString::fromLocal8Bit(e.what())));
    }
}

void TVKMultiStateButtonCell::handleDisplayChange()
{
    setState(0);
}

// --- The button --------------------------------------------------------------------------------

TVKMultiStateButton::TVKMultiStateButton(const QString& key, QWidget* parent)
    : QAbstractButton(parent), m_key(key.isEmpty() ? infoKey() : key),
      m_cell(std::make_unique<TVKMultiStateButtonCell>(*this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_NoSystemBackground);
    TVKPictureKeys::install(this);
}

TVKMultiStateButton::~TVKMultiStateButton() = default;

void TVKMultiStateButton::setTag(qint64 tag)
{
    m_tag = tag;
    m_cell->setTag(tag);
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    m_controls = constants ? constants->onscreenControlsInGroup(int(tag)) : QList<int>();
}

qint64 TVKMultiStateButton::controlForImageIndex(quint64 k) const
{
    const qsizetype at = firstShownControl() + qsizetype(k) - 1;
    if (k == 0 || qint64(k) >= m_numImages || at >= m_controls.size())
        return -1;
    return m_controls.at(at);
}

qint64 TVKMultiStateButton::imageIndexForControl(qint64 control) const
{
    const qsizetype k = m_controls.indexOf(int(control)) - firstShownControl() + 1;
    if (m_controls.indexOf(int(control)) < 0 || k < 1 || k >= m_numImages)
        return -1;
    return k;
}

qint64 TVKMultiStateButton::controlForModelControl(int group, int index) const
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    for (const int control : m_controls) {
        int dataGroup = -1;
        int dataIndex = -1;
        if (constants && constants->onscreenGroup(int(m_tag), control, dataGroup, dataIndex) &&
            dataGroup == group && dataIndex == index)
            return control;
    }
    return -1;
}

void TVKMultiStateButton::setDescriptionImages(const TVKImageList& names)
{
    m_silverImages = names;
    m_midnightImages = midnightNames(names);
    m_images = names;
    m_numImages = names.size();
}

void TVKMultiStateButton::awakeFromNib()
{
    const PlistValue& description = TVKBundle::mainBundle().objectForInfoDictionaryKey(m_key);
    setDescriptionImages(namesFrom(description.value(u"ImageList")));
    setImage(m_images.value(0));
    setAlternateImage(m_images.value(1));
    parsePathList(description.value(u"PathList"));
    setTag(description.value(u"ControlTag").toInteger());
    m_cell->setImageCount(m_numImages, &m_images, &m_hitTestPaths);
    m_cell->startObserving();
    NotificationCenter::defaultCenter().observeEach<note::HdwStyChg>(
        m_observations, nullptr, [this] { hardwareStyleChanged(); });
    hardwareStyleChanged();
}

void TVKMultiStateButton::parsePathList(const PlistValue& pathList)
{
    for (qsizetype i = 1; i < pathList.size(); ++i)
        parsePath(pathList.at(i), i);
    updateMask();
}

QPoint TVKMultiStateButton::getOpOrigin(const PlistValue& op)
{
    return QPoint(int(op.value(u"Left").toInteger()), int(op.value(u"Top").toInteger()));
}

QSize TVKMultiStateButton::getOpSize(const PlistValue& op)
{
    return QSize(int(op.value(u"Width").toInteger()), int(op.value(u"Height").toInteger()));
}

QRect TVKMultiStateButton::getOpRect(const PlistValue& op)
{
    return QRect(getOpOrigin(op), getOpSize(op));
}

QPoint TVKMultiStateButton::getOpPoint(const PlistValue& op)
{
    return QPoint(int(op.value(u"X").toInteger()), int(op.value(u"Y").toInteger()));
}

QPoint TVKMultiStateButton::getOpCenter(const PlistValue& op)
{
    return QPoint(int(op.value(u"CenterX").toInteger()), int(op.value(u"CenterY").toInteger()));
}

double TVKMultiStateButton::getOpRadius(const PlistValue& op)
{
    return op.value(u"Radius").toReal();
}

double TVKMultiStateButton::getOpStartAngle(const PlistValue& op)
{
    return op.value(u"StartAngle").toReal();
}

double TVKMultiStateButton::getOpEndAngle(const PlistValue& op)
{
    return op.value(u"EndAngle").toReal();
}

void TVKMultiStateButton::parsePath(const PlistValue& operations, qsizetype index)
{
    while (qsizetype(m_hitTestPaths.size()) < index)
        m_hitTestPaths.push_back(nullptr);
    if (operations.size() == 0)
        return;
    auto path = std::make_unique<QPainterPath>(outlineFromOperations(operations));
    if (qsizetype(m_hitTestPaths.size()) == index)
        m_hitTestPaths.push_back(std::move(path));
    else
        m_hitTestPaths[size_t(index)] = std::move(path);
}

QPainterPath TVKMultiStateButton::outlineFromOperations(const PlistValue& operations)
{
    QPainterPath path;
    for (qsizetype i = 0; i < operations.size(); ++i) {
        const PlistValue& op = operations.at(i);
        const QString name = op.value(u"Operation").toString();
        if (name == QStringLiteral("Oval")) {
            path.addEllipse(QRectF(getOpRect(op)));
        } else if (name == QStringLiteral("MoveTo")) {
            path.moveTo(getOpPoint(op));
        } else if (name == QStringLiteral("LineTo")) {
            path.lineTo(getOpPoint(op));
        } else if (name == QStringLiteral("Arc") || name == QStringLiteral("ClockwiseArc")) {
            // Angles in degrees, counter-clockwise from three o'clock as drawn; the arc runs
            // from the start angle to the end angle the named way round.
            const QPointF c = getOpCenter(op);
            const double r = getOpRadius(op);
            const QRectF box(c.x() - r, c.y() - r, 2 * r, 2 * r);
            const double from = getOpStartAngle(op);
            double sweep = getOpEndAngle(op) - from;
            if (name == QStringLiteral("Arc")) {
                while (sweep <= 0)
                    sweep += 360;
            } else {
                while (sweep >= 0)
                    sweep -= 360;
            }
            path.arcTo(box, from, sweep);
        }
        // Any other operation is skipped.
    }
    path.closeSubpath();
    return path;
}

const QPainterPath* TVKMultiStateButton::hitTestPath(qint64 k) const
{
    if (k < 0 || size_t(k) >= m_hitTestPaths.size())
        return nullptr;
    return m_hitTestPaths[size_t(k)].get();
}

// Only the controls take clicks; between them, a click reaches whatever lies below (another
// group's picture or the panel), so groups whose frames overlap work as on the hardware.
void TVKMultiStateButton::updateMask()
{
    QRegion region;
    for (const auto& path : m_hitTestPaths) {
        if (!path)
            continue;
        QRegion shape;
        for (const QPolygonF& polygon : path->toFillPolygons())
            shape ^= QRegion(polygon.toPolygon(), Qt::OddEvenFill);
        region |= shape;
    }
    if (!region.isEmpty())
        setMask(region);
}

bool TVKMultiStateButton::hitButton(const QPoint& pos) const
{
    return rect().contains(pos);
}

void TVKMultiStateButton::setImage(const QString& name)
{
    m_image = name;
    update();
}

void TVKMultiStateButton::setAlternateImage(const QString& name)
{
    m_alternateImage = name;
    update();
}

QString TVKMultiStateButton::shownImage() const
{
    return m_cell->state() != 0 ? m_alternateImage : m_image;
}

void TVKMultiStateButton::applyImageSet(const TVKImageList& images)
{
    const qsizetype shown = m_images.indexOf(m_alternateImage);
    m_images = images;
    m_numImages = images.size();
    setImage(m_images.value(0));
    setAlternateImage(m_images.value(shown >= 0 ? shown : 1));
    m_cell->setImageCount(m_numImages, &m_images, &m_hitTestPaths);
}

void TVKMultiStateButton::hardwareStyleChanged()
{
    m_hardwareStyle = modelHardwareStyle();
    applyImageSet(m_hardwareStyle == 1 ? m_silverImages : m_midnightImages);
}

void TVKMultiStateButton::sendAction()
{
    const quint64 k = m_cell->imageIndex();
    if (TVKController* controller = TVKController::c())
        controller->handleMultiStateTVKButton(m_tag, qint64(k), controlForImageIndex(k));
}

qint64 TVKMultiStateButton::controlAt(QPointF point) const
{
    for (qint64 k = 1; k < m_numImages; ++k) {
        const QPainterPath* path = hitTestPath(k);
        if (path && path->contains(point))
            return controlForImageIndex(quint64(k));
    }
    return -1;
}

bool TVKMultiStateButton::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractButton::event(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    const std::optional<corvane::PictureScope> scope = corvane::applicationScope();
    corvane::showControlToolTip(*this, *help,
                                scope ? corvane::controlAt(*this, help->pos(), *scope) : nullptr);
    return true;
}

void TVKMultiStateButton::chooseControl(qint64 control)
{
    const qint64 k = imageIndexForControl(control);
    if (k > 0) {
        m_cell->setImageIndex(quint64(k));
        setAlternateImage(m_images.value(k));
        m_cell->setState(1);
        sendAction();
        return;
    }
    // In another bank: the window shows that bank once the control is selected.
    if (TVKController* controller = TVKController::c())
        controller->handleTVKControl(control, m_tag);
}

void TVKMultiStateButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPixmap picture = TVKBundle::mainBundle().imageNamed(shownImage(), devicePixelRatioF());
    if (!picture.isNull())
        painter.drawPixmap(0, 0, picture);
    paintOverlay(painter);
    if (hasFocus()) {
        // The keyboard's place: the chosen control, or the first one the arrows reach.
        const QPainterPath* path = hitTestPath(focusIndex());
        if (path) {
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawPath(*path);
        }
    }
}

qint64 TVKMultiStateButton::focusIndex() const
{
    const qint64 chosen = qint64(m_cell->imageIndex());
    const QPainterPath* path = hitTestPath(chosen);
    if (chosen != 0 && path && !path->boundingRect().isEmpty())
        return chosen;
    for (qint64 k = 1; k < m_numImages; ++k) {
        path = hitTestPath(k);
        if (path && !path->boundingRect().isEmpty())
            return k;
    }
    return 0;
}

qint64 TVKMultiStateButton::focusControl() const
{
    // While the picture shows the selection, the keyboard is on the selected control, even when
    // the selection moved here from elsewhere.
    const TVKController* controller = TVKController::c();
    if (controller && m_cell->state() != 0 && showsSelection(*controller, m_tag, m_controls) &&
        m_controls.contains(int(controller->selectedControl())))
        return controller->selectedControl();
    return controlForImageIndex(quint64(focusIndex()));
}

void TVKMultiStateButton::stepThroughPicture(int step)
{
    const qint64 count = m_numImages - 1;
    if (count < 1)
        return;
    const qint64 from = imageIndexForControl(focusControl());
    // From nothing chosen, the first step lands on the first (or last) control.
    qint64 k = from > 0 ? from : (step > 0 ? 0 : 1);
    k = (k - 1 + step + count) % count + 1;
    chooseControl(controlForImageIndex(quint64(k)));
}

void TVKMultiStateButton::stepThroughModelGroup(int step)
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    const qint64 from = focusControl();
    int group = -1;
    int index = -1;
    if (!constants || from < 0 || !constants->onscreenGroup(int(m_tag), int(from), group, index))
        return;
    const int count = constants->numberOfControlsInGroup(group);
    QList<TVKMultiStateButton*> pictures{this};
    if (parentWidget()) {
        for (TVKMultiStateButton* other :
             parentWidget()->findChildren<TVKMultiStateButton*>(Qt::FindDirectChildrenOnly)) {
            if (other != this)
                pictures.append(other);
        }
    }
    // The next control of the group that this unit draws.
    for (int tries = 1; tries < count; ++tries) {
        const int next = ((index + step * tries) % count + count) % count;
        for (TVKMultiStateButton* picture : pictures) {
            const qint64 control = picture->controlForModelControl(group, next);
            if (control < 0)
                continue;
            if (picture != this)
                picture->setFocus(Qt::OtherFocusReason);
            picture->chooseControl(control);
            return;
        }
    }
}

void TVKMultiStateButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_cell->startTrackingAt(event->position());
    QAbstractButton::mousePressEvent(event);
}

void TVKMultiStateButton::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    QAbstractButton::mouseReleaseEvent(event);
    const bool inside = rect().contains(event->position().toPoint());
    m_cell->stopTracking(event->position(), inside);
    if (inside)
        sendAction();
}

void TVKMultiStateButton::keyPressEvent(QKeyEvent* event)
{
    int step = 0;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        step = -1;
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        step = 1;
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (focusIndex() != 0)
            chooseControl(controlForImageIndex(quint64(focusIndex())));
        return;
    default:
        QAbstractButton::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
        stepThroughPicture(step);
    else
        stepThroughModelGroup(step);
}

void TVKMultiStateButton::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    update();
}

void TVKMultiStateButton::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    update();
}

// --- The jog wheel, the cursor switch, the joystick --------------------------------------------

CorvaneJogShuttleControl::CorvaneJogShuttleControl(QWidget* parent)
    : JogShuttleControl(JogShuttleControl::infoKey(), parent)
{}

void CorvaneJogShuttleControl::hardwareStyleChanged()
{
    TVKMultiStateButton::hardwareStyleChanged();
    setImage(m_images.value(0));
    setAlternateImage(m_images.value(1));
}

VStickControl::VStickControl(QWidget* parent) : TVKMultiStateButton(infoKey(), parent) {}

JoystickControl::JoystickControl(QWidget* parent) : TVKMultiStateButton(infoKey(), parent) {}

// --- The trackball rings -----------------------------------------------------------------------

TrackballRingControl::TrackballRingControl(int trackballNumber, QWidget* parent)
    : TVKMultiStateButton(infoKey(), parent), m_trackballNumber(trackballNumber)
{}

int TrackballRingControl::groupID() const
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    return constants ? constants->onscreenTrackballGroupIDForTrackball(m_trackballNumber) : -1;
}

void TrackballRingControl::awakeFromNib()
{
    m_color = 0;
    const PlistValue& description = TVKBundle::mainBundle().objectForInfoDictionaryKey(m_key);
    const PlistValue& lists = description.value(u"ImageList");
    std::vector<TVKImageList> sets;
    for (qsizetype i = 0; i < lists.size(); ++i)
        sets.push_back(namesFrom(lists.at(i)));
    sets.resize(std::max<size_t>(sets.size(), 4));
    m_silverImages = sets[0];
    m_midnightImages = midnightNames(sets[0]);
    m_greenImages = sets[1];
    m_blueImages = sets[2];
    m_redImages = sets[3];
    m_imageList = {m_silverImages, m_greenImages, m_blueImages, m_redImages};
    for (size_t i = 4; i < sets.size(); ++i)
        m_imageList.push_back(sets[i]);

    m_images = finishedSet(m_imageList[size_t(m_color)]);
    m_numImages = m_images.size();
    setImage(m_images.value(0));
    setAlternateImage(m_images.value(1));
    parsePathList(description.value(u"PathList"));

    if (const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer()) {
        int group = 0;
        int control = 0;
        constants->modelDataGroupID(constants->trackballDataGroupID(), m_trackballNumber, group,
                                    control);
        setTag(group);
    }
    m_cell->setImageCount(m_numImages, &m_images, &m_hitTestPaths);
    m_cell->startObserving();
    NotificationCenter& center = NotificationCenter::defaultCenter();
    m_observations.push_back(center.observe<note::DispColorChange>(
        nullptr, [this](const note::DispColorChange& n) { handleColorChange(n); }));
    center.observeEach<note::SelectedLayerChange, note::SelectedKeysetChange>(
        m_observations, nullptr, [this] { handleLayerChange(); });
}

void TrackballRingControl::setColor(qint64 color)
{
    // A colour beyond the sets (an odd stored value) leaves the ring as it is.
    if (color < 0 || color >= qint64(m_imageList.size())) {
        corvane::log(
            QStringLiteral("TrackballRingControl: no picture set for colour %1").arg(color));
        return;
    }
    m_color = color;
    applyImageSet(finishedSet(m_imageList[size_t(color)]));
    update();
}

void TrackballRingControl::handleColorChange(const note::DispColorChange& n)
{
    if (n.groupID == groupID())
        setColor(n.color);
}

void TrackballRingControl::handleLayerChange()
{
    const TVKController* controller = TVKController::c();
    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    if (!controller || !model || !constants)
        return;
    const auto* trackball = dynamic_cast<const TVK4WayControl*>(
        model->controlForKeyset(int(controller->selectedKeyset()), int(controller->selectedLayer()),
                                constants->trackballDataGroupID(), m_trackballNumber));
    if (trackball)
        setColor(trackball->onColor());
}

CorvaneTrackballRingControl::CorvaneTrackballRingControl(int trackballNumber, QWidget* parent)
    : TrackballRingControl(trackballNumber, parent)
{}

void CorvaneTrackballRingControl::awakeFromNib()
{
    TrackballRingControl::awakeFromNib();
    const PlistValue& lists =
        TVKBundle::mainBundle().objectForInfoDictionaryKey(m_key).value(u"ImageList");
    m_whiteImages = namesFrom(lists.at(4));
    m_imageList.resize(5);
    m_imageList[4] = m_whiteImages;
    NotificationCenter::defaultCenter().observeEach<note::HdwStyChg>(
        m_observations, nullptr, [this] { hardwareStyleChanged(); });
    hardwareStyleChanged();
}

TVKImageList CorvaneTrackballRingControl::finishedSet(const TVKImageList& set) const
{
    return m_hardwareStyle == 1 ? set : midnightNames(set);
}

void CorvaneTrackballRingControl::hardwareStyleChanged()
{
    m_hardwareStyle = modelHardwareStyle();
    if (m_imageList.size() > 2)
        m_imageList[2] = m_hardwareStyle == 1 ? m_blueImages : m_whiteImages;
    setColor(m_color);
}
