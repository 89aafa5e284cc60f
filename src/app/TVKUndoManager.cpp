#include "app/TVKUndoManager.h"

#include <QUndoCommand>
#include <utility>

// One step: the operations that undo it and, once it has been undone, the ones that redo it.
// Pushing a step does not run it; the change it records has already been made.
class TVKUndoManager::Step : public QUndoCommand
{
public:
    Step(TVKUndoManager& manager, std::vector<Operation> inverse, const QString& name)
        : m_manager(manager), m_undo(std::move(inverse)), m_grouped(m_undo.size() > 1)
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
        m_capture->push_back(std::move(inverse));
        if (!m_grouped)
            setText(name);
    }

private:
    void run(std::vector<Operation>& operations, std::vector<Operation>& reverse, bool& flag)
    {
        // The operations are used up: what reverses them is registered while they run. Run
        // backwards, each run registers its reverse so that the reverse list runs backwards too.
        std::vector<Operation> current = std::exchange(operations, {});
        reverse.clear();
        m_capture = &reverse;
        m_manager.m_running = this;
        flag = true;
        for (auto it = current.rbegin(); it != current.rend(); ++it)
            if (*it)
                (*it)();
        flag = false;
        m_manager.m_running = nullptr;
        m_capture = nullptr;
    }

    TVKUndoManager& m_manager;
    std::vector<Operation> m_undo;
    std::vector<Operation> m_redo;
    std::vector<Operation>* m_capture = nullptr;
    bool m_grouped;
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
    if (m_groupDepth > 0) {
        if (m_group.empty())
            m_groupName = actionName;
        m_group.push_back(std::move(inverse));
        return;
    }
    std::vector<Operation> step;
    step.push_back(std::move(inverse));
    m_stack.push(new Step(*this, std::move(step), actionName));
}

void TVKUndoManager::beginUndoGrouping()
{
    ++m_groupDepth;
}

void TVKUndoManager::endUndoGrouping()
{
    if (m_groupDepth == 0 || --m_groupDepth > 0 || m_group.empty())
        return;
    m_stack.push(new Step(*this, std::exchange(m_group, {}), std::exchange(m_groupName, {})));
}
