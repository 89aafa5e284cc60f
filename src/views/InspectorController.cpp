#include "views/InspectorController.h"

#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "app/TVKController.h"
#include "app/TVKViewInterfaces.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "views/TVKEditorView.h"
#include "views/TVKNextFrame.h"
#include "views/cpkr_ColorPicker.h"
#include "views/editors/TVKBuiltInActionEditorView.h"
#include "views/editors/TVKControlNamesEditorView.h"
#include "views/editors/TVKDisplayEmulationEditorView.h"
#include "views/editors/TVKDisplayPreview.h"
#include "views/editors/TVKDisplayTextEditorView.h"
#include "views/editors/TVKEmulationActionEditorView.h"
#include "views/editors/TVKHiResTextEditorView.h"
#include "views/editors/TVKIconEditorView.h"
#include "views/editors/TVKKeySequenceActionEditorView.h"
#include "views/editors/TVKMIDIActionEditorView.h"
#include "views/editors/TVKMouseActionEditorView.h"
#include "views/editors/TVKSpecialActionEditorView.h"
#include "views/editors/TVKStatusLineEditorView.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QCursor>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QVBoxLayout>
#include <utility>

namespace note = corvane::note;
using corvane::ControlType::isDisplayType;

// The pointer as the mouse editors read it: the global position from the toolkit, and what lies
// under it from the desktop queries of the installation interface.
class InspectorController::PointerQueries : public corvane::PointerEnvironment
{
public:
    explicit PointerQueries(TVKInstallation& installation) : m_installation(installation) {}

    // The desktop's own pointer and height where it can be asked (they stay true under the
    // toolkit's scaling), else the toolkit's.
    QPointF pointerLocation() const override
    {
        if (const std::optional<QPointF> pointer = m_installation.pointerOnDesktop())
            return {pointer->x(), screensHeight() - pointer->y()};
        const QPoint pointer = QCursor::pos();
        return {double(pointer.x()), screensHeight() - pointer.y()};
    }

    double screensHeight() const override
    {
        if (const std::optional<double> height = m_installation.desktopHeight())
            return *height;
        QRect all;
        for (const QScreen* screen : QGuiApplication::screens())
            all = all.united(screen->geometry());
        return all.height();
    }

    bool windowUnderPointer(QPointF point, corvane::WindowUnderPointer& result) const override
    {
        TVKAXObjectInfo found;
        if (!m_installation.getAXObjects(found, point)) {
            m_problem = QCoreApplication::translate(
                "InspectorController",
                "No window could be found under the pointer. Capturing a position in a window "
                "needs an X11 desktop session, or the application running under XWayland.");
            return false;
        }
        m_problem.clear();
        result.applicationName = found.appName;
        result.signature = found.appSignature;
        result.bundleID = found.appID;
        result.windowTitle = found.windowName.value_or(QString());
        result.windowPosition = found.windowPos;
        result.windowSize = found.windowSize;
        return true;
    }

    const QString& problem() const { return m_problem; }

private:
    TVKInstallation& m_installation;
    mutable QString m_problem;
};

// InspectorPanel

InspectorPanel::InspectorPanel(QWidget* parent) : QWidget(parent, Qt::Tool)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_lockObservation = corvane::NotificationCenter::defaultCenter().observe<note::LockStateChange>(
        nullptr, [this](const note::LockStateChange& lock) { setLocked(lock.locked); });
}

void InspectorPanel::setLocked(bool locked)
{
    m_locked = locked;
    for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        child->setEnabled(!locked);
}

// InspectorController

