#pragma once

#include "core/FourCharCode.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"

#include <QString>
#include <QWidget>
#include <functional>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QTabWidget;
class TVKActionEditorView;
class TVKDisplayPreview;
class cpkr_ColorPickerController;
class cpkr_SwatchView;

// The inspector's editor for one kind of control: the action's descriptor, a tab per kind of
// action, and what the kind adds (latch, colours, a preview of a display).
class TVKEditorView : public QWidget
{
    Q_OBJECT
public:
    explicit TVKEditorView(QWidget* parent = nullptr);

    void setID(const QString& iD) { m_iD = iD; }
    const QString& iD() const { return m_iD; }

    // Building the view: one tab per action editor, identified by the editor's tab ID.
    void addActionEditor(TVKActionEditorView* editor, const QString& title);
    QCheckBox* addLatchedCheckbox();
    // The trackball ring's colours, cells tagged by colour number.
    QButtonGroup* addOnColorEditor(const QList<std::pair<int, QString>>& colors);
    // The six-bit picker with its on/off switch.
    cpkr_ColorPickerController* addHiResColorEditor();
    TVKDisplayPreview* addPreview(TVKDisplayPreview* preview);

    // Asked before a tab is chosen, by the user or by selectActionEditor...: why the tab may not
    // open now, or an empty text when it may. A refusal keeps the tab shown before and says why
    // above the tabs.
    void setTabGuard(std::function<QString(corvane::FourCharCode)> guard)
    {
        m_tabGuard = std::move(guard);
    }
    // Asks the guard again for every tab: a tab that cannot open is greyed and its tool tip says
    // why; the note of an earlier refusal goes.
    void updateTabAvailability();
    QLabel* tabNotice() const { return m_tabNotice; }

    void setActionDescriptor(const QString& descriptor);
    QString actionDescriptor() const;
    void selectActionEditor(int index);
    void selectActionEditorWithIdentifier(corvane::FourCharCode identifier);
    void setLatched(bool latched);
    void setOnColor(qint64 color);
    void setOffColor(qint64 color);
    void handleLockStateChange(const corvane::note::LockStateChange& lock);
    void setLockState(bool locked);
    bool locked() const { return m_locked; }

    QLabel* actionDescriptorField() const { return m_actionDescriptorField; }
    QTabWidget* editorTabs() const { return m_editorTabs; }
    QCheckBox* latchedCheckbox() const { return m_latchedCheckbox; }
    cpkr_ColorPickerController* hiResColorEditor() const { return m_hiResColorEditor; }
    QButtonGroup* onOffColorMatrix() const { return m_onOffColorMatrix; }
    cpkr_SwatchView* sixBitOnColor() const { return m_sixBitOnColor; }
    cpkr_SwatchView* sixBitOffColor() const { return m_sixBitOffColor; }
    QButtonGroup* onColorEditor() const { return m_onColorEditor; }
    QButtonGroup* offColorEditor() const { return m_offColorEditor; }
    TVKDisplayPreview* preview() const { return m_preview; }
    TVKActionEditorView* actionEditor(corvane::FourCharCode identifier) const;
    corvane::FourCharCode currentTabID() const;

private:
    void tabChanged(int index);

    QString m_iD;
    QLabel* m_actionDescriptorField = nullptr;
    TVKDisplayPreview* m_preview = nullptr;
    QTabWidget* m_editorTabs = nullptr;
    QLabel* m_tabNotice = nullptr;
    QWidget* m_properties = nullptr;
    QCheckBox* m_latchedCheckbox = nullptr;
    cpkr_ColorPickerController* m_hiResColorEditor = nullptr;
    QButtonGroup* m_onOffColorMatrix = nullptr;
    cpkr_SwatchView* m_sixBitOnColor = nullptr;
    cpkr_SwatchView* m_sixBitOffColor = nullptr;
    QButtonGroup* m_onColorEditor = nullptr;
    QButtonGroup* m_offColorEditor = nullptr;
    bool m_locked = false;
    int m_shownTab = 0;
    bool m_reverting = false;
    std::function<QString(corvane::FourCharCode)> m_tabGuard;
    corvane::NotificationCenter::Observation m_lockObservation;
};
