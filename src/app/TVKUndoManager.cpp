#include "app/TVKUndoManager.h"

#include <QUndoCommand>
#include <utility>

// One step: the operations that undo it and, once it has been undone, the ones that redo it,
// each with the keyset it changes. Pushing a step does not run it; the change it records has
// already been made.
class TVKUndoManager::Step : public QUndoCommand
{
public:
    Step(TVKUndoManager& manager, std::vector<Operation> inverse, std::vector<qint64> keysets,
         const QString& name)
        : m_manager(manager), m_undo(std::move(inverse)), m_undoKeysets(std::move(keysets)),
          m_grouped(m_undo.size() > 1)
    {
        setText(name);
    }

    const std::vector<qint64>& undoKeysets() const { return m_undoKeysets; }
    const std::vector<qint64>& redoKeysets() const { return m_redoKeysets; }

    void undo() override { run(m_undo, m_redo, m_redoKeysets, m_manager.m_undoing); }

    void redo() override
    {
        if (m_pushed) {
            m_pushed = false;
            return;
        }
        run(m_redo, m_undo, m_undoKeysets, m_manager.m_redoing);
    }

    void capture(Operation inverse, const QString& name, qint64 keyset)
    {
        m_capture->push_back(std::move(inverse));
        m_captureKeysets->push_back(keyset);
        if (!m_grouped)
            setText(name);
    }

private:
    void run(std::vector<Operation>& operations, std::vector<Operation>& reverse,
             std::vector<qint64>& reverseKeysets, bool& flag)
    {
        // The operations are used up: what reverses them is registered while they run. Run
        // backwards, each run registers its reverse so that the reverse list runs backwards too.
        std::vector<Operation> current = std::exchange(operations, {});
        reverse.clear();
        reverseKeysets.clear();
        m_capture = &reverse;
        m_captureKeysets = &reverseKeysets;
        m_manager.m_running = this;
        flag = true;
        for (auto it = current.rbegin(); it != current.rend(); ++it)
            if (*it)
                (*it)();
        flag = false;
        m_manager.m_running = nullptr;
        m_capture = nullptr;
        m_captureKeysets = nullptr;
    }

    TVKUndoManager& m_manager;
    std::vector<Operation> m_undo;
    std::vector<Operation> m_redo;
    std::vector<qint64> m_undoKeysets;
    std::vector<qint64> m_redoKeysets;
    std::vector<Operation>* m_capture = nullptr;
    std::vector<qint64>* m_captureKeysets = nullptr;
    bool m_grouped;
    bool m_pushed = true;
};

TVKUndoManager::TVKUndoManager() = default;

TVKUndoManager::~TVKUndoManager()
{
    m_stack.clear();
}

void TVKUndoManager::registerUndo(Operation inverse, const QString& actionName, qint64 keyset)
{
    if (m_running) {
        m_running->capture(std::move(inverse), actionName, keyset);
        return;
    }
    if (m_groupDepth > 0) {
        if (m_group.empty())
            m_groupName = actionName;
        m_group.push_back(std::move(inverse));
        m_groupKeysets.push_back(keyset);
        return;
    }
    std::vector<Operation> step;
    step.push_back(std::move(inverse));
    m_stack.push(new Step(*this, std::move(step), {keyset}, actionName));
}

void TVKUndoManager::beginUndoGrouping()
{
    ++m_groupDepth;
}

void TVKUndoManager::endUndoGrouping()
{
    if (m_groupDepth == 0 || --m_groupDepth > 0 || m_group.empty())
        return;
    m_stack.push(new Step(*this, std::exchange(m_group, {}), std::exchange(m_groupKeysets, {}),
                          std::exchange(m_groupName, {})));
}

const TVKUndoManager::Step* TVKUndoManager::stepAt(int index) const
{
    if (index < 0 || index >= m_stack.count())
        return nullptr;
    return static_cast<const Step*>(m_stack.command(index));
}

bool TVKUndoManager::locked(qint64 keyset) const
{
    return keyset != kNoKeyset && m_isLocked && m_isLocked(keyset);
}

qint64 TVKUndoManager::keysetToName(const std::vector<qint64>& keysets) const
{
    qint64 named = kNoKeyset;
    for (const qint64 keyset : keysets) {
        if (locked(keyset))
            return keyset;
        if (named == kNoKeyset)
            named = keyset;
    }
    return named;
}

qint64 TVKUndoManager::undoKeyset() const
{
    const Step* step = stepAt(m_stack.index() - 1);
    return step ? keysetToName(step->undoKeysets()) : kNoKeyset;
}

qint64 TVKUndoManager::redoKeyset() const
{
    const Step* step = stepAt(m_stack.index());
    return step ? keysetToName(step->redoKeysets()) : kNoKeyset;
}

bool TVKUndoManager::undoBlockedByLock() const
{
    return m_stack.canUndo() && locked(undoKeyset());
}

bool TVKUndoManager::redoBlockedByLock() const
{
    return m_stack.canRedo() && locked(redoKeyset());
}

bool TVKUndoManager::canUndo() const
{
    return m_stack.canUndo() && !undoBlockedByLock();
}

bool TVKUndoManager::canRedo() const
{
    return m_stack.canRedo() && !redoBlockedByLock();
}

void TVKUndoManager::undo()
{
    if (canUndo())
        m_stack.undo();
}

void TVKUndoManager::redo()
{
    if (canRedo())
        m_stack.redo();
}
