#include "views/CorvanePictures.h"

#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/CorvaneLayer.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneNVLayout.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKDisplayView.h"
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
    if (auto* surface = qobject_cast<CorvaneSurfaceView*>(parentWidget()))
        surface->controlsShownChanged();
}

CorvaneLCDButtonPicture::CorvaneLCDButtonPicture(const QString& key, int bankSize,
                                                 std::vector<ControlFrame> frames, QWidget* parent)
    : CorvaneBankedPicture(key, bankSize, parent), m_frames(std::move(frames))
{}

void CorvaneLCDButtonPicture::awakeFromNib()
{
    CorvaneBankedPicture::awakeFromNib();
    // Every button shows its colours.
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
        // The frames are the first bank's; the same place shows the same button of every bank.
        const qsizetype at = m_controls.indexOf(each.control) + firstShownControl();
        if (m_controls.indexOf(each.control) < 0 || at >= m_controls.size() ||
            !constants->onscreenGroup(int(m_tag), m_controls.at(at), group, index))
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

bool CorvaneNVBanks::follow(qint64 group, qint64 control)
{
    using namespace corvane::nv;
    const CorvaneNVBanks before = *this;
    const auto showParameter = [this](qint64 p) {
        if (p >= 0 && p < kFunctionKeys * kParametersPerFunction) {
            function = int(p / kParametersPerFunction);
            parameter = int(p % kParametersPerFunction);
        }
    };
    switch (group) {
    case kOnscreenLCDButtons:
        if (control >= 0 && control < kBanks * kButtonsPerBank)
            bank = int(control / kButtonsPerBank);
        break;
    case kOnscreenBankButtons:
        if (control >= 0 && control < kBanks)
            bank = int(control);
        break;
    case kOnscreenFirstFunctionKeys:
    case kOnscreenSecondFunctionKeys:
        if (control >= 0 && control < kFunctionKeys)
            function = int(control);
        break;
    case kOnscreenParameters:
        showParameter(control);
        break;
    case kOnscreenActions:
        if (control >= 0)
            showParameter(control / kActionsPerParameter);
        break;
    default:
        break;
    }
    return bank != before.bank || function != before.function || parameter != before.parameter;
}

void CorvaneNVBanks::apply(const CorvaneSurfaceView& surface) const
{
    using namespace corvane::nv;
    for (TVKMultiStateButton* button : surface.buttons()) {
        auto* banked = dynamic_cast<CorvaneBankedPicture*>(button);
        if (!banked)
            continue;
        if (banked->tag() == kOnscreenLCDButtons)
            banked->setBank(bank);
        else if (banked->tag() == kOnscreenParameters)
            banked->setBank(function);
        else if (banked->tag() == kOnscreenActions)
            banked->setBank(function * kParametersPerFunction + parameter);
    }
    for (TVKDisplayView* display : surface.displays()) {
        if (display->tag() >= kOnscreenFirstButtonDisplays &&
            display->tag() <= kOnscreenLastButtonDisplays)
            display->setBank(bank);
    }
}
