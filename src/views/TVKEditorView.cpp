#include "views/TVKEditorView.h"

#include "core/Notifications.h"
#include "views/TVKEditorCells.h"
#include "views/cpkr_ColorPicker.h"
#include "views/editors/TVKActionEditorView.h"
#include "views/editors/TVKDisplayPreview.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// A round swatch of a ring colour; the checked one wears a ring of the highlight colour.
QIcon ringSwatch(const QColor& color, int side, qreal dpr)
{
    QPixmap picture(QSize(side, side) * dpr);
    picture.setDevicePixelRatio(dpr);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x40, 0x40, 0x44), 1));
    painter.setBrush(color.isValid() ? color : QColor(0x5a, 0x5c, 0x60));
    painter.drawEllipse(QRectF(2, 2, side - 4, side - 4));
    return QIcon(picture);
}

} // namespace

TVKEditorView::TVKEditorView(QWidget* parent) : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    m_actionDescriptorField = new QLabel(this);
    m_actionDescriptorField->setWordWrap(true);
    m_actionDescriptorField->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_actionDescriptorField->setAccessibleName(tr("Assigned action"));
    QFont bold = m_actionDescriptorField->font();
    bold.setBold(true);
    m_actionDescriptorField->setFont(bold);
    m_actionDescriptorField->setMinimumHeight(m_actionDescriptorField->fontMetrics().height() * 2);
    m_actionDescriptorField->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    column->addWidget(m_actionDescriptorField);
    m_tabNotice = new QLabel(this);
    m_tabNotice->setWordWrap(true);
    m_tabNotice->setFrameShape(QFrame::StyledPanel);
    m_tabNotice->setMargin(6);
    m_tabNotice->setAccessibleName(tr("Why the tab cannot open"));
    m_tabNotice->hide();
    column->addWidget(m_tabNotice);
    m_editorTabs = new QTabWidget(this);
    m_editorTabs->setDocumentMode(false);
    m_editorTabs->setUsesScrollButtons(false);
    column->addWidget(m_editorTabs, 1);
    m_properties = new QWidget(this);
    auto* properties = new QVBoxLayout(m_properties);
    properties->setContentsMargins(0, 4, 0, 0);
    column->addWidget(m_properties);
    m_properties->hide();
    connect(m_editorTabs, &QTabWidget::currentChanged, this, &TVKEditorView::tabChanged);
    // A click on the tab already shown also puts an earlier refusal's note away.
    connect(m_editorTabs, &QTabWidget::tabBarClicked, this, [this](int index) {
        if (index == m_editorTabs->currentIndex())
            m_tabNotice->hide();
    });
    m_lockObservation =
        corvane::NotificationCenter::defaultCenter().observe<corvane::note::LockStateChange>(
            nullptr,
            [this](const corvane::note::LockStateChange& lock) { handleLockStateChange(lock); });
}

void TVKEditorView::addActionEditor(TVKActionEditorView* editor, const QString& title)
{
    const int index = m_editorTabs->addTab(editor, title);
    m_editorTabs->tabBar()->setTabData(index, QVariant::fromValue(editor->tabID()));
}

TVKActionEditorView* TVKEditorView::actionEditor(corvane::FourCharCode identifier) const
{
    for (int i = 0; i < m_editorTabs->count(); ++i)
        if (m_editorTabs->tabBar()->tabData(i).value<corvane::FourCharCode>() == identifier)
            return static_cast<TVKActionEditorView*>(m_editorTabs->widget(i));
    return nullptr;
}

corvane::FourCharCode TVKEditorView::currentTabID() const
{
    return m_editorTabs->tabBar()
        ->tabData(m_editorTabs->currentIndex())
        .value<corvane::FourCharCode>();
}

QCheckBox* TVKEditorView::addLatchedCheckbox()
{
    m_latchedCheckbox = new QCheckBox(tr("&Latching: stays on until pressed again"), m_properties);
    m_properties->layout()->addWidget(m_latchedCheckbox);
    m_properties->show();
    return m_latchedCheckbox;
}

QButtonGroup* TVKEditorView::addOnColorEditor(const QList<std::pair<int, QString>>& colors)
{
    auto* row = new QWidget(m_properties);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("Ring colour:"), row));
    m_onColorEditor = new QButtonGroup(this);
    const int side = fontMetrics().height() + 6;
    static const QColor ringColors[] = {QColor(), QColor(0x2e, 0xd0, 0x5a),
                                        QColor(0x3a, 0x7d, 0xff), QColor(0xf0, 0x3a, 0x30),
                                        QColor(0xf2, 0xf2, 0xf2)};
    for (const auto& [tag, title] : colors) {
        auto* cell = new QToolButton(row);
        cell->setCheckable(true);
        cell->setAutoRaise(true);
        cell->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        cell->setIcon(ringSwatch(tag >= 0 && tag < 5 ? ringColors[tag] : QColor(), side,
                                 devicePixelRatioF()));
        cell->setIconSize(QSize(side, side));
        cell->setText(title);
        cell->setAccessibleName(title);
        layout->addWidget(cell);
        m_onColorEditor->addButton(cell, tag);
    }
    layout->addStretch();
    m_properties->layout()->addWidget(row);
    m_properties->show();
    return m_onColorEditor;
}

