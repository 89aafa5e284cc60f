#include "actions/ActionFit.h"

#include "model/TVKControl.h"

#include <QCoreApplication>

namespace corvane {

namespace {

constexpr qint32 kDisplayActionBit = 0x100000;

// The kinds of a control action's high byte.
enum ControlKind
{
    ButtonKind = 1,
    EncoderKind = 2,
    FourWayKind = 3,
    ShuttleKind = 4,
    JogKind = 5,
    FaderKind = 6
};

// The kinds of a display action's bits 8 to 15.
enum DisplayKind
{
    LCDLineKind = 0x00,
    TimecodeKind = 0x02,
    LCDButtonKind = 0x07,
    NVLineKind = 0x11
};

// The low byte of a control action: built-in command 1 … emulation 6.
constexpr int kFirstActionKind = 1;
constexpr int kEmulationKind = 6;

// The LCD line's functions that name a row of the main unit's controls.
constexpr int kEncoderNames = 2;
constexpr int kButtonNames = 6;

// The display functions each display kind has a class for.
bool isDisplayFunction(int displayKind, int function)
{
    switch (displayKind) {
    case LCDLineKind:
        return function == 1 || function == 2 || function == 3 || function == 6 || function == 8;
    case TimecodeKind:
        return function == 3 || function == 8;
    case LCDButtonKind:
        return function == 1 || function == 7 || function == 10;
    case NVLineKind:
        return function == 0;
    default:
        return false;
    }
}

bool displayActionFits(qint32 actionType, int controlType)
{
    const int displayKind = (actionType >> 8) & 0xff;
    const int function = actionType & 0xff;
    if ((actionType & ~0xffff) != kDisplayActionBit || !isDisplayFunction(displayKind, function))
        return false;
    switch (controlType) {
    case ControlType::LCDDisplay:
        return displayKind == LCDLineKind;
    case ControlType::NVLCDDisplay:
        // The NV lines name the NV's own buttons, not the main unit's encoders or buttons.
        return displayKind == NVLineKind || (displayKind == LCDLineKind &&
                                             function != kEncoderNames && function != kButtonNames);
    case ControlType::TimecodeDisplay:
        return displayKind == TimecodeKind;
    case ControlType::LCDButtonDisplay:
        return displayKind == LCDButtonKind;
    default:
        return false;
    }
}

bool controlActionFits(qint32 actionType, int controlType)
{
    const int kind = actionType >> 8;
    const int actionKind = actionType & 0xff;
    if (actionKind < kFirstActionKind || actionKind > kEmulationKind)
        return false;
    const bool emulation = actionKind == kEmulationKind;
    switch (controlType) {
    case ControlType::Button:
    case ControlType::MultiColorButton:
        return kind == ButtonKind;
    case ControlType::Encoder:
        return kind == EncoderKind;
    case ControlType::Fader:
        return emulation ? kind == FaderKind : kind == EncoderKind;
    case ControlType::FourWay:
    case ControlType::Joystick:
        return kind == FourWayKind && !emulation;
    case ControlType::Shuttle:
        return kind == ShuttleKind && !emulation;
    case ControlType::Jog:
        return kind == JogKind;
    default:
        return false;
    }
}

constexpr int kControlTypeCount = 12;

} // namespace

bool actionFitsControlType(qint32 actionType, int controlType)
{
    if (actionType & kDisplayActionBit)
        return ControlType::isDisplayType(controlType) &&
               displayActionFits(actionType, controlType);
    return !ControlType::isDisplayType(controlType) && controlActionFits(actionType, controlType);
}

bool isKnownActionType(qint32 actionType)
{
    return controlTypeOfAction(actionType) >= 0;
}

int controlTypeOfAction(qint32 actionType)
{
    // The first type in code order that takes the action is the one it was made for: the encoder
    // before the fader, the button before the LCD button, the LCD line before the NV line.
    for (int type = 0; type < kControlTypeCount; ++type)
        if (actionFitsControlType(actionType, type))
            return type;
    return -1;
}

QString controlTypeWithArticle(int controlType)
{
    const auto tr = [](const char* text) { return QCoreApplication::translate("ActionFit", text); };
    switch (controlType) {
    case ControlType::Button:
        return tr("a button");
    case ControlType::Encoder:
        return tr("an encoder");
    case ControlType::FourWay:
        return tr("a trackball");
    case ControlType::Shuttle:
        return tr("the shuttle ring");
    case ControlType::Jog:
        return tr("the jog wheel");
    case ControlType::LCDDisplay:
        return tr("a display line");
    case ControlType::TimecodeDisplay:
        return tr("the timecode display");
    case ControlType::Fader:
        return tr("a fader");
    case ControlType::Joystick:
        return tr("a joystick");
    case ControlType::MultiColorButton:
        return tr("an LCD button");
    case ControlType::LCDButtonDisplay:
        return tr("an LCD button’s display");
    case ControlType::NVLCDDisplay:
        return tr("an NV display line");
    default:
        return tr("a control");
    }
}

QString actionFitProblem(qint32 actionType, int controlType)
{
    if (actionFitsControlType(actionType, controlType))
        return {};
    const int madeFor = controlTypeOfAction(actionType);
    if (madeFor < 0)
        return QCoreApplication::translate("ActionFit",
                                           "This version does not know actions of type %1.")
            .arg(actionType);
    return QCoreApplication::translate("ActionFit", "An action made for %1 does not fit %2.")
        .arg(controlTypeWithArticle(madeFor), controlTypeWithArticle(controlType));
}

} // namespace corvane
