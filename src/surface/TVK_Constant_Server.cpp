#include "surface/TVK_Constant_Server.h"

#include "core/Log.h"

#include <algorithm>
#include <array>

namespace {

TVK_Constant_Server* g_defaultConstantServer = nullptr;

const std::array<const char16_t*, TVK_Constant_Server::kSpecialModeCount> kSpecialModes = {
    u"Undefined",
    u"Developer Mode",
    u"Trackball Sensitivity",
    u"Reserved",
    u"Layer 1 Selector",
    u"Layer 2 Selector",
    u"Layer 3 Selector",
    u"Layer 4 Selector",
    u"Raw Ethernet",
    u"Show/Hide Button Labels",
    u"Select Layers with Knob",
};

const std::array<const char16_t*, TVK_Constant_Server::kCaptureModeCount> kCaptureFormats = {
    u"The mouse pointer will not be repositioned before clicking.",
    u"Move mouse pointer to %.0f, %.0f from top left of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f, %.0f from top right of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f from top, %.0f%% of width of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f, %.0f from bottom left of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f, %.0f from bottom right of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f from bottom, %.0f%% of width of window \"%@\" before clicking",
    u"Move mouse pointer to %.0f, %.0f from top left of %@ before clicking",
};

const std::array<const char16_t*, TVK_Constant_Server::kCaptureModeCount> kCaptureShortFormats = {
    u"%@",
    u"%@ at %.0f, %.0f from top left of \"%@\"",
    u"%@ at %.0f, %.0f from top right of \"%@\"",
    u"%@ at %.0f from top, %.0f%% of width of \"%@\"",
    u"%@ at %.0f, %.0f from bottom left of \"%@\"",
    u"%@ at %.0f, %.0f from bottom right of \"%@\"",
    u"%@ at %.0f from bottom, %.0f%% of width of \"%@\"",
    // The window-relative short text is shared with mode 1 on purpose.
    u"%@ at %.0f, %.0f from top left of \"%@\"",
};

// Index 0 is the empty text; index 10 is a valid slot that carries no text.
const std::array<const char16_t*, 11> kMouseActions = {
    u"",
    u"Click",
    u"Horizontal Move",
    u"Vertical Move",
    u"Horizontal Drag",
    u"Vertical Drag",
    u"Horizontal Scroll Wheel",
    u"Vertical Scroll Wheel",
    u"360 Move",
    u"360 Drag",
    nullptr,
};

const std::array<const char16_t*, TVK_Constant_Server::kEncoderEmulationGroupCount>
    kEncoderEmulationGroups = {u"pot", u"fader", u"display scroll"};

struct ButtonEmulationGroup
{
    const char16_t* name;
    std::array<const char16_t*, TVK_Constant_Server::kButtonEmulationControlLimit> controls;
};

const std::array<ButtonEmulationGroup, TVK_Constant_Server::kButtonEmulationGroupCount>
    kButtonEmulationGroups = {{
        {u"transport", {u"rewind", u"fast forward", u"stop", u"play", u"record"}},
        {u"fkey", {}},
        {u"cursor", {u"up", u"down", u"left", u"right"}},
        {u"bank_change", {u"bank left", u"bank right", u"channel left", u"channel right"}},
        {u"assignment", {u"track", u"send", u"pan/surround", u"plug in", u"eq", u"instrument"}},
        {u"utilities", {u"save", u"undo", u"cancel", u"enter"}},
        {u"group", {}},
        {u"smpte/beats", {}},
        {u"flip", {}},
        {u"global view",
         {u"global view on/off", u"midi tracks", u"inputs", u"audio tracks", u"audio instrument",
          u"aux", u"busses", u"output", u"user"}},
        {u"name/value", {}},
        {u"modifiers", {u"shift", u"option", u"control", u"command"}},
        {u"automation", {u"read/off", u"write", u"trim", u"touch", u"latch"}},
        {u"user switch", {u"a", u"b"}},
        {u"miscellaneous",
         {u"marker", u"nudge", u"cycle", u"drop", u"replace", u"click", u"solo", u"zoom",
          u"scrub"}},
        {u"record/ready", {}},
        {u"solo", {}},
        {u"mute", {}},
        {u"select", {}},
        {u"pot switch", {}},
        {u"touch sensor", {}},
        {u"wheel mode", {u"scrub", u"shuttle"}},
    }};

QString textOrNone(const char16_t* text)
{
    return text ? QString::fromUtf16(text) : QString();
}

} // namespace

