#include "views/editors/TVKDisplayEmulationEditorView.h"

#include "views/TVKEditorCells.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

using corvane::DisplayEmulationEditor;

TVKDisplayEmulationEditorView::TVKDisplayEmulationEditorView(TVKActionEditorHost& host,
                                                             qint32 actionType, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("EMUL"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* form = new QFormLayout(this);
    m_mode = new QLabel(this);
    m_mode->setWordWrap(true);
    form->addRow(m_mode);
    if (m_logic.isTimecode()) {
        m_timecode = new QCheckBox(tr("&Show the console's timecode"), this);
        form->addRow(m_timecode);
        connect(m_timecode, &QCheckBox::clicked, this, [this](bool checked) {
            if (m_logic.setTimecodeShown(checked, m_host.shownControl()))
                edited();
        });
    } else {
        m_source = new QComboBox(this);
        m_source->addItem(tr("Nothing"), DisplayEmulationEditor::kNoSource);
        m_source->addItem(tr("Console display line 1"), 0);
        m_source->addItem(tr("Console display line 2"), 1);
        m_source->addItem(tr("Pot values"), 2);
        form->addRow(tr("&Show:"), m_source);
        connect(m_source, &QComboBox::activated, this, [this] {
            if (m_logic.setSource(m_source->currentData().toInt(), m_host.shownControl()))
                edited();
        });
    }
    m_logic.setStateChangedHandler([this] { updateData(); });
    m_logic.updateForNewAction();
}

void TVKDisplayEmulationEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKDisplayEmulationEditorView::updateData()
{
    m_mode->setText(m_logic.emulationMode() == corvane::EmulationMode::None
                        ? TVKEditorCells::emulationModeNote(corvane::EmulationMode::None)
                        : tr("What the emulated console sends for this display:"));
    if (m_timecode) {
        const QSignalBlocker block(m_timecode);
        m_timecode->setChecked(m_logic.timecodeShown());
        return;
    }
    TVKEditorCells::selectItemWithData(m_source, m_logic.source());
}
