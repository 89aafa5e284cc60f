#pragma once

#include <QString>

// Every key the application stores: the entries of the preference store and the keys of the
// configuration's property-list form (model data, keysets, layers, controls and actions), which
// keyset files, the pasteboard and the messages to the background service share. These texts are
// the stored format, so they never change; always name a key through these constants, so that a
// misspelt key is a compile error rather than a value silently read as its default.
namespace corvane::key {

// The preference store's own entries beside the global settings: the whole configuration, the
// epoch of the recovery journal it already holds, and the windows' frames and open states and what
// the pictures show.
inline const QString ModelData = QStringLiteral("TVKModelData");
inline const QString JournalEpoch = QStringLiteral("TVKJournalEpoch");
inline const QString WindowFrames = QStringLiteral("CorvaneWindowFrames");
inline const QString OpenWindows = QStringLiteral("CorvaneOpenWindows");
// Whether the pictures show what each control does (View → Show Assignments).
inline const QString ShowAssignments = QStringLiteral("CorvaneShowAssignments");

// The model data's keys. The Ethernet settings, the stand-alone expander switches and the
// hardware style are also global settings of the preference store under the same keys.
inline const QString IPAdr = QStringLiteral("TVKIPAdr");
inline const QString EnetPrt = QStringLiteral("TVKEnetPrt");
inline const QString StandaloneTL = QStringLiteral("TVKStandaloneTL");
inline const QString StandaloneTLW = QStringLiteral("TVKStandaloneTLW");
inline const QString StandaloneTLW2 = QStringLiteral("TVKStandaloneTLW2");
inline const QString StandaloneNV = QStringLiteral("TVKStandaloneNV");
inline const QString StandaloneDZ = QStringLiteral("TVKStandaloneDZ");
inline const QString HardwareStyle = QStringLiteral("TVKHardwareStyle");
inline const QString OneTchDflt = QStringLiteral("TVKOneTchDflt");
inline const QString HasOwnerKS = QStringLiteral("TVKHasOwnerKS");
inline const QString OwnKSBID = QStringLiteral("TVKOwnKSBID");
inline const QString OwnKSSig = QStringLiteral("TVKOwnKSSig");
inline const QString Keysets = QStringLiteral("TVKKeysets");

// A keyset's keys; "TVKEnetPrt" is also a keyset key (its own port).
inline const QString Name = QStringLiteral("TVKName");
inline const QString Sig = QStringLiteral("TVKSig");
inline const QString AppBID = QStringLiteral("TVKAppBID");
inline const QString AppTID = QStringLiteral("TVKAppTID");
inline const QString AppIcon = QStringLiteral("TVKAppIcon");
inline const QString EMode = QStringLiteral("TVKEMode");
inline const QString OneTchRcd = QStringLiteral("TVKOneTchRcd");
inline const QString ConViaEnet = QStringLiteral("TVKConViaEnet");
inline const QString Lock = QStringLiteral("TVKLock");
inline const QString Layers = QStringLiteral("TVKLayers");
inline const QString RvrsRBBtns = QStringLiteral("RvrsRBBtns");

// A layer's keys, and those of an NV group dictionary ("TVKName", "TVKGrpMem", "TVKGrpClrs").
inline const QString Groups = QStringLiteral("TVKGroups");
inline const QString Displays = QStringLiteral("TVKDisplays");
inline const QString NVButtonGroups = QStringLiteral("TVKNVButtonGroups");
inline const QString NVGroupAssigns = QStringLiteral("TVKNVGroupAssigns");
inline const QString GrpMem = QStringLiteral("TVKGrpMem");
inline const QString GrpClrs = QStringLiteral("TVKGrpClrs");

// A control's keys; "TVKName" is a control key too.
inline const QString UName = QStringLiteral("TVKUName");
inline const QString Type = QStringLiteral("TVKType");
inline const QString Action = QStringLiteral("TVKAction");
inline const QString Latch = QStringLiteral("TVKLatch");
inline const QString Color = QStringLiteral("TVKColor");
inline const QString OffColor = QStringLiteral("TVKOffColor");
inline const QString Brightness = QStringLiteral("TVKBrightness");
inline const QString JogSens = QStringLiteral("TVKJogSens");
inline const QString JoySens = QStringLiteral("TVKJoySens");
inline const QString NVButtonGroup = QStringLiteral("TVKNVButtonGroup");
inline const QString FLButtonGroup = QStringLiteral("TVKFLButtonGroup");

// Action keys. The built-in command action keeps the command catalogue's own keys without the
// prefix ("GroupName", "CommandName", "Mode", "Proc"); the display actions that name a row of
// controls keep their source under "TVKLayerIndex", "TVKGroupID", "TVKControlIndex" and
// "TVKCount", and the width of a name under "Width".
inline const QString ActnType = QStringLiteral("TVKActnType");
inline const QString SpMode = QStringLiteral("TVKSpMode");
inline const QString LCDBtnList = QStringLiteral("TVKLCDBtnList");
inline const QString LCDBtnDsplList = QStringLiteral("TVKLCDBtnDsplList");
inline const QString KeySeq = QStringLiteral("TVKKeySeq");
inline const QString SMultSeq = QStringLiteral("TVKSMultSeq");
inline const QString Char = QStringLiteral("TVKChar");
inline const QString KCode = QStringLiteral("TVKKCode");
inline const QString Mods = QStringLiteral("TVKMods");
inline const QString Delay = QStringLiteral("TVKDelay");
inline const QString Rpt = QStringLiteral("TVKRpt");
inline const QString MMode = QStringLiteral("TVKMMode");
inline const QString MMsg = QStringLiteral("TVKMMsg");
inline const QString MMsg2 = QStringLiteral("TVKMMsg2");
inline const QString FdrRes = QStringLiteral("TVKFdrRes");
inline const QString MOp = QStringLiteral("TVKMOp");
inline const QString LocType = QStringLiteral("TVKLocType");
inline const QString Loc = QStringLiteral("TVKLoc");
inline const QString Partial = QStringLiteral("TVKPartial");
inline const QString WName = QStringLiteral("TVKWName");
inline const QString EmuGrpIdx = QStringLiteral("TVKEmuGrpIdx");
inline const QString EmuCtlIdx = QStringLiteral("TVKEmuCtlIdx");
inline const QString EmuNamedCtl = QStringLiteral("TVKEmuNamedCtl");
inline const QString EmuOnlyCtl = QStringLiteral("TVKEmuOnlyCtl");
inline const QString JogSpd = QStringLiteral("TVKJogSpd");
inline const QString CmdGrpIdx = QStringLiteral("TVKCmdGrpIdx");
inline const QString CmdIdx = QStringLiteral("TVKCmdIdx");
inline const QString CommandGroupName = QStringLiteral("GroupName");
inline const QString CommandName = QStringLiteral("CommandName");
inline const QString CommandMode = QStringLiteral("Mode");
inline const QString CommandProc = QStringLiteral("Proc");
inline const QString DisplayTxt = QStringLiteral("TVKDisplayTxt");
inline const QString DisplayLnCt = QStringLiteral("TVKDisplayLnCt");
inline const QString DisplayChPrLn = QStringLiteral("TVKDisplayChPrLn");
inline const QString DisplaySrc = QStringLiteral("TVKDisplaySrc");
inline const QString IconIndex = QStringLiteral("TVKIconIndex");
inline const QString Mode = QStringLiteral("TVKMode");
inline const QString LayerIndex = QStringLiteral("TVKLayerIndex");
inline const QString GroupID = QStringLiteral("TVKGroupID");
inline const QString ControlIndex = QStringLiteral("TVKControlIndex");
inline const QString Count = QStringLiteral("TVKCount");
inline const QString Width = QStringLiteral("Width");

} // namespace corvane::key