TVK_Constant_Server::TVK_Constant_Server()
{
    g_defaultConstantServer = this;
}

TVK_Constant_Server::~TVK_Constant_Server()
{
    if (g_defaultConstantServer == this)
        g_defaultConstantServer = nullptr;
}

TVK_Constant_Server* TVK_Constant_Server::defaultConstantServer()
{
    return g_defaultConstantServer;
}

void TVK_Constant_Server::setDefaultConstantServer(TVK_Constant_Server* server)
{
    g_defaultConstantServer = server;
}

int TVK_Constant_Server::numberOfControlsInGroup(int) const
{
    corvane::log(
        QStringLiteral("TVK_Constant_Server subclasses MUST override numberOfControlsInGroup!"));
    return 0;
}

QList<int> TVK_Constant_Server::onscreenControlsInGroup(int drawn) const
{
    QList<int> controls;
    for (int group = 0; group < numberOfControlGroups(); ++group) {
        for (int index = 0; index < numberOfControlsInGroup(group); ++index) {
            int drawnIn = -1;
            int control = 0;
            modelDataGroupID(group, index, drawnIn, control);
            if (drawnIn == drawn)
                controls.append(control);
        }
    }
    if (!controls.isEmpty()) {
        std::sort(controls.begin(), controls.end());
        return controls;
    }
    // A second drawing: the controls its numbering reaches, up to the first that does not exist.
    int first = -1;
    for (int control = 0;; ++control) {
        int group = 0;
        int index = 0;
        if (!onscreenGroup(drawn, control, group, index) || index < 0 ||
            index >= numberOfControlsInGroup(group) || (first >= 0 && group != first))
            break;
        first = group;
        controls.append(control);
    }
    return controls;
}

int TVK_Constant_Server::numberOfDisplaysInGroup(int) const
{
    corvane::log(
        QStringLiteral("TVK_Constant_Server subclasses MUST override numberOfDisplaysInGroup!"));
    return 0;
}

QString TVK_Constant_Server::dataModelGroupNameForGroup(int) const
{
    corvane::log(QStringLiteral("override dataModelGroupNameForGroup!!!"));
    return QString();
}

QString TVK_Constant_Server::groupIconNameForGroup(int) const
{
    corvane::log(QStringLiteral("override groupIconNameForGroup!!!"));
    return QString();
}

bool TVK_Constant_Server::onscreenGroup(int, int, int&, int&) const
{
    corvane::log(
        QStringLiteral("override onscreenGroup andControl toDataGroupIndex andControlIndex!!!"));
    return false;
}

void TVK_Constant_Server::modelDataGroupID(int, int, int&, int&) const
{
    corvane::log(
        QStringLiteral("override modelDataGroupID andControlIndex toOnscreenGroup andControl!!!"));
}

bool TVK_Constant_Server::onscreenDisplayGroup(int, int, int&, int&) const
{
    corvane::log(QStringLiteral("TVK_Constant_Server subclasses MUST override onscreenDisplayGroup "
                                "if control surface has a display!"));
    return false;
}

void TVK_Constant_Server::modelDataDisplayGroupID(int, int, int&, int&) const
{
    corvane::log(QStringLiteral("TVK_Constant_Server subclasses MUST override "
                                "modelDataDisplayGroupID if control surface has a display!"));
}

int TVK_Constant_Server::onscreenTrackballGroupIDForTrackball(int) const
{
    corvane::log(QStringLiteral("override onscreenTrackballGroupIDForTrackball!!!"));
    return 0;
}

int TVK_Constant_Server::trackballDataGroupID() const
{
    corvane::log(QStringLiteral("override trackballDataGroupID!!!"));
    return 0;
}

bool TVK_Constant_Server::onscreenGroupContainsChannelControls(int) const
{
    corvane::log(QStringLiteral("override onscreenGroupContainsChannelControls!!!"));
    return false;
}

int TVK_Constant_Server::lcdDisplayGroupID() const
{
    corvane::log(QStringLiteral("override lcdDisplayGroupID!!!"));
    return 0;
}

int TVK_Constant_Server::tcDisplayGroupID() const
{
    corvane::log(QStringLiteral("override tcDisplayGroupID!!!"));
    return 0;
}

int TVK_Constant_Server::idForLCDDisplay(int, int) const
{
    corvane::log(QStringLiteral("override idForDisplay:line:!!!"));
    return 0;
}

