#pragma once

#include "actions/BuiltInCommandCatalogue.h"
#include "actions/editors/EditorLogic.h"
#include "core/NotificationCenter.h"

#include <QString>
#include <vector>

class TVKActionContainer;
class TVKKeyset;

namespace corvane {

// The built-in command editor's decisions: the command list of the keyset's application that
// suits the control kind, its title, and what choosing a command does to the edited action.
class BuiltInActionEditor : public EditorLogic
{
public:
    // Loads the list for the model's selected keyset from the catalogue at cataloguePath, and
    // again whenever "TVKSelectedKeysetChange" is posted.
    BuiltInActionEditor(
        TVKActionContainer& container, qint32 actionType,
        const QString& cataloguePath = BuiltInCommandCatalogue::defaultCataloguePath());

    qint32 actionType() const { return m_actionType; }
    const QString& usageWord() const { return m_usage; }

    // Loads the filtered list for the keyset (on creation and on "TVKSelectedKeysetChange").
    void loadCommandList(const TVKKeyset* keyset, const BuiltInCommandCatalogue& catalogue);
    void loadCommandList(const TVKKeyset* keyset, const QString& cataloguePath);

    const std::vector<BuiltInCommandGroup>& groups() const { return m_groups; }
    // "Built In Commands for %@:" or "No Built In Commands available for %@".
    const QString& title() const { return m_title; }
    // Browser rows: a separator group is a disabled leaf, other groups enabled non-leaves.
    bool isGroupRowEnabled(int groupRow) const;
    bool isGroupRowLeaf(int groupRow) const;

    // What the widget must do after a choice: tell the inspector and rename the control.
    struct Choice
    {
        bool chosen = false;
        QString userName; // the command's name, for changeUserName
    };
    // A double click on a command; acts only when the last column is selected.
    Choice chooseCommand(int groupRow, int commandRow, bool lastColumnSelected = true);

    // The browser path for the held action ("|group|command"), or a null text when the action
    // is of another type and the browser stays as it is.
    QString browserPath() const;
    static QString pathSeparator() { return QStringLiteral("|"); }

    // Why the held command does not belong to the keyset's application: a command pasted from
    // another application's keyset, or a keyset pasted over one for another application. Empty
    // when the application's list holds it for this control, or when the action is of another
    // type.
    QString unavailableNotice() const;

private:
    void loadForSelectedKeyset();

    TVKActionContainer& m_container;
    qint32 m_actionType;
    QString m_usage;
    QString m_cataloguePath;
    NotificationCenter::Observation m_keysetChangeObservation;
    std::vector<BuiltInCommandGroup> m_groups;
    QString m_title;
    QString m_keysetName; // null without a keyset
};

} // namespace corvane
