#pragma once

#include "actions/TVKAction.h"

#include <memory>

// Holds the one action being edited in the inspector, so that editors pass the holder around
// and never a bare action. An empty container reports type 0, no tab and no descriptor.
class TVKActionContainer
{
public:
    TVKActionContainer() = default;
    // initWithAction: (the action may be none).
    explicit TVKActionContainer(std::unique_ptr<TVKAction> action) : m_action(std::move(action)) {}

    TVKAction* action() const { return m_action.get(); }
    void setAction(std::unique_ptr<TVKAction> action) { m_action = std::move(action); }
    std::unique_ptr<TVKAction> takeAction() { return std::move(m_action); }
    bool isEmpty() const { return !m_action; }

    qint32 actionType() const { return m_action ? m_action->actionType() : 0; }
    corvane::FourCharCode editorTabID() const { return m_action ? m_action->editorTabID() : 0; }
    QString actionDescriptor() const { return m_action ? m_action->actionDescriptor() : QString(); }

private:
    std::unique_ptr<TVKAction> m_action;
};