InspectorController::InspectorController(TVKController& controller, TVKInstallation& pointerQueries,
                                         QWidget* parentWindow)
    : m_controller(controller), m_nibName(controller.inspectorNibName()),
      m_pointer(std::make_unique<PointerQueries>(pointerQueries))
{
    m_panel = new InspectorPanel(parentWindow);
    // The frame is remembered under this name.
    m_panel->setObjectName(QStringLiteral("TVKInsPos"));
    m_panel->setWindowTitle(QCoreApplication::translate("InfoPlist", "Inspector", "TVKInspector"));
    awakeFromNib();

    auto& centre = corvane::NotificationCenter::defaultCenter();
    m_observations.push_back(centre.observe<note::SelectionChange>(
        nullptr, [this](const note::SelectionChange& n) { handleControlSelection(n.control); }));
    m_observations.push_back(centre.observe<note::ControlPropertyChange>(
        nullptr, [this](const note::ControlPropertyChange& n) {
            handleControlPropertyChange(n.control, false, false);
        }));
    m_observations.push_back(centre.observe<note::RemoteSelectionChange>(
        nullptr, [this](const note::RemoteSelectionChange& n) {
            handleControlPropertyChange(n.control, n.visibleEditorUpdate, true);
        }));
    m_observations.push_back(centre.observe<note::DisplaySelectionChange>(
        nullptr, [this](const note::DisplaySelectionChange& n) {
            handleDisplaySelectionChange(n.control);
        }));
    m_observations.push_back(centre.observe<note::RemoteDisplaySelectionChange>(
        nullptr, [this](const note::RemoteDisplaySelectionChange& n) {
            handleDisplaySelectionChange(n.control);
        }));
    centre.observeEach<note::EmulChg>(m_observations, nullptr,
                                      [this] { handleEmulationModeChange(); });

    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVKKeyset* keyset =
        model && model->numberOfKeysets() > 0 ? model->selectedKeyset() : nullptr;
    if (keyset && keyset->locked()) {
        m_panel->setLocked(true);
        for (TVKEditorView* editor : m_editorList)
            editor->setLockState(true);
    }
}

InspectorController::~InspectorController()
{
    // The editors in the panel refer back to this controller.
    m_observations.clear();
    delete m_panel;
}

