#pragma once

#include "core/FourCharCode.h"
#include "core/NotificationCenter.h"

#include <QString>
#include <QWidget>

class TVKActionContainer;
class TVKControl;
namespace corvane {
class PointerEnvironment;
}

// What an action editor needs of the inspector that hosts it: the private copy it edits, the
// one call that hands an edit on, the control shown, and the pointer queries of mouse captures.
class TVKActionEditorHost
{
public:
    virtual ~TVKActionEditorHost() = default;
    virtual TVKActionContainer& editedAction() = 0;
    virtual void actionParameterChanged() = 0;
    virtual void changeUserName(const QString& name) = 0;
    // An edit of the action that also names the control after it (a built-in command): the
    // user undoes both at once.
    virtual void actionParameterChangedNaming(const QString& name) = 0;
    virtual TVKControl* shownControl() const = 0;
    virtual const corvane::PointerEnvironment& pointerEnvironment() const = 0;
    // Why the last query of what lies under the pointer could not be answered; empty when it
    // was, or when nothing has been asked.
    virtual QString pointerQueryProblem() const = 0;
    // Whether this widget's editor view is the one on screen; hidden editors skip refreshes and
    // are brought up to date when they are shown.
    virtual bool isShownEditor(const QWidget* editor) const = 0;
};

// One tab of an editor view: the editor of one kind of action. It shows the held action again
// whenever the inspector shows another one ("TVKNewActionSelected"). Its decisions are made by a
// logic object; the view redraws from that object's state in one place, updateData(), called
// from the object's change callback.
class TVKActionEditorView : public QWidget
{
    Q_OBJECT
public:
    TVKActionEditorView(TVKActionEditorHost& host, corvane::FourCharCode tabID,
                        QWidget* parent = nullptr);

    corvane::FourCharCode tabID() const { return m_tabID; }
    // Shows the container's action (any action: one of another kind clears the editor).
    virtual void updateForNewAction() = 0;

protected:
    // Hands an edit of the container's action on to the inspector, when this editor is the one
    // on screen.
    void edited();

    TVKActionEditorHost& m_host;

private:
    corvane::FourCharCode m_tabID;
    corvane::NotificationCenter::Observation m_newActionObservation;
};
