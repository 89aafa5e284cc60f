#pragma once

#include <QString>
#include <QUndoStack>
#include <functional>
#include <vector>

// The one undo stack of the application. An undoable operation registers its own inverse (the
// same operation with the old values) under an action name; undoing runs the inverse, which in
// turn registers the operation that redoes it, so redo needs no code of its own. The stack is a
// QUndoStack underneath; the controller titles and enables the Undo and Redo items from it.
class TVKUndoManager
{
public:
    using Operation = std::function<void()>;
    // The keyset index an operation changes; kNoKeyset for one that changes no existing keyset.
    static constexpr qint64 kNoKeyset = -1;
    using LockTest = std::function<bool(qint64 keyset)>;

    TVKUndoManager();
    ~TVKUndoManager();
    TVKUndoManager(const TVKUndoManager&) = delete;
    TVKUndoManager& operator=(const TVKUndoManager&) = delete;

    // Outside undo and redo: a new step on the stack, or a part of the open grouping's step.
    // While a step is being undone or redone: what reverses that run, kept in the same step.
    // `keyset` is the keyset the inverse changes when it runs.
    void registerUndo(Operation inverse, const QString& actionName, qint64 keyset);
    // Tells whether a keyset is locked: a step that changes a locked keyset is neither undone
    // nor redone.
    void setLockTest(LockTest isLocked) { m_isLocked = std::move(isLocked); }

    // One user gesture that makes several edits is one step: what is registered between begin
    // and end is undone together (in reverse order) and redone together, under the name of the
    // first edit. Groupings nest; the step is pushed when the outermost one ends, and only when
    // something was registered.
    void beginUndoGrouping();
    void endUndoGrouping();
    bool isGrouping() const { return m_groupDepth > 0; }

    class Grouping
    {
    public:
        explicit Grouping(TVKUndoManager& manager) : m_manager(manager)
        {
            m_manager.beginUndoGrouping();
        }
        ~Grouping() { m_manager.endUndoGrouping(); }
        Grouping(const Grouping&) = delete;
        Grouping& operator=(const Grouping&) = delete;

    private:
        TVKUndoManager& m_manager;
    };

    bool isUndoing() const { return m_undoing; }
    bool isRedoing() const { return m_redoing; }

    QUndoStack& stack() { return m_stack; }
    void undo();
    void redo();
    // A step is there and no keyset it changes is locked.
    bool canUndo() const;
    bool canRedo() const;
    // The keyset the next undo (redo) changes (a locked one first, when it changes several),
    // kNoKeyset when none; and whether a keyset it changes is locked.
    qint64 undoKeyset() const;
    qint64 redoKeyset() const;
    bool undoBlockedByLock() const;
    bool redoBlockedByLock() const;
    QString undoActionName() const { return m_stack.undoText(); }
    QString redoActionName() const { return m_stack.redoText(); }

private:
    class Step;
    friend class Step;

    const Step* stepAt(int index) const;
    bool locked(qint64 keyset) const;
    // The keyset to name for a step's operations: a locked one first.
    qint64 keysetToName(const std::vector<qint64>& keysets) const;

    QUndoStack m_stack;
    LockTest m_isLocked;
    Step* m_running = nullptr;
    bool m_undoing = false;
    bool m_redoing = false;
    int m_groupDepth = 0;
    std::vector<Operation> m_group;
    std::vector<qint64> m_groupKeysets;
    QString m_groupName;
};
