#pragma once

#include "actions/TVKActionContainer.h"
#include "core/NotificationCenter.h"
#include "views/editors/TVKActionEditorView.h"

#include <QObject>
#include <QWidget>
#include <array>
#include <memory>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QVBoxLayout;
class TVKController;
class TVKEditorView;
class TVKInstallation;
class TVKNextFrame;

// The inspector's floating panel. It never takes the keyboard from the surface windows by
// appearing, and all of it is disabled while the keyset is locked.
class InspectorPanel : public QWidget
{
    Q_OBJECT
public:
    explicit InspectorPanel(QWidget* parent = nullptr);
    bool locked() const { return m_locked; }
    void setLocked(bool locked);

private:
    bool m_locked = false;
    corvane::NotificationCenter::Observation m_lockObservation;
};

// Shows the selected control or display and turns every edit into the notification the
// controller applies. The action being edited is a private copy until it is posted.
class InspectorController : public QObject, public TVKActionEditorHost
{
    Q_OBJECT
public:
    // The editor list, indexed by control type.
    static constexpr int kEditorCount = 13;

    InspectorController(TVKController& controller, TVKInstallation& pointerQueries,
                        QWidget* parentWindow);
    ~InspectorController() override;

    InspectorPanel* panel() const { return m_panel; }
    const QString& nibName() const { return m_nibName; }

    // Selection. The panel follows on the next frame; flushFrame() brings it up to date now.
    void updateForNewControl(TVKControl* control);
    void flushFrame();
    void handleControlSelection(TVKControl* control);
    // visibleEditorUpdate: show the control afresh even when it is shown; fromSurface: the control
    // was touched on the surface.
    void handleControlPropertyChange(TVKControl* control, bool visibleEditorUpdate,
                                     bool fromSurface);
    void handleDisplaySelectionChange(TVKControl* display);
    void handleEmulationModeChange();
    void setEditor(int type);
    void updateControlEditor();
    void updateActionEditor();
    void updateActionDescriptorField();
    void updateDeleteActionButton();

    // User actions.
    void handleUserNameChange();
    void changeUserName(const QString& name) override;
    void handleLatchStateChange();
    void handleOnColorChange();
    void handleOffColorChange();
    void colorPicker(quint8 color);
    void handleOnOffColorMatrix(int tag);
    void handleBrightnessChange();
    void handleSensitivityChange();
    void handleJoystickSensitivityChange();
    void handleDeleteAction();
    void handleCopyToAllLayersChange();
    bool tabView(corvane::FourCharCode identifier) const;
    // Why the tab may not be chosen for the shown control, and where the user changes that;
    // empty when it may.
    QString tabRefusal(corvane::FourCharCode identifier) const;

    // TVKActionEditorHost
    TVKActionContainer& editedAction() override { return m_editedAction; }
    void actionParameterChanged() override;
    void actionParameterChangedNaming(const QString& name) override;
    TVKControl* shownControl() const override { return m_theControl; }
    const corvane::PointerEnvironment& pointerEnvironment() const override;
    QString pointerQueryProblem() const override;
    bool isShownEditor(const QWidget* editor) const override;

    TVKControl* theControl() const { return m_theControl; }
    bool controlIsADisplay() const { return m_controlIsADisplay; }
    int selectedEditor() const { return m_selectedEditor; }
    qint32 currentActionType() const { return m_currentActionType; }
    bool copyToAllLayers() const { return m_copyToAllLayers; }
    qint64 currentOnColor() const { return m_currentOnColor; }
    qint64 currentOffColor() const { return m_currentOffColor; }
    int currentStateColor() const { return m_currentStateColor; }
    TVKEditorView* editor(int index) const { return m_editorList[size_t(index)]; }
    TVKEditorView* currentEditor() const;
    TVKEditorView* dzDisplayEditor() const { return m_dzDisplayEditor; }

    QLineEdit* userNameField() const { return m_userNameField; }
    QSlider* brightnessSlider() const { return m_brightnessSlider; }
    QSlider* sensitivitySlider() const { return m_sensitivitySlider; }
    QSlider* joystickSensitivitySlider() const { return m_joystickSensitivitySlider; }
    QPushButton* deleteActionButton() const { return m_deleteActionButton; }
    QCheckBox* allLayersCopyCheckbox() const { return m_allLayersCopyCheckbox; }

private:
    class PointerQueries;

    void awakeFromNib();
    // Shows what updateForNewControl() and the property changes asked for.
    void showEditedControl();
    TVKEditorView* makeEditor(int kind);
    // Posts an edit for the controller, carrying the copy-to-all-layers choice.
    template <class Edit>
    void post(Edit edit);
    void postUserName(const QString& name);
    void wireEditor(TVKEditorView* editor);

    TVKController& m_controller;
    QString m_nibName;
    std::unique_ptr<PointerQueries> m_pointer;
    InspectorPanel* m_panel = nullptr;

    QLineEdit* m_userNameField = nullptr;
    QSlider* m_brightnessSlider = nullptr;
    QSlider* m_sensitivitySlider = nullptr;
    QSlider* m_joystickSensitivitySlider = nullptr;
    QWidget* m_brightnessRow = nullptr;
    QWidget* m_sensitivityRow = nullptr;
    QWidget* m_joystickSensitivityRow = nullptr;
    QWidget* m_editorContainer = nullptr;
    QVBoxLayout* m_editorLayout = nullptr;
    QLabel* m_placeholder = nullptr;
    TVKNextFrame* m_nextFrame = nullptr;
    bool m_wholePanelDue = false;
    bool m_controlEditorDue = false;

    // Indexed by control type; a view may stand at more than one index.
    std::array<TVKEditorView*, kEditorCount> m_editorList{};
    // Kept ready for the DZ's displays, which have no control type of their own.
    TVKEditorView* m_dzDisplayEditor = nullptr;

    QPushButton* m_deleteActionButton = nullptr;
    QCheckBox* m_allLayersCopyCheckbox = nullptr;

    qint64 m_selectedGroup = 0;
    qint64 m_selectedControl = 0;
    TVKControl* m_theControl = nullptr;
    TVKActionContainer m_editedAction;
    bool m_controlIsADisplay = false;
    int m_selectedEditor = -1;
    qint32 m_currentActionType = 0;
    int m_builtInCommandsFontSize = 12;
    bool m_copyToAllLayers = false;
    qint64 m_currentOnColor = 0;
    qint64 m_currentOffColor = 0;
    int m_currentStateColor = 0;

    std::vector<corvane::NotificationCenter::Observation> m_observations;
};
