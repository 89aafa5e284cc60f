#pragma once

#include <QString>
#include <QUndoStack>
#include <functional>

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

    // Outside undo and redo: a new step on the stack. While a step is being undone or redone:
    // what reverses that run, kept in the same step.
    void registerUndo(Operation inverse, const QString& actionName);

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
};
