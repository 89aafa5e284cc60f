#include "views/editors/TVKSpecialActionEditorView.h"

#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKEditorCells.h"

#include <QButtonGroup>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

using TVKEditorCells::selectCell;

TVKSpecialActionEditorView::TVKSpecialActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                       QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("SPEC"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Surface function:"), this));
    m_modes = new QButtonGroup(this);
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    auto* none = new QRadioButton(tr("None"), this);
    column->addWidget(none);
    m_modes->addButton(none, 0);
    // Mode 3 is reserved by the surface and offered nowhere.
    for (int mode : {1, 2, 4, 5, 6, 7, 8, 9, 10}) {
        auto* radio = new QRadioButton(constants.specialModeDescriptor(mode), this);
        column->addWidget(radio);
        m_modes->addButton(radio, mode);
    }
    column->addStretch();
    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_modes, &QButtonGroup::idClicked, this, [this](int mode) {
        m_logic.click(0, mode);
        edited();
    });
    updateData();
}

void TVKSpecialActionEditorView::updateForNewAction()
{
    updateData();
}

void TVKSpecialActionEditorView::updateData()
{
    selectCell(m_modes, m_logic.selectedCellTag());
}
