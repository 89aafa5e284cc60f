#include "views/CorvanePictures.h"

#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/CorvaneLayer.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneNVLayout.h"
#include "views/cpkr_ColorPicker.h"

#include <QPainter>

namespace note = corvane::note;

namespace {

// The eight NV group colours, as the surface shows them.
const QColor kGroupColors[] = {QColor(0xff, 0x40, 0x40), QColor(0x40, 0xd0, 0x60),
                               QColor(0x40, 0x90, 0xff), QColor(0xff, 0xd0, 0x30),
                               QColor(0xd0, 0x50, 0xff), QColor(0x30, 0xe0, 0xe0),
                               QColor(0xff, 0x90, 0x20), QColor(0xf0, 0xf0, 0xf0)};

} // namespace

CorvaneBankedPicture::CorvaneBankedPicture(const QString& key, int bankSize, QWidget* parent)
    : TVKMultiStateButton(key, parent), m_bankSize(bankSize)
{}

void CorvaneBankedPicture::setBank(int bank)
{
    if (bank == m_bank)
        return;
    m_bank = bank;
    // What is lit belongs to the bank shown before; ask again.
    m_cell->setState(0);
    m_cell->handleRemoteSelectionChange();
    update();
}

qint64 CorvaneBankedPicture::valueForImageIndex(quint64 k) const
{
    return m_bankSize > 0 ? qint64(m_bank) * m_bankSize + qint64(k) : qint64(k);
}

qint64 CorvaneBankedPicture::imageIndexForControl(qint64 control) const
{
    if (m_bankSize <= 0)
        return control;
    const qint64 k = control - qint64(m_bank) * m_bankSize;
    return k >= 0 && k < m_bankSize ? k : -1;
}

CorvaneLCDButtonPicture::CorvaneLCDButtonPicture(const QString& key, int bankSize,
                                                 std::vector<ControlFrame> frames, QWidget* parent)
    : CorvaneBankedPicture(key, bankSize, parent), m_frames(std::move(frames))
{}

void CorvaneLCDButtonPicture::awakeFromNib()
{
    CorvaneBankedPicture::awakeFromNib();
    // Every button shows its colours, the first of a bank too, which has no outline to click.
    QRegion shown = mask();
    for (const ControlFrame& each : m_frames)
        shown |= each.frame;
    setMask(shown);
    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    center.observeEach<note::DispColorChange, note::DispOffColorChange, note::SelectedLayerChange,
                       note::SelectedKeysetChange, note::InspUpdate, note::CorvaneNVSelectGroup,
                       note::UpdateKSum>(m_observations, nullptr, [this] { update(); });
}

void CorvaneLCDButtonPicture::paintOverlay(QPainter& painter)
{
    const TVKController* controller = TVKController::c();
    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    if (!controller || !model || !constants)
        return;
    const TVKKeyset* keyset = model->keysetAtIndex(int(controller->selectedKeyset()));
    const auto* layer = keyset ? dynamic_cast<const CorvaneLayer*>(
                                     keyset->layerAtIndex(int(controller->selectedLayer())))
                               : nullptr;
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ControlFrame& each : m_frames) {
        int group = 0;
        int index = 0;
        const qint64 value =
            bankSize() > 0 ? qint64(bank()) * bankSize() + each.control : qint64(each.control);
        if (!constants->onscreenGroup(int(m_tag), int(value), group, index))
            continue;
        const auto* button =
            dynamic_cast<const TVKMultiColorButtonControl*>(model->controlForKeyset(
                int(controller->selectedKeyset()), int(controller->selectedLayer()), group, index));
        if (!button)
            continue;
        const QRectF glass = QRectF(each.frame).adjusted(6, 6, -6, -6);
        QColor off = cpkr_colorFromSixBitColor(button->offColor());
        off.setAlphaF(0.55f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(off);
        painter.drawRoundedRect(glass, 2, 2);
        painter.setBrush(cpkr_colorFromSixBitColor(button->onColor()));
        painter.drawRoundedRect(QRectF(glass.left(), glass.top(), glass.width(), 5), 2, 2);
        const int member = layer && group == corvane::nv::kLCDButtonGroup
                               ? layer->corvaneNVGroupForButtonWithID(index)
                               : -1;
        if (member >= 0) {
            const int colour = layer->colorForCorvaneNVGroupWithID(member);
            painter.setBrush(kGroupColors[qBound(0, colour, 7)]);
            painter.drawEllipse(QPointF(glass.right() - 5, glass.bottom() - 5), 3.5, 3.5);
        }
    }
}
