#include "app/TVKUndoManager.h"

#include <QUndoCommand>
#include <utility>

// One step: the operation that undoes it and, once it has been undone, the one that redoes it.
// Pushing a step does not run it; the change it records has already been made.
class TVKUndoManager::Step : public QUndoCommand
{
public:
    Step(TVKUndoManager& manager, Operation inverse, const QString& name)
        : m_manager(manager), m_undo(std::move(inverse))
    {
        setText(name);
    }

    void undo() override { run(m_undo, m_redo, m_manager.m_undoing); }

    void redo() override
    {
        if (m_pushed) {
            m_pushed = false;
            return;
        }
        run(m_redo, m_undo, m_manager.m_redoing);
    }

    void capture(Operation inverse, const QString& name)
    {
        *m_capture = std::move(inverse);
        setText(name);
    }

private:
    void run(Operation& operation, Operation& reverse, bool& flag)
    {
        // The operation is used up: what reverses it is registered while it runs.
        Operation current = std::exchange(operation, {});
        m_capture = &reverse;
        m_manager.m_running = this;
        flag = true;
        if (current)
            current();
        flag = false;
        m_manager.m_running = nullptr;
        m_capture = nullptr;
    }

    TVKUndoManager& m_manager;
    Operation m_undo;
    Operation m_redo;
    Operation* m_capture = nullptr;
    bool m_pushed = true;
};

TVKUndoManager::TVKUndoManager() = default;

TVKUndoManager::~TVKUndoManager()
{
    m_stack.clear();
}

void TVKUndoManager::registerUndo(Operation inverse, const QString& actionName)
{
    if (m_running) {
        m_running->capture(std::move(inverse), actionName);
        return;
    }
    m_stack.push(new Step(*this, std::move(inverse), actionName));
}
