#pragma once

#include <QString>

// The vocabulary of the notification centre: every notification name the application posts or
// observes, and every user-info key its notifications carry. Message bodies to the background
// service use the same keys for the same values. Always name them through these constants, so
// that a misspelt name is a compile error rather than a notification nobody receives.
namespace corvane {

namespace note {

inline const QString SelectionChange = QStringLiteral("TVKSelectionChange");
inline const QString DisplaySelectionChange = QStringLiteral("TVKDisplaySelectionChange");
inline const QString RemoteSelectionChange = QStringLiteral("TVKRemoteSelectionChange");
inline const QString RemoteDisplaySelectionChange =
    QStringLiteral("TVKRemoteDisplaySelectionChange");
inline const QString SelectedGroupChange = QStringLiteral("TVKSelectedGroupChange");
inline const QString SelectedLayerChange = QStringLiteral("TVKSelectedLayerChange");
inline const QString SelectedKeysetChange = QStringLiteral("TVKSelectedKeysetChange");
inline const QString RemoteLayerChange = QStringLiteral("TVKRemoteLayerChange");
inline const QString KeysetCountChange = QStringLiteral("TVKKeysetCountChange");
inline const QString KeysetContentChange = QStringLiteral("TVKKeysetContentChange");
inline const QString LockStateChange = QStringLiteral("TVKLockStateChange");
inline const QString UserNameChange = QStringLiteral("TVKUserNameChange");
inline const QString DisplayUserNameChange = QStringLiteral("TVKDisplayUserNameChange");
inline const QString LatchChange = QStringLiteral("TVKLatchChange");
inline const QString ColorChange = QStringLiteral("TVKColorChange");
inline const QString OffColorChange = QStringLiteral("TVKOffColorChange");
inline const QString BrightnessChange = QStringLiteral("TVKBrightnessChange");
inline const QString JogSensChange = QStringLiteral("TVKJogSensChange");
inline const QString JoySensChange = QStringLiteral("TVKJoySensChange");
inline const QString InsertEditedAction = QStringLiteral("TVKInsertEditedAction");
inline const QString DeleteAction = QStringLiteral("TVKDeleteAction");
inline const QString InsertEditedDisplayAction = QStringLiteral("TVKInsertEditedDisplayAction");
inline const QString DeleteDisplayAction = QStringLiteral("TVKDeleteDisplayAction");
inline const QString ShowUserNameChange = QStringLiteral("TVKShowUserNameChange");
inline const QString ControlPropertyChange = QStringLiteral("TVKControlPropertyChange");
inline const QString DispColorChange = QStringLiteral("TVKDispColorChange");
inline const QString DispOffColorChange = QStringLiteral("TVKDispOffColorChange");
inline const QString UpdateKSum = QStringLiteral("TVKUpdateKSum");
inline const QString InspUpdate = QStringLiteral("TVKInspUpdate");
inline const QString StartCapture = QStringLiteral("TVKStartCapture");
inline const QString EndCapture = QStringLiteral("TVKEndCapture");
inline const QString EmulChg = QStringLiteral("TVKEmulChg");
inline const QString HdwStyChg = QStringLiteral("TVKHdwStyChg");
inline const QString ControlActionChange = QStringLiteral("TVKControlActionChange");
inline const QString NewActionSelected = QStringLiteral("TVKNewActionSelected");
inline const QString ReflectActionEdit = QStringLiteral("TVKReflectActionEdit");
inline const QString UpdateActionDescrip = QStringLiteral("TVKUpdateActionDescrip");
inline const QString ModsChg = QStringLiteral("TVKModsChg");
inline const QString BankChange = QStringLiteral("TVKBankChange");
inline const QString FrameletBankChange = QStringLiteral("TVKFrameletBankChange");
inline const QString RemoteFletBankChange = QStringLiteral("TVKRemoteFletBankChange");
inline const QString FrameletParamBankChange = QStringLiteral("TVKFrameletParamBankChange");
inline const QString FrameletParmBankNameChange = QStringLiteral("TVKFrameletParmBankNameChange");
inline const QString RemoteFletParamBankChange = QStringLiteral("TVKRemoteFletParamBankChange");
inline const QString RemoteFletActBankChange = QStringLiteral("TVKRemoteFletActBankChange");
inline const QString FLBtnSelChg = QStringLiteral("TVKFLBtnSelChg");
inline const QString SelFLGrp = QStringLiteral("TVKSelFLGrp");
inline const QString CorvaneNVBankChange = QStringLiteral("TVKCorvaneNVBankChange");
inline const QString CorvaneNVRemoteBankChange = QStringLiteral("TVKCorvaneNVRemoteBankChange");
inline const QString CorvaneNVParamBankChange = QStringLiteral("TVKCorvaneNVParamBankChange");
inline const QString CorvaneNVParamBankNameChange =
    QStringLiteral("TVKCorvaneNVParamBankNameChange");
inline const QString CorvaneNVRemoteParamBankChange =
    QStringLiteral("TVKCorvaneNVRemoteParamBankChange");
inline const QString CorvaneNVRemoteActionBankChange =
    QStringLiteral("TVKCorvaneNVRemoteActionBankChange");
inline const QString CorvaneNVButtonSelectionChange =
    QStringLiteral("TVKCorvaneNVButtonSelectionChange");
inline const QString CorvaneNVSelectGroup = QStringLiteral("TVKCorvaneNVSelectGroup");

} // namespace note

namespace info {

inline const QString KeysetIndex = QStringLiteral("TVKKeysetIndex");
inline const QString LayerIndex = QStringLiteral("TVKLayerIndex");
inline const QString GroupID = QStringLiteral("TVKGroupID");
inline const QString Lock = QStringLiteral("TVKLock");
inline const QString ControlIndex = QStringLiteral("TVKControlIndex");
inline const QString DisplayIndex = QStringLiteral("TVKDisplayIndex");
inline const QString Bank = QStringLiteral("TVKBank");
inline const QString ControlObject = QStringLiteral("TVKControlObject");
inline const QString ActionObject = QStringLiteral("TVActionObject");
inline const QString Count = QStringLiteral("TVKCount");
inline const QString ActionContainer = QStringLiteral("TVActionContainer");
inline const QString ObjectType = QStringLiteral("TVKObjectType");
inline const QString String = QStringLiteral("TVKString");
inline const QString BOOL = QStringLiteral("TVKBOOL");
inline const QString Color = QStringLiteral("TVKColor");
inline const QString ColorIndex = QStringLiteral("TVKColorIndex");
inline const QString OffColor = QStringLiteral("TVKOffColor");
inline const QString Brightness = QStringLiteral("TVKBrightness");
inline const QString Int = QStringLiteral("TVKInt");
inline const QString Float = QStringLiteral("TVKFloat");
inline const QString CopyToLayers = QStringLiteral("TVKCopyToLayers");
inline const QString JogSens = QStringLiteral("TVKJogSens");
inline const QString JoySens = QStringLiteral("TVKJoySens");
inline const QString PropVal = QStringLiteral("TVKPropVal");
inline const QString InsPos = QStringLiteral("TVKInsPos");

} // namespace info

} // namespace corvane
