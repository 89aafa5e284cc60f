#include "views/editors/TVKStatusLineEditorView.h"

#include "views/TVKEditorCells.h"

#include <QButtonGroup>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

TVKStatusLineEditorView::TVKStatusLineEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("MDEM"), parent), m_logic(host.editedAction())
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Show on the button:"), this));
    m_modes = new QButtonGroup(this);
    const std::pair<int, QString> modes[] = {
        {0, tr("&Nothing")}, {1, tr("Native MIDI status")}, {2, tr("&Emulation mode")}};
    for (const auto& [mode, title] : modes) {
        auto* radio = new QRadioButton(title, this);
        column->addWidget(radio);
        m_modes->addButton(radio, mode);
    }
    column->addStretch();

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_modes, &QButtonGroup::idClicked, this, [this](int mode) {
        if (m_logic.chooseMode(unsigned(mode), m_host.shownControl()))
            edited();
    });
}

void TVKStatusLineEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKStatusLineEditorView::updateData()
{
    TVKEditorCells::selectCell(m_modes, int(m_logic.selectedMode()));
}
