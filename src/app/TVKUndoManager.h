#pragma once

#include <QString>
#include <QUndoStack>
#include <functional>
#include <vector>

// The one undo stack of the application. An undoable operation registers its own inverse (the
// same operation with the old values) under an action name; undoing runs the inverse, which in
// turn registers the operation that redoes it, so redo needs no code of its own. The stack is a
// QUndoStack, so that the menus' "Undo <name>" and "Redo <name>" items follow it.
class TVKUndoManager
{
public:
    using Operation = std::function<void()>;

    TVKUndoManager();
    ~TVKUndoManager();
    TVKUndoManager(const TVKUndoManager&) = delete;
    TVKUndoManager& operator=(const TVKUndoManager&) = delete;

    // Outside undo and redo: a new step on the stack, or a part of the open grouping's step.
    // While a step is being undone or redone: what reverses that run, kept in the same step.
    void registerUndo(Operation inverse, const QString& actionName);

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
    void undo() { m_stack.undo(); }
    void redo() { m_stack.redo(); }
    bool canUndo() const { return m_stack.canUndo(); }
    bool canRedo() const { return m_stack.canRedo(); }
    QString undoActionName() const { return m_stack.undoText(); }
    QString redoActionName() const { return m_stack.redoText(); }

private:
    class Step;
    friend class Step;

    QUndoStack m_stack;
    Step* m_running = nullptr;
    bool m_undoing = false;
    bool m_redoing = false;
    int m_groupDepth = 0;
    std::vector<Operation> m_group;
    QString m_groupName;
};
