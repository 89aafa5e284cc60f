#include "views/editors/TVKActionEditorView.h"

#include "core/Notifications.h"

TVKActionEditorView::TVKActionEditorView(TVKActionEditorHost& host, corvane::FourCharCode tabID,
                                         QWidget* parent)
    : QWidget(parent), m_host(host), m_tabID(tabID)
{
    m_newActionObservation =
        corvane::NotificationCenter::defaultCenter().observe<corvane::note::NewActionSelected>(
            nullptr, [this](const corvane::note::NewActionSelected&) {
                if (m_host.isShownEditor(this))
                    updateForNewAction();
            });
}

void TVKActionEditorView::edited()
{
    if (m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}