int TVK_Constant_Server::idForTimecodeDisplay(int) const
{
    corvane::log(QStringLiteral("override idForDisplay:line:!!!"));
    return 0;
}

int TVK_Constant_Server::widthOfDisplay(int, int) const
{
    return 0;
}

const TVKSourceControlRecord* TVK_Constant_Server::sourceControlGroupFromGroup(int, int) const
{
    // The text keeps the query's older name.
    corvane::log(QStringLiteral("override encoderGroupFromGroup andDisplay!!!"));
    return nullptr;
}

const TVKSourceControlRecord* TVK_Constant_Server::sourceButtonGroupFromGroup(int, int) const
{
    corvane::log(QStringLiteral("override sourceButtonGroupFromGroup andDisplay!!!"));
    return nullptr;
}

const TVKEmulatedDisplayRecord* TVK_Constant_Server::emulatedDisplayInfoFromGroup(int, int) const
{
    corvane::log(QStringLiteral("override encoderGroupFromGroup andDisplay!!!"));
    return nullptr;
}

int TVK_Constant_Server::peripheralCount() const
{
    corvane::log(QStringLiteral("override peripheralCount!!!"));
    return 0;
}

QString TVK_Constant_Server::nibNameForPeripheralAtIndex(int) const
{
    corvane::log(QStringLiteral("override nibNameForPeripheralAtIndex!!!"));
    return QString();
}

QString TVK_Constant_Server::lcdButtonOnImageNameAtIndex(int) const
{
    corvane::log(QStringLiteral("override lcdButtonOnImageNameAtIndex!!!"));
    return QString();
}

QString TVK_Constant_Server::lcdButtonOffImageNameAtIndex(int) const
{
    corvane::log(QStringLiteral("override lcdButtonOffImageNameAtIndex!!!"));
    return QString();
}

QString TVK_Constant_Server::lcdButtonSelectedOnImageNameAtIndex(int) const
{
    corvane::log(QStringLiteral("override lcdButtonSelectedOnImageNameAtIndex!!!"));
    return QString();
}

QString TVK_Constant_Server::lcdButtonSelectedOffImageNameAtIndex(int) const
{
    corvane::log(QStringLiteral("override lcdButtonSelectedOffImageNameAtIndex!!!"));
    return QString();
}

QString TVK_Constant_Server::specialModeDescriptor(int index) const
{
    if (index < 0 || index >= kSpecialModeCount)
        return QString();
    return QString::fromUtf16(kSpecialModes[static_cast<size_t>(index)]);
}

QString TVK_Constant_Server::midiModeDescriptor(int mode) const
{
    switch (mode) {
    case 2:
        return QStringLiteral("Custom MIDI");
    case 3:
        return QStringLiteral("Horizontal");
    case 4:
        return QStringLiteral("Vertical");
    default:
        return QStringLiteral("Native MIDI");
    }
}

QString TVK_Constant_Server::captureModeFormatString(int mode) const
{
    if (mode < 0 || mode >= kCaptureModeCount)
        mode = 0;
    return QString::fromUtf16(kCaptureFormats[static_cast<size_t>(mode)]);
}

QString TVK_Constant_Server::captureModeShortFormatString(int mode) const
{
    if (mode < 0 || mode >= kCaptureModeCount)
        mode = 0;
    return QString::fromUtf16(kCaptureShortFormats[static_cast<size_t>(mode)]);
}

QString TVK_Constant_Server::mouseActionString(int index) const
{
    if (index < 0 || index >= static_cast<int>(kMouseActions.size()))
        index = 0;
    return textOrNone(kMouseActions[static_cast<size_t>(index)]);
}

QString TVK_Constant_Server::buttonEmulationGroupName(int group) const
{
    if (group < 0 || group >= kButtonEmulationGroupCount)
        return QString();
    return QString::fromUtf16(kButtonEmulationGroups[static_cast<size_t>(group)].name);
}

QString TVK_Constant_Server::encoderEmulationGroupName(int group) const
{
    if (group < 0 || group >= kEncoderEmulationGroupCount)
        return QString();
    return QString::fromUtf16(kEncoderEmulationGroups[static_cast<size_t>(group)]);
}

QString TVK_Constant_Server::buttonEmulationControlName(int group, int control) const
{
    if (group < 0 || group >= kButtonEmulationGroupCount || control < 0 ||
        control >= kButtonEmulationControlLimit)
        return QString();
    return textOrNone(
        kButtonEmulationGroups[static_cast<size_t>(group)].controls[static_cast<size_t>(control)]);
}