cpkr_ColorPickerController* TVKEditorView::addHiResColorEditor()
{
    auto* row = new QWidget(m_properties);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* switches = new QVBoxLayout;
    m_onOffColorMatrix = new QButtonGroup(this);
    auto swatchRow = [&](int tag, const QString& title, cpkr_SwatchView*& swatch) {
        auto* line = new QHBoxLayout;
        auto* radio = new QRadioButton(title, row);
        swatch = new cpkr_SwatchView(row);
        swatch->setFixedSize(fontMetrics().height() * 2, fontMetrics().height());
        line->addWidget(radio);
        line->addWidget(swatch);
        line->addStretch();
        switches->addLayout(line);
        m_onOffColorMatrix->addButton(radio, tag);
    };
    swatchRow(0, tr("&On colour"), m_sixBitOnColor);
    swatchRow(1, tr("O&ff colour"), m_sixBitOffColor);
    switches->addStretch();
    m_onOffColorMatrix->button(0)->setChecked(true);
    layout->addLayout(switches);
    m_hiResColorEditor = new cpkr_ColorPickerController(row);
    layout->addWidget(m_hiResColorEditor);
    layout->addStretch();
    m_properties->layout()->addWidget(row);
    m_properties->show();
    return m_hiResColorEditor;
}

TVKDisplayPreview* TVKEditorView::addPreview(TVKDisplayPreview* preview)
{
    m_preview = preview;
    static_cast<QVBoxLayout*>(layout())->insertWidget(1, preview);
    return preview;
}

void TVKEditorView::setActionDescriptor(const QString& descriptor)
{
    m_actionDescriptorField->setText(descriptor);
}

QString TVKEditorView::actionDescriptor() const
{
    return m_actionDescriptorField->text();
}

void TVKEditorView::tabChanged(int index)
{
    if (m_reverting)
        return;
    const auto identifier = m_editorTabs->tabBar()->tabData(index).value<corvane::FourCharCode>();
    const QString refusal = m_tabGuard ? m_tabGuard(identifier) : QString();
    if (!refusal.isEmpty() && m_shownTab != index) {
        const QScopedValueRollback<bool> guard(m_reverting, true);
        m_editorTabs->setCurrentIndex(m_shownTab);
        m_tabNotice->setText(refusal);
        m_tabNotice->show();
        return;
    }
    m_shownTab = index;
    m_tabNotice->hide();
}

void TVKEditorView::updateTabAvailability()
{
    QTabBar* bar = m_editorTabs->tabBar();
    for (int i = 0; i < bar->count(); ++i) {
        const QString refusal =
            m_tabGuard ? m_tabGuard(bar->tabData(i).value<corvane::FourCharCode>()) : QString();
        bar->setTabToolTip(i, refusal);
        bar->setTabTextColor(
            i, refusal.isEmpty() ? QColor()
                                 : bar->palette().color(QPalette::Disabled, QPalette::ButtonText));
    }
    m_tabNotice->hide();
}

void TVKEditorView::selectActionEditor(int index)
{
    m_tabNotice->hide();
    m_editorTabs->setCurrentIndex(index);
    setLockState(m_locked);
}

void TVKEditorView::selectActionEditorWithIdentifier(corvane::FourCharCode identifier)
{
    int index = 0;
    for (int i = 0; i < m_editorTabs->count(); ++i)
        if (m_editorTabs->tabBar()->tabData(i).value<corvane::FourCharCode>() == identifier) {
            index = i;
            break;
        }
    selectActionEditor(index);
}

void TVKEditorView::setLatched(bool latched)
{
    if (!m_latchedCheckbox)
        return;
    const QSignalBlocker block(m_latchedCheckbox);
    m_latchedCheckbox->setChecked(latched);
}

void TVKEditorView::setOnColor(qint64 color)
{
    if (m_sixBitOnColor)
        m_sixBitOnColor->setColor(cpkr_colorFromSixBitColor(int(color)));
    if (m_hiResColorEditor && m_onOffColorMatrix->checkedId() == 0) {
        m_hiResColorEditor->updateColor(quint8(color));
        return;
    }
    TVKEditorCells::selectCell(m_onColorEditor, int(color));
}

void TVKEditorView::setOffColor(qint64 color)
{
    if (m_sixBitOffColor)
        m_sixBitOffColor->setColor(cpkr_colorFromSixBitColor(int(color)));
    if (m_hiResColorEditor && m_onOffColorMatrix->checkedId() == 1) {
        m_hiResColorEditor->updateColor(quint8(color));
        return;
    }
    TVKEditorCells::selectCell(m_offColorEditor, int(color));
}

void TVKEditorView::handleLockStateChange(const corvane::note::LockStateChange& lock)
{
    setLockState(lock.locked);
}

void TVKEditorView::setLockState(bool locked)
{
    m_locked = locked;
    for (QWidget* subview : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        subview->setEnabled(!locked);
}
