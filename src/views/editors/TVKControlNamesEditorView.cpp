#include "views/editors/TVKControlNamesEditorView.h"

#include "actions/TVKDisplayControlNameAction.h"
#include "views/TVKEditorCells.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

TVKControlNamesEditorView::TVKControlNamesEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                     QWidget* parent)
    : TVKActionEditorView(host,
                          actionType == TVKLCDDisplayButtonNameAction::kActionType
                              ? corvane::fourCC("BNAM")
                              : corvane::fourCC("ENAM"),
                          parent),
      m_logic(host.editedAction(), actionType)
{
    auto* form = new QFormLayout(this);
    QString title;
    switch (actionType) {
    case TVKLCDDisplayButtonNameAction::kActionType:
        title = tr("&Show the names of the buttons under this display");
        break;
    case TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType:
        title = tr("&Show the names of the LCD buttons beside this display");
        break;
    default:
        title = tr("&Show the names of the encoders under this display");
        break;
    }
    m_show = new QCheckBox(title, this);
    form->addRow(m_show);
    if (m_logic.hasLabelMode()) {
        m_mode = new QComboBox(this);
        m_mode->addItem(tr("Their names"), 0);
        m_mode->addItem(tr("Function and parameter numbers"), 1);
        form->addRow(tr("&Label with:"), m_mode);
        connect(m_mode, &QComboBox::activated, this, [this] {
            if (m_logic.setLabelMode(unsigned(m_mode->currentData().toInt()),
                                     m_host.shownControl()))
                edited();
        });
    }
    form->addRow(TVKEditorCells::hintLabel(
        tr("A user name given to a control is shown in place of its own."), this));

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_show, &QCheckBox::clicked, this, [this](bool checked) {
        if (m_logic.setShowNames(checked, m_host.shownControl()))
            edited();
    });
    updateData();
}

void TVKControlNamesEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKControlNamesEditorView::updateData()
{
    const QSignalBlocker block(m_show);
    m_show->setChecked(m_logic.showNames());
    if (m_mode) {
        TVKEditorCells::selectItemWithData(m_mode, int(m_logic.labelMode()));
        m_mode->setEnabled(m_logic.labelModeEnabled());
    }
}
