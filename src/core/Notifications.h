#pragma once

#include <QLatin1StringView>
#include <QString>
#include <array>

class TVKControl;

// The vocabulary of the notification centre. Every notice the application posts or observes is a
// payload struct here that carries its name; post it with NotificationCenter::post(LatchChange{…})
// and observe it with observe<LatchChange>(…), so a misspelt name or a payload of the wrong type is
// a compile error rather than a notification nobody receives.
namespace corvane {

namespace note {

// --- Selection (posted by the controller) --------------------------------------------------------

// A control was selected on screen; group and control in on-screen numbering.
struct SelectionChange
{
    static constexpr QLatin1StringView name{"TVKSelectionChange"};
    qint64 groupID = 0;
    qint64 controlIndex = 0;
    qint64 layerIndex = 0;
    TVKControl* control = nullptr; // the model data's selected control
};

// A display was selected on screen; its index travels as the control index.
struct DisplaySelectionChange
{
    static constexpr QLatin1StringView name{"TVKDisplaySelectionChange"};
    qint64 groupID = 0;
    qint64 controlIndex = 0;
    qint64 layerIndex = 0;
    TVKControl* control = nullptr;
};

// A control was selected from the surface or after an edit; visibleEditorUpdate asks the
// inspector to show the control afresh even when it is already shown.
struct RemoteSelectionChange
{
    static constexpr QLatin1StringView name{"TVKRemoteSelectionChange"};
    qint64 groupID = 0;
    qint64 controlIndex = 0;
    bool visibleEditorUpdate = false;
    TVKControl* control = nullptr;
};

struct RemoteDisplaySelectionChange
{
    static constexpr QLatin1StringView name{"TVKRemoteDisplaySelectionChange"};
    qint64 groupID = 0;
    qint64 controlIndex = 0;
    bool visibleEditorUpdate = false;
    TVKControl* control = nullptr;
};

struct SelectedGroupChange
{
    static constexpr QLatin1StringView name{"TVKSelectedGroupChange"};
};

struct SelectedLayerChange
{
    static constexpr QLatin1StringView name{"TVKSelectedLayerChange"};
};

struct SelectedKeysetChange
{
    static constexpr QLatin1StringView name{"TVKSelectedKeysetChange"};
};

struct RemoteLayerChange
{
    static constexpr QLatin1StringView name{"TVKRemoteLayerChange"};
};

// --- Keyset list ---------------------------------------------------------------------------------

struct KeysetCountChange
{
    static constexpr QLatin1StringView name{"TVKKeysetCountChange"};
};

struct LockStateChange
{
    static constexpr QLatin1StringView name{"TVKLockStateChange"};
    bool locked = false;
};

struct EmulChg
{
    static constexpr QLatin1StringView name{"TVKEmulChg"};
};

// --- Edits asked for by the inspector, applied by the controller ---------------------------------
// copyToLayers: the edit goes to the same control of every layer.

struct UserNameChange
{
    static constexpr QLatin1StringView name{"TVKUserNameChange"};
    QString userName;
    bool copyToLayers = false;
};

struct DisplayUserNameChange
{
    static constexpr QLatin1StringView name{"TVKDisplayUserNameChange"};
    QString userName;
    bool copyToLayers = false;
};

struct LatchChange
{
    static constexpr QLatin1StringView name{"TVKLatchChange"};
    bool latched = false;
    bool copyToLayers = false;
};

// Colours are six-bit colours (0..63), whether picked from a matrix or from the colour picker.
struct ColorChange
{
    static constexpr QLatin1StringView name{"TVKColorChange"};
    qint64 color = 0;
    bool copyToLayers = false;
};

struct OffColorChange
{
    static constexpr QLatin1StringView name{"TVKOffColorChange"};
    qint64 color = 0;
    bool copyToLayers = false;
};

struct BrightnessChange
{
    static constexpr QLatin1StringView name{"TVKBrightnessChange"};
    qint64 brightness = 0;
    bool copyToLayers = false;
};

struct JogSensChange
{
    static constexpr QLatin1StringView name{"TVKJogSensChange"};
    qint64 sensitivity = 0;
    bool copyToLayers = false;
};

struct JoySensChange
{
    static constexpr QLatin1StringView name{"TVKJoySensChange"};
    qint64 sensitivity = 0;
    bool copyToLayers = false;
};

// The controller takes the action from the inspector's edited action.
struct InsertEditedAction
{
    static constexpr QLatin1StringView name{"TVKInsertEditedAction"};
    bool copyToLayers = false;
};

struct DeleteAction
{
    static constexpr QLatin1StringView name{"TVKDeleteAction"};
    bool copyToLayers = false;
};

struct InsertEditedDisplayAction
{
    static constexpr QLatin1StringView name{"TVKInsertEditedDisplayAction"};
    bool copyToLayers = false;
};

struct DeleteDisplayAction
{
    static constexpr QLatin1StringView name{"TVKDeleteDisplayAction"};
    bool copyToLayers = false;
};

// --- Results of edits (posted by the controller) -------------------------------------------------

struct ShowUserNameChange
{
    static constexpr QLatin1StringView name{"TVKShowUserNameChange"};
    TVKControl* control = nullptr;
};

struct ControlPropertyChange
{
    static constexpr QLatin1StringView name{"TVKControlPropertyChange"};
    TVKControl* control = nullptr;
};

// Group and control in on-screen numbering.
struct DispColorChange
{
    static constexpr QLatin1StringView name{"TVKDispColorChange"};
    qint64 color = 0;
    qint64 groupID = 0;
    qint64 controlIndex = 0;
};

struct DispOffColorChange
{
    static constexpr QLatin1StringView name{"TVKDispOffColorChange"};
    qint64 color = 0;
    qint64 groupID = 0;
    qint64 controlIndex = 0;
};

struct UpdateKSum
{
    static constexpr QLatin1StringView name{"TVKUpdateKSum"};
};

// A layer's button joined a group of the LCD-button expander; group and control in on-screen
// numbering.
struct InspUpdate
{
    static constexpr QLatin1StringView name{"TVKInspUpdate"};
    qint64 groupID = 0;
    qint64 controlIndex = 0;
};

// --- Capture, hardware style, action editors -----------------------------------------------------

struct StartCapture
{
    static constexpr QLatin1StringView name{"TVKStartCapture"};
};

struct EndCapture
{
    static constexpr QLatin1StringView name{"TVKEndCapture"};
};

struct HdwStyChg
{
    static constexpr QLatin1StringView name{"TVKHdwStyChg"};
};

// The inspector shows another action in its editor.
struct NewActionSelected
{
    static constexpr QLatin1StringView name{"TVKNewActionSelected"};
};

// The LCD-button expander's groups changed.
struct CorvaneNVSelectGroup
{
    static constexpr QLatin1StringView name{"TVKCorvaneNVSelectGroup"};
};

// Names of the vocabulary that nothing here posts or observes yet: the action editors' talk among
// themselves and the bank selection of the expanders. They are kept so that no other notice
// takes one of them; a notice that starts being used moves out of this list into a struct above.
inline constexpr std::array<QLatin1StringView, 20> reservedNames{
    QLatin1StringView{"TVKControlActionChange"},
    QLatin1StringView{"TVKReflectActionEdit"},
    QLatin1StringView{"TVKUpdateActionDescrip"},
    QLatin1StringView{"TVKModsChg"},
    QLatin1StringView{"TVKBankChange"},
    QLatin1StringView{"TVKFrameletBankChange"},
    QLatin1StringView{"TVKRemoteFletBankChange"},
    QLatin1StringView{"TVKFrameletParamBankChange"},
    QLatin1StringView{"TVKFrameletParmBankNameChange"},
    QLatin1StringView{"TVKRemoteFletParamBankChange"},
    QLatin1StringView{"TVKRemoteFletActBankChange"},
    QLatin1StringView{"TVKFLBtnSelChg"},
    QLatin1StringView{"TVKSelFLGrp"},
    QLatin1StringView{"TVKCorvaneNVBankChange"},
    QLatin1StringView{"TVKCorvaneNVRemoteBankChange"},
    QLatin1StringView{"TVKCorvaneNVParamBankChange"},
    QLatin1StringView{"TVKCorvaneNVParamBankNameChange"},
    QLatin1StringView{"TVKCorvaneNVRemoteParamBankChange"},
    QLatin1StringView{"TVKCorvaneNVRemoteActionBankChange"},
    QLatin1StringView{"TVKCorvaneNVButtonSelectionChange"},
};

} // namespace note

// Keys of the message bodies exchanged with the background service.
namespace info {

inline const QString KeysetIndex = QStringLiteral("TVKKeysetIndex");
inline const QString LayerIndex = QStringLiteral("TVKLayerIndex");
inline const QString GroupID = QStringLiteral("TVKGroupID");
inline const QString ControlIndex = QStringLiteral("TVKControlIndex");
inline const QString ActionObject = QStringLiteral("TVActionObject");
inline const QString Color = QStringLiteral("TVKColor");
inline const QString OffColor = QStringLiteral("TVKOffColor");
inline const QString Brightness = QStringLiteral("TVKBrightness");
inline const QString JogSens = QStringLiteral("TVKJogSens");
inline const QString PropVal = QStringLiteral("TVKPropVal");

} // namespace info

} // namespace corvane
