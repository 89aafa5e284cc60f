#include "views/editors/TVKMouseActionEditorView.h"

#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKEditorCells.h"
#include "views/editors/TVKModifierBoxes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>

using TVKEditorCells::selectItemWithData;

TVKMouseActionEditorView::TVKMouseActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                   QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("MOUS"), parent),
      m_logic(host.editedAction(), actionType, host.pointerEnvironment())
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const TVK_Constant_Server& constants = corvane::surfaceConstants();

    m_operation = new QComboBox(this);
    m_operation->addItem(tr("None"), 0);
    for (int operation = 1; operation <= 9; ++operation)
        m_operation->addItem(constants.mouseActionString(operation), operation);
    form->addRow(tr("&Operation:"), m_operation);

    m_location = new QComboBox(this);
    const QString locations[] = {tr("Leave the pointer where it is"),
                                 tr("From the top left of a window"),
                                 tr("From the top right of a window"),
                                 tr("From the top, across a share of a window's width"),
                                 tr("From the bottom left of a window"),
                                 tr("From the bottom right of a window"),
                                 tr("From the bottom, across a share of a window's width"),
                                 tr("At a point of the screen")};
    for (int type = 0; type < 8; ++type)
        m_location->addItem(locations[type], type);
    form->addRow(tr("&Position first:"), m_location);

    m_captureText = new QLabel(this);
    m_captureText->setWordWrap(true);
    m_captureText->setMinimumHeight(m_captureText->fontMetrics().height() * 3);
    m_captureText->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    form->addRow(QString(), m_captureText);

    auto* captureRow = new QWidget(this);
    auto* captureLayout = new QHBoxLayout(captureRow);
    captureLayout->setContentsMargins(0, 0, 0, 0);
    m_capture = new QPushButton(tr("&Capture"), captureRow);
    m_progress = new QProgressBar(captureRow);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setMaximumWidth(120);
    captureLayout->addWidget(m_capture);
    captureLayout->addWidget(m_progress);
    captureLayout->addStretch();
    form->addRow(QString(), captureRow);
    m_platformNote = new QLabel(this);
    m_platformNote->setWordWrap(true);
    form->addRow(QString(), m_platformNote);

    m_partial = new QCheckBox(tr("Match the window by part of its &title"), this);
    form->addRow(QString(), m_partial);
    m_windowName = new QLineEdit(this);
    form->addRow(tr("&Window title:"), m_windowName);
    m_modifiers = new TVKModifierBoxes(this);
    form->addRow(tr("Hold:"), m_modifiers);

    m_logic.setStateChangedHandler([this] { updateData(); });
    m_logic.setParameterChangedHandler([this] { edited(); });
    auto userEdit = [this](auto&& operation) {
        return [this, operation] {
            if (m_redrawing)
                return;
            operation();
            edited();
        };
    };
    connect(m_operation, &QComboBox::activated, this,
            userEdit([this] { m_logic.selectOperation(m_operation->currentData().toInt()); }));
    connect(m_location, &QComboBox::activated, this,
            userEdit([this] { m_logic.selectLocationType(m_location->currentData().toInt()); }));
    connect(m_partial, &QCheckBox::clicked, this,
            userEdit([this] { m_logic.setUsePartialWindowName(m_partial->isChecked()); }));
    // Leaving the field without changing it is no edit.
    connect(m_windowName, &QLineEdit::editingFinished, this, [this] {
        if (m_redrawing || m_windowName->text() == m_logic.windowNameText())
            return;
        m_logic.setWindowName(m_windowName->text());
        edited();
    });
    connect(m_modifiers, &TVKModifierBoxes::clicked, this,
            userEdit([this] { m_logic.setModifierBoxes(m_modifiers->tickedTags()); }));
    connect(m_capture, &QPushButton::clicked, this, [this] { m_logic.startCapture(); });
    updateData();
}

void TVKMouseActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKMouseActionEditorView::updateData()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    selectItemWithData(m_operation, m_logic.operationTag());
    selectItemWithData(m_location, m_logic.locationTag());
    m_partial->setChecked(m_logic.partialNameChecked());
    if (!m_windowName->hasFocus() || m_windowName->text() != m_logic.windowNameText())
        m_windowName->setText(m_logic.windowNameText());
    m_modifiers->setTickedTags(m_logic.modifierBoxTags());
    m_location->setEnabled(m_logic.locationPopUpEnabled());
    m_modifiers->setEnabled(m_logic.modifierBoxesEnabled());
    m_partial->setEnabled(m_logic.partialNameBoxEnabled());
    m_windowName->setEnabled(m_logic.windowNameFieldEnabled());
    m_captureText->setText(m_logic.captureText());
    m_capture->setVisible(m_logic.captureButtonVisible());
    m_progress->setVisible(m_logic.progressRunning());
    // Rows with nothing to say take no room.
    auto* form = static_cast<QFormLayout*>(layout());
    form->setRowVisible(m_captureText, !m_logic.captureText().isEmpty());
    form->setRowVisible(m_capture->parentWidget(),
                        m_logic.captureButtonVisible() || m_logic.progressRunning());
    // A refused capture says why when the desktop could not be asked at all.
    const QString problem = m_host.pointerQueryProblem();
    m_platformNote->setText(problem);
    form->setRowVisible(m_platformNote,
                        !problem.isEmpty() && m_logic.captureButtonVisible() &&
                            m_logic.captureText().startsWith(QLatin1String("Please place")));
}