void InspectorController::awakeFromNib()
{
    auto* column = new QVBoxLayout(m_panel);
    column->setContentsMargins(12, 12, 12, 12);

    auto* nameForm = new QFormLayout;
    m_userNameField = new QLineEdit(m_panel);
    m_userNameField->setClearButtonEnabled(true);
    nameForm->addRow(tr("&Name:"), m_userNameField);
    auto* nameRow = new QWidget(m_panel);
    nameRow->setLayout(nameForm);
    nameForm->setContentsMargins(0, 0, 0, 0);
    column->addWidget(nameRow);

    m_editorContainer = new QWidget(m_panel);
    // Only the editor on screen stands in the container's layout: a layout holding all thirteen
    // would measure every one of them, with every wrapped text, each time the panel is laid out.
    m_editorLayout = new QVBoxLayout(m_editorContainer);
    m_editorLayout->setContentsMargins(0, 0, 0, 0);
    m_placeholder =
        new QLabel(tr("Select a control or a display on the surface to edit it."), m_panel);
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_placeholder->setWordWrap(true);
    m_placeholder->setForegroundRole(QPalette::PlaceholderText);
    m_editorLayout->addWidget(m_placeholder);
    column->addWidget(m_editorContainer, 1);

    auto addSlider = [this](QWidget*& row, QSlider*& slider, const QString& title, int minimum,
                            int maximum) {
        row = new QWidget(m_panel);
        auto* form = new QFormLayout(row);
        form->setContentsMargins(0, 0, 0, 0);
        slider = new QSlider(Qt::Horizontal, row);
        slider->setRange(minimum, maximum);
        slider->setPageStep(qMax(1, (maximum - minimum) / 8));
        slider->setAccessibleName(QString(title).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
        auto* value = new QLabel(row);
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* line = new QHBoxLayout;
        line->addWidget(slider, 1);
        line->addWidget(value);
        auto* label = new QLabel(title, row);
        label->setBuddy(slider);
        form->addRow(label, line);
        connect(slider, &QSlider::valueChanged, value, [value](int v) { value->setNum(v); });
        value->setNum(slider->value());
        row->hide();
    };
    addSlider(m_brightnessRow, m_brightnessSlider, tr("&Brightness:"), 0, 15);
    addSlider(m_sensitivityRow, m_sensitivitySlider, tr("Jog &sensitivity:"), 1, 127);
    addSlider(m_joystickSensitivityRow, m_joystickSensitivitySlider, tr("Joystick &sensitivity:"),
              1, 10);
    column->addWidget(m_brightnessRow);
    column->addWidget(m_sensitivityRow);
    column->addWidget(m_joystickSensitivityRow);

    auto* bottom = new QWidget(m_panel);
    auto* bottomRow = new QHBoxLayout(bottom);
    bottomRow->setContentsMargins(0, 0, 0, 0);
    m_allLayersCopyCheckbox = new QCheckBox(tr("Apply edits to &all layers"), bottom);
    m_deleteActionButton = new QPushButton(tr("Remove &Action"), bottom);
    bottomRow->addWidget(m_allLayersCopyCheckbox);
    bottomRow->addStretch();
    bottomRow->addWidget(m_deleteActionButton);
    column->addWidget(bottom);

    // The editor list, indexed by control type: the kind of control whose editor view stands
    // there, and the identifier it is given. Type 12 shows the button's view again; the NV's
    // display view gets no identifier of its own, the button display's being given again.
    struct EditorRow
    {
        int builtFor;
        const char* iD;
    };
    namespace T = corvane::ControlType;
    static constexpr EditorRow kEditorTable[kEditorCount] = {{T::Button, "BTN"},
                                                             {T::Encoder, "ENC"},
                                                             {T::FourWay, "4WY"},
                                                             {T::Shuttle, "STL"},
                                                             {T::Jog, "JOG"},
                                                             {T::LCDDisplay, "LCD"},
                                                             {T::TimecodeDisplay, "TC"},
                                                             {T::Fader, "FAD"},
                                                             {T::Joystick, "JOY"},
                                                             {T::MultiColorButton, "MCB"},
                                                             {T::LCDButtonDisplay, "LCB"},
                                                             {T::NVLCDDisplay, nullptr},
                                                             {T::Button, nullptr}};
    for (int type = 0; type < kEditorCount; ++type) {
        const EditorRow& row = kEditorTable[type];
        TVKEditorView* view = nullptr;
        for (int earlier = 0; earlier < type && !view; ++earlier)
            if (kEditorTable[earlier].builtFor == row.builtFor)
                view = m_editorList[size_t(earlier)];
        if (!view) {
            view = makeEditor(row.builtFor);
            if (row.iD)
                view->setID(QString::fromLatin1(row.iD));
            wireEditor(view);
        }
        m_editorList[size_t(type)] = view;
    }
    m_dzDisplayEditor = makeEditor(T::LCDDisplay);
    wireEditor(m_dzDisplayEditor);
    // The panel is as large as its largest editor from the start, so that it is placed whole on
    // the screen and keeps its size whichever editor it shows.
    QSize largest = m_placeholder->minimumSizeHint();
    for (TVKEditorView* editor : m_editorList) {
        editor->hide();
        largest = largest.expandedTo(editor->minimumSizeHint());
    }
    m_dzDisplayEditor->hide();
    m_editorContainer->setMinimumSize(largest.expandedTo(m_dzDisplayEditor->minimumSizeHint()));

    connect(m_userNameField, &QLineEdit::editingFinished, this,
            &InspectorController::handleUserNameChange);
    connect(m_brightnessSlider, &QSlider::sliderReleased, this,
            &InspectorController::handleBrightnessChange);
    connect(m_sensitivitySlider, &QSlider::sliderReleased, this,
            &InspectorController::handleSensitivityChange);
    connect(m_joystickSensitivitySlider, &QSlider::sliderReleased, this,
            &InspectorController::handleJoystickSensitivityChange);
    // Keyboard and page steps are edits as they happen; a drag is one edit when let go.
    const std::pair<QSlider*, void (InspectorController::*)()> sliders[] = {
        {m_brightnessSlider, &InspectorController::handleBrightnessChange},
        {m_sensitivitySlider, &InspectorController::handleSensitivityChange},
        {m_joystickSensitivitySlider, &InspectorController::handleJoystickSensitivityChange}};
    for (const auto& entry : sliders) {
        const auto handler = entry.second;
        connect(entry.first, &QSlider::actionTriggered, this, [this, handler](int action) {
            if (action != QAbstractSlider::SliderMove)
                QMetaObject::invokeMethod(
                    this, [this, handler] { (this->*handler)(); }, Qt::QueuedConnection);
        });
    }
    connect(m_deleteActionButton, &QPushButton::clicked, this,
            &InspectorController::handleDeleteAction);
    connect(m_allLayersCopyCheckbox, &QCheckBox::toggled, this,
            &InspectorController::handleCopyToAllLayersChange);
    updateDeleteActionButton();
    m_panel->resize(560, 600);
    m_nextFrame = new TVKNextFrame(this, [this] { showEditedControl(); });
}

TVKEditorView* InspectorController::makeEditor(int kind)
{
    using corvane::EmulationActionEditor;
    auto* view = new TVKEditorView(m_editorContainer);
    auto keys = [&](qint32 type, const QStringList& directions) {
        view->addActionEditor(new TVKKeySequenceActionEditorView(*this, type, directions, view),
                              tr("Keys"));
    };
    auto midi = [&](qint32 type) {
        view->addActionEditor(new TVKMIDIActionEditorView(*this, type, view), tr("MIDI"));
    };
    auto mouse = [&](qint32 type) {
        view->addActionEditor(new TVKMouseActionEditorView(*this, type, view), tr("Mouse"));
    };
    auto builtIn = [&](qint32 type) {
        view->addActionEditor(new TVKBuiltInActionEditorView(*this, type, view), tr("Built-in"));
    };
    auto emulation = [&](EmulationActionEditor::Kind emulated) {
        view->addActionEditor(new TVKEmulationActionEditorView(*this, emulated, view),
                              tr("Emulation"));
    };
    auto special = [&](qint32 type) {
        view->addActionEditor(new TVKSpecialActionEditorView(*this, type, view), tr("Surface"));
    };
    const QStringList turns = {tr("Counter-clockwise"), tr("Clockwise")};
    const QStringList fourWay = {tr("Left"), tr("Right"), tr("Up"), tr("Down")};
    switch (kind) {
    case corvane::ControlType::Button:
    case corvane::ControlType::MultiColorButton:
        keys(TVKButtonKeySequenceAction::kActionType, {});
        midi(TVKButtonMIDIAction::kActionType);
        mouse(TVKButtonMouseAction::kActionType);
        builtIn(TVKButtonBuiltInAction::kActionType);
        emulation(EmulationActionEditor::Button);
        special(TVKButtonSpecialAction::kActionType);
        view->addLatchedCheckbox();
        if (kind == corvane::ControlType::MultiColorButton)
            view->addHiResColorEditor();
        break;
    case corvane::ControlType::Encoder:
    case corvane::ControlType::Fader:
        keys(TVKEncoderKeySequenceAction::kActionType, turns);
        midi(TVKEncoderMIDIAction::kActionType);
        mouse(TVKEncoderMouseAction::kActionType);
        builtIn(TVKEncoderBuiltInAction::kActionType);
        emulation(kind == corvane::ControlType::Fader ? EmulationActionEditor::Fader
                                                      : EmulationActionEditor::Encoder);
        special(TVKEncoderSpecialAction::kActionType);
        break;
    case corvane::ControlType::FourWay:
    case corvane::ControlType::Joystick:
        keys(TVK4WayKeySequenceAction::kActionType, fourWay);
        midi(TVK4WayMIDIAction::kActionType);
        mouse(TVK4WayMouseAction::kActionType);
        builtIn(TVK4WayBuiltInAction::kActionType);
        special(TVKSpecial4WayAction::kActionType);
        if (kind == corvane::ControlType::FourWay)
            view->addOnColorEditor({{0, tr("Off")},
                                    {1, tr("Green")},
                                    {2, tr("Blue")},
                                    {3, tr("Red")},
                                    {4, tr("White")}});
        break;
    case corvane::ControlType::Shuttle:
        keys(TVKShuttleKeySequenceAction::kActionType, {turns[0], turns[1], tr("Stopped")});
        midi(TVKShuttleMIDIAction::kActionType);
        mouse(TVKShuttleMouseAction::kActionType);
        builtIn(TVKShuttleBuiltInAction::kActionType);
        special(TVKShuttleSpecialAction::kActionType);
        break;
    case corvane::ControlType::Jog:
        keys(TVKJogKeySequenceAction::kActionType, turns);
        midi(TVKJogMIDIAction::kActionType);
        mouse(TVKJogMouseAction::kActionType);
        builtIn(TVKJogBuiltInAction::kActionType);
        emulation(EmulationActionEditor::Jog);
        special(TVKSpecialJogAction::kActionType);
        break;
    case corvane::ControlType::LCDDisplay:
        view->addPreview(new TVKDisplayPreview(TVKDisplayPreview::Look::Lcd, view));
        view->addActionEditor(new TVKDisplayTextEditorView(*this, view), tr("Text"));
        view->addActionEditor(
            new TVKControlNamesEditorView(*this, TVKLCDDisplayEncoderNameAction::kActionType, view),
            tr("Encoder Names"));
        view->addActionEditor(
            new TVKControlNamesEditorView(*this, TVKLCDDisplayButtonNameAction::kActionType, view),
            tr("Button Names"));
        view->addActionEditor(new TVKDisplayEmulationEditorView(
                                  *this, TVKLCDDisplayEmulationAction::kActionType, view),
                              tr("Emulation"));
        builtIn(TVKBuiltInLCDDisplayAction::kActionType);
        break;
    case corvane::ControlType::TimecodeDisplay:
        view->addPreview(new TVKDisplayPreview(TVKDisplayPreview::Look::Timecode, view));
        view->addActionEditor(new TVKDisplayEmulationEditorView(
                                  *this, TVKTimecodeDisplayEmulationAction::kActionType, view),
                              tr("Emulation"));
        builtIn(TVKBuiltInTimecodeDisplayAction::kActionType);
        break;
    case corvane::ControlType::LCDButtonDisplay:
        view->addPreview(new TVKDisplayPreview(TVKDisplayPreview::Look::LcdButton, view));
        view->addActionEditor(new TVKHiResTextEditorView(*this, view), tr("Text"));
        view->addActionEditor(new TVKIconEditorView(*this, view), tr("Icon"));
        view->addActionEditor(new TVKStatusLineEditorView(*this, view), tr("Status"));
        break;
    case corvane::ControlType::NVLCDDisplay:
        view->addPreview(new TVKDisplayPreview(TVKDisplayPreview::Look::Lcd, view));
        view->addActionEditor(new TVKDisplayTextEditorView(*this, view), tr("Text"));
        view->addActionEditor(
            new TVKControlNamesEditorView(
                *this, TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType, view),
            tr("Button Names"));
        builtIn(TVKBuiltInLCDDisplayAction::kActionType);
        break;
    default:
        break;
    }
    return view;
}

void InspectorController::wireEditor(TVKEditorView* editor)
{
    editor->setTabGuard(
        [this](corvane::FourCharCode identifier) { return tabRefusal(identifier); });
    if (QCheckBox* latch = editor->latchedCheckbox())
        connect(latch, &QCheckBox::clicked, this, &InspectorController::handleLatchStateChange);
    if (QButtonGroup* on = editor->onColorEditor())
        connect(on, &QButtonGroup::idClicked, this, &InspectorController::handleOnColorChange);
    if (QButtonGroup* off = editor->offColorEditor())
        connect(off, &QButtonGroup::idClicked, this, &InspectorController::handleOffColorChange);
    if (QButtonGroup* matrix = editor->onOffColorMatrix())
        connect(matrix, &QButtonGroup::idClicked, this,
                &InspectorController::handleOnOffColorMatrix);
    if (cpkr_ColorPickerController* picker = editor->hiResColorEditor())
        picker->setDelegate(
            [this](cpkr_ColorPickerController&, quint8 color) { colorPicker(color); });
}

TVKEditorView* InspectorController::currentEditor() const
{
    return m_selectedEditor >= 0 ? m_editorList[size_t(m_selectedEditor)] : nullptr;
}

bool InspectorController::isShownEditor(const QWidget* editor) const
{
    const TVKEditorView* current = currentEditor();
    return current && current->isAncestorOf(editor);
}

const corvane::PointerEnvironment& InspectorController::pointerEnvironment() const
{
    return *m_pointer;
}

QString InspectorController::pointerQueryProblem() const
{
    return m_pointer->problem();
}

// Selection

void InspectorController::updateForNewControl(TVKControl* control)
{
    // What is edited changes at once, so that an edit always reads the control it is for; the
    // panel shows it on the next frame.
    m_theControl = control;
    m_editedAction.setAction(control && control->action() ? control->action()->copyWithZone()
                                                          : nullptr);
    m_currentActionType = control ? m_editedAction.actionType() : 0;
    m_wholePanelDue = true;
    m_nextFrame->request();
}

void InspectorController::flushFrame()
{
    m_nextFrame->flush();
}

void InspectorController::showEditedControl()
{
    const bool whole = std::exchange(m_wholePanelDue, false);
    const bool controlEditor = std::exchange(m_controlEditorDue, false);
    if (!whole) {
        if (controlEditor)
            updateControlEditor();
        return;
    }
    TVKControl* control = m_theControl;
    if (!control) {
        updateDeleteActionButton();
        return;
    }
    QString prefix = QCoreApplication::translate("InfoPlist", "Inspector - ", "TVKInspectorName");
    if (prefix.isEmpty())
        prefix = QStringLiteral("This isn't working - ");
    const TVKKeyset* keyset = control->keyset();
    const TVKLayer* layer = control->layer();
    m_panel->setWindowTitle(
        QStringLiteral("%1%2 (%3 Layer %4)")
            .arg(prefix, control->name(), keyset ? keyset->name() : QStringLiteral("(null)"))
            .arg(qlonglong(layer ? layer->index() + 1 : 1)));

    setEditor(control->tvkControlType());
    updateControlEditor();
    updateActionEditor();
    updateDeleteActionButton();
}

void InspectorController::handleControlSelection(TVKControl* control)
{
    m_controlIsADisplay =
        control && (control->tvkControlType() == corvane::ControlType::LCDDisplay ||
                    control->tvkControlType() == corvane::ControlType::NVLCDDisplay);
    updateForNewControl(control);
}

void InspectorController::handleDisplaySelectionChange(TVKControl* display)
{
    m_controlIsADisplay = true;
    updateForNewControl(display);
}

void InspectorController::handleControlPropertyChange(TVKControl* control, bool visibleEditorUpdate,
                                                      bool fromSurface)
{
    if (visibleEditorUpdate || control != m_theControl) {
        // A control touched on the surface is never the display shown before it, whose edits
        // would otherwise go to that display.
        if (fromSurface && control != m_theControl)
            m_controlIsADisplay = control && isDisplayType(control->tvkControlType());
        updateForNewControl(control);
    } else {
        m_controlEditorDue = true;
        m_nextFrame->request();
    }
}

void InspectorController::handleEmulationModeChange()
{
    updateActionDescriptorField();
    if (TVKEditorView* editor = currentEditor())
        editor->updateTabAvailability();
}

void InspectorController::setEditor(int type)
{
    if (type < 0 || type >= kEditorCount || type == m_selectedEditor)
        return;
    QWidget* old = currentEditor();
    if (!old)
        old = m_placeholder;
    old->hide();
    m_editorLayout->removeWidget(old);
    TVKEditorView* editor = m_editorList[size_t(type)];
    m_editorLayout->addWidget(editor);
    editor->show();
    m_selectedEditor = type;
    m_brightnessRow->setVisible(type == corvane::ControlType::FourWay);
    m_sensitivityRow->setVisible(type == corvane::ControlType::Jog);
    m_joystickSensitivityRow->setVisible(type == corvane::ControlType::Joystick);
}

void InspectorController::updateControlEditor()
{
    TVKEditorView* editor = currentEditor();
    if (!m_theControl || !editor)
        return;
    {
        const QSignalBlocker block(m_userNameField);
        m_userNameField->setText(m_theControl->userName());
        // Without a name of its own the control goes by its factory name.
        m_userNameField->setPlaceholderText(m_theControl->name());
    }
    editor->setLatched(m_theControl->latched());
    if (const auto* multi = dynamic_cast<const TVKMultiColorButtonControl*>(m_theControl)) {
        m_currentOnColor = multi->onColor();
        m_currentOffColor = multi->offColor();
        editor->setOnColor(m_currentOnColor);
        editor->setOffColor(m_currentOffColor);
    }
    if (const auto* fourWay = dynamic_cast<const TVK4WayControl*>(m_theControl)) {
        m_currentOnColor = fourWay->onColor();
        editor->setOnColor(m_currentOnColor);
        // The sliders post edits only from the user's actions, so the shown value may be set
        // with its signals on: they keep the number beside each slider current.
        m_brightnessSlider->setValue(fourWay->brightness());
    }
    if (const auto* jog = dynamic_cast<const TVKJogControl*>(m_theControl)) {
        m_sensitivitySlider->setValue(jog->sensitivity());
    }
    if (const auto* joystick = dynamic_cast<const TVKJoystickControl*>(m_theControl)) {
        m_joystickSensitivitySlider->setValue(joystick->joystickSensitivity());
    }
}

void InspectorController::updateActionEditor()
{
    TVKEditorView* editor = currentEditor();
    if (editor)
        editor->updateTabAvailability();
    if (editor && !m_editedAction.isEmpty() && m_editedAction.editorTabID() != 0)
        editor->selectActionEditorWithIdentifier(m_editedAction.editorTabID());
    updateActionDescriptorField();
    corvane::NotificationCenter::defaultCenter().post(note::NewActionSelected{}, this);
}

void InspectorController::updateActionDescriptorField()
{
    TVKEditorView* editor = currentEditor();
    if (!editor)
        return;
    if (!m_editedAction.isEmpty())
        editor->setActionDescriptor(m_editedAction.actionDescriptor());
    else
        editor->setActionDescriptor(m_controlIsADisplay ? QStringLiteral("No Function Assigned")
                                                        : QStringLiteral("No Action Assigned"));
    if (TVKDisplayPreview* preview = editor->preview())
        preview->showAction(m_editedAction.action());
}

void InspectorController::updateDeleteActionButton()
{
    m_deleteActionButton->setEnabled(!m_editedAction.isEmpty());
}

// Posting edits

template <class Edit>
void InspectorController::post(Edit edit)
{
    edit.copyToLayers = m_copyToAllLayers;
    corvane::NotificationCenter::defaultCenter().post(edit, this);
}

void InspectorController::postUserName(const QString& name)
{
    if (m_controlIsADisplay)
        post(note::DisplayUserNameChange{name});
    else
        post(note::UserNameChange{name});
}

void InspectorController::handleUserNameChange()
{
    if (!m_theControl || m_userNameField->text() == m_theControl->userName())
        return;
    postUserName(m_userNameField->text());
}

void InspectorController::changeUserName(const QString& name)
{
    postUserName(name);
    if (m_theControl) {
        const QSignalBlocker block(m_userNameField);
        m_userNameField->setText(m_theControl->userName());
    }
}

void InspectorController::handleLatchStateChange()
{
    TVKEditorView* editor = currentEditor();
    if (!editor || !editor->latchedCheckbox())
        return;
    post(note::LatchChange{editor->latchedCheckbox()->isChecked()});
}

void InspectorController::handleOnColorChange()
{
    if (TVKEditorView* editor = currentEditor(); editor && editor->onColorEditor())
        post(note::ColorChange{editor->onColorEditor()->checkedId()});
}

void InspectorController::handleOffColorChange()
{
    if (TVKEditorView* editor = currentEditor(); editor && editor->offColorEditor())
        post(note::OffColorChange{editor->offColorEditor()->checkedId()});
}

void InspectorController::colorPicker(quint8 color)
{
    if (m_currentStateColor == 0) {
        m_currentOnColor = color;
        post(note::ColorChange{color});
    } else {
        m_currentOffColor = color;
        post(note::OffColorChange{color});
    }
}

void InspectorController::handleOnOffColorMatrix(int tag)
{
    TVKEditorView* editor = currentEditor();
    if (!editor)
        return;
    if (tag == 0)
        editor->setOnColor(m_currentOnColor);
    else
        editor->setOffColor(m_currentOffColor);
    m_currentStateColor = tag;
}

void InspectorController::handleBrightnessChange()
{
    post(note::BrightnessChange{m_brightnessSlider->value()});
}

void InspectorController::handleSensitivityChange()
{
    post(note::JogSensChange{m_sensitivitySlider->value()});
}

void InspectorController::handleJoystickSensitivityChange()
{
    post(note::JoySensChange{m_joystickSensitivitySlider->value()});
}

void InspectorController::handleDeleteAction()
{
    m_editedAction.setAction(nullptr);
    actionParameterChanged();
    corvane::NotificationCenter::defaultCenter().post(note::NewActionSelected{}, this);
}

void InspectorController::handleCopyToAllLayersChange()
{
    m_copyToAllLayers = m_allLayersCopyCheckbox->isChecked();
}

void InspectorController::actionParameterChangedNaming(const QString& name)
{
    const TVKUndoManager::Grouping gesture(m_controller.undoManager());
    actionParameterChanged();
    changeUserName(name);
}

void InspectorController::actionParameterChanged()
{
    if (TVKAction* action = m_editedAction.action()) {
        action->setOwningControl(m_theControl);
        if (m_controlIsADisplay)
            post(note::InsertEditedDisplayAction{});
        else
            post(note::InsertEditedAction{});
    } else {
        if (m_controlIsADisplay)
            post(note::DeleteDisplayAction{});
        else
            post(note::DeleteAction{});
    }
    m_currentActionType = m_editedAction.actionType();
    updateActionDescriptorField();
    updateDeleteActionButton();
}

bool InspectorController::tabView(corvane::FourCharCode identifier) const
{
    return tabRefusal(identifier).isEmpty();
}

QString InspectorController::tabRefusal(corvane::FourCharCode identifier) const
{
    if (identifier != corvane::fourCC("EMUL"))
        return {};
    const TVKKeyset* keyset = m_theControl ? m_theControl->keyset() : nullptr;
    const corvane::EmulationMode mode =
        keyset ? keyset->emulationMode() : corvane::EmulationMode::None;
    if (mode == corvane::EmulationMode::None)
        return tr("This keyset does not emulate a console, so there is nothing to emulate here. "
                  "Choose Emulation Mode A, B or C for the keyset in the Surface menu.");
    if (mode != corvane::EmulationMode::C)
        return {};
    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVKControl* selected = model ? model->selectedControl() : nullptr;
    if (selected && (selected->tvkControlType() == corvane::ControlType::Jog ||
                     selected->tvkControlType() == corvane::ControlType::Button))
        return {};
    return tr("In Emulation Mode C only buttons and the jog wheel play console controls. "
              "Choose Emulation Mode A or B in the Surface menu to emulate this one.");
}
