#pragma once

#include <functional>

namespace corvane {

// What every editor's logic shares with its widget: one callback, called whenever what the
// editor's controls show may have changed — after an operation the widget asked for, and after
// the editor changed its state on its own in answer to a notification. The widget redraws from
// the logic's state in that one place and never observes the logic's notifications itself, so
// no order between observers matters.
class EditorLogic
{
public:
    void setStateChangedHandler(std::function<void()> handler)
    {
        m_stateChanged = std::move(handler);
    }

protected:
    EditorLogic() = default;
    ~EditorLogic() = default;
    EditorLogic(const EditorLogic&) = delete;
    EditorLogic& operator=(const EditorLogic&) = delete;

    // Marks one operation of the editor; the widget hears of it once, when the outermost
    // operation ends, however many operations that one called.
    class StateChange
    {
    public:
        explicit StateChange(EditorLogic& editor) : m_editor(editor) { ++m_editor.m_depth; }
        ~StateChange()
        {
            if (--m_editor.m_depth == 0 && m_editor.m_stateChanged)
                m_editor.m_stateChanged();
        }
        StateChange(const StateChange&) = delete;
        StateChange& operator=(const StateChange&) = delete;

    private:
        EditorLogic& m_editor;
    };

private:
    std::function<void()> m_stateChanged;
    int m_depth = 0;
};

} // namespace corvane
