#include "surface/Corvane_Constant_Server.h"

#include <array>

namespace {

struct GroupInfo
{
    const char16_t* name;
    int controls;
    const char16_t* icon;
};

const std::array<GroupInfo, Corvane_Constant_Server::kNumberOfControlGroups> kGroups = {{
    {u"M", 5, u"cvn_btn"},
    {u"Transport", 7, u"xport"},
    {u"W", 7, u"cvn_btn"},
    {u"Left Encoders", 6, u"encoder"},
    {u"Right Encoders", 5, u"encoder"},
    {u"F", 8, u"rect_btn"},
    {u"Left Page", 8, u"rect_btn"},
    {u"Bank", 4, u"rect_btn"},
    {u"Right Page", 8, u"rect_btn"},
    {u"R", 3, u"cvn_btn"},
    {u"B", 3, u"cvn_btn"},
    {u"Trackballs", 3, u"tball"},
    {u"TrackballRings", 3, u"tb_ring"},
    {u"Keypad", 16, u"keypad"},
    {u"Cursor", 5, u"vstick"},
    {u"Misc", 2, u"rect_btn"},
    {u"Mutes", 32, u"rect_btn"},
    {u"Solos", 32, u"rect_btn"},
    {u"Aux", 32, u"rect_btn"},
    {u"Select", 32, u"rect_btn"},
    {u"Touch", 32, u"mini_fader_touch"},
    {u"Faders", 32, u"minifdr"},
    {u"Resets", 6, u"corvane_mini_reset"},
    {u"TLW(2) LCD Buttons", 8, u"tlw_mini_lcd"},
    {u"CorvaneNV LCD Buttons", 240, u"tlw_mini_lcd"},
    {u"CorvaneNV Bank Buttons", 10, u"corvanelightedsquare"},
    {u"CorvaneNV F Buttons", 8, u"corvanelightedsquare"},
    // The trailing blank belongs to the stored name.
    {u"CorvaneNV Param Buttons ", 40, u"rect_btn"},
    {u"CorvaneNV Action Buttons", 160, u"rect_btn"},
    {u"TLW2 Encoders", 8, u"tlw2_encoder"},
    {u"TLW2 Encoder Switches", 8, u"mini_fader_touch"},
}};

const std::array<int, Corvane_Constant_Server::kNumberOfDisplayGroups> kDisplaysInGroup = {6, 1, 8,
                                                                                           2, 240};

// On-screen group to model-data group before the special cases. On-screen groups 31..38 are not
// drawn by this family.
const std::array<int, Corvane_Constant_Server::kNumberOfOnscreenGroups> kOnscreenToData = {
    0,  1,  2,  2,  2,  3,  3, 4, 5, 6, 6, 7, 8, 9, 9,  9,  1,  11, 11, 11, 13, 13, 14, 16, 17,
    18, 19, 20, 21, 22, 22, 0, 0, 0, 0, 0, 0, 0, 0, 23, 24, 25, 26, 26, 27, 28, 29, 30, 5};

constexpr int kMiscGroup = 15;
constexpr int kRGroup = 9;
constexpr int kBGroup = 10;
constexpr int kTransportGroup = 1;
constexpr int kTrackballGroup = 11;
constexpr int kTrackballRingGroup = 12;
constexpr int kCursorGroup = 14;

constexpr int kRecordRows = 5;
constexpr int kRecordColumns = 6;

const TVKSourceControlRecord kSourceRecords[kRecordRows][kRecordColumns] = {
    {{4, 0, 5, 40}, {4, 0, 5, 40}, {3, 0, 3, 24}, {3, 0, 3, 24}, {3, 3, 3, 24}, {3, 3, 3, 24}},
    {},
    {},
    {},
    {},
};

const TVKEmulatedDisplayRecord kEmulatedRecords[kRecordRows][kRecordColumns] = {
    {{5, 40}, {5, 40}, {3, 24}, {3, 24}, {3, 24}, {3, 24}},
    {{0, 8}},
    {{8, 8}},
    {{5, 40}, {5, 40}},
    {{8, 8}},
};

bool recordIndexValid(int group, int display)
{
    return group >= 0 && group < kRecordRows && display >= 0 && display < kRecordColumns;
}

} // namespace

int Corvane_Constant_Server::numberOfControlsInGroup(int group) const
{
    if (group < 0 || group >= kNumberOfControlGroups)
        return 0;
    return kGroups[static_cast<size_t>(group)].controls;
}

int Corvane_Constant_Server::numberOfDisplaysInGroup(int group) const
{
    if (group < 0 || group >= kNumberOfDisplayGroups)
        return 0;
    return kDisplaysInGroup[static_cast<size_t>(group)];
}

QString Corvane_Constant_Server::dataModelGroupNameForGroup(int group) const
{
    if (group < 0 || group >= kNumberOfControlGroups)
        return QString();
    return QString::fromUtf16(kGroups[static_cast<size_t>(group)].name);
}

QString Corvane_Constant_Server::groupIconNameForGroup(int group) const
{
    if (group < 0 || group >= kNumberOfControlGroups)
        return QString();
    return QString::fromUtf16(kGroups[static_cast<size_t>(group)].icon);
}

bool Corvane_Constant_Server::onscreenGroup(int group, int control, int& dataGroupIndex,
                                            int& controlIndex) const
{
    if (group < 0 || group >= kNumberOfOnscreenGroups)
        return false;

    dataGroupIndex = kOnscreenToData[static_cast<size_t>(group)];
    controlIndex = control;

    // Clusters that mix controls of two model-data groups, and groups drawn in two clusters.
    switch (group) {
    case 8:
        if (control == 8) {
            dataGroupIndex = kMiscGroup;
            controlIndex = 0;
        }
        break;
    case 11:
        if (control == 4) {
            dataGroupIndex = kMiscGroup;
            controlIndex = 1;
        }
        break;
    case 13:
    case 14:
    case 15:
        dataGroupIndex = (control % 2 == 0) ? kRGroup : kBGroup;
        controlIndex = group - 13;
        break;
    case 16:
        dataGroupIndex = kTransportGroup;
        controlIndex = control + 4;
        break;
    case 17:
    case 18:
    case 19:
        dataGroupIndex = (control % 2 == 0) ? kTrackballRingGroup : kTrackballGroup;
        controlIndex = group - 17;
        break;
    case 22:
        dataGroupIndex = kCursorGroup;
        controlIndex = control - 1;
        break;
    default:
        break;
    }
    return true;
}

void Corvane_Constant_Server::modelDataGroupID(int group, int index, int& onscreen,
                                               int& control) const
{
    control = index;
    switch (group) {
    case 0:
        onscreen = 0;
        break;
    case 1:
        if (index < 5) {
            onscreen = 1;
        } else {
            onscreen = 16;
            control = index - 4;
        }
        break;
    case 2:
        if (index == 0 || index == 6)
            onscreen = 2;
        else if (index == 1 || index == 5)
            onscreen = 3;
        else
            onscreen = 4;
        break;
    case 3:
        onscreen = index < 3 ? 5 : 6;
        break;
    case 4:
        onscreen = 7;
        break;
    case 5:
        onscreen = 8;
        break;
    case 6:
        onscreen = index < 4 ? 9 : 10;
        break;
    case 7:
        onscreen = 11;
        break;
    case 8:
        onscreen = 12;
        break;
    case 9:
    case 10:
        // R and B share three clusters: R on the even control, B on the odd one.
        if (index >= 0 && index < 3)
            onscreen = 13 + index;
        control = group == 9 ? 0 : 1;
        break;
    case 11:
    case 12:
        if (index >= 0 && index < 3)
            onscreen = 17 + index;
        control = group == 11 ? 1 : 2;
        break;
    case 13:
        onscreen = index < 12 ? 20 : 21;
        break;
    case 14:
        onscreen = 22;
        control = index + 1;
        break;
    case 15:
        if (index == 0) {
            onscreen = 8;
            control = 8;
        } else {
            onscreen = 11;
            control = 4;
        }
        break;
    case 16:
    case 17:
    case 18:
    case 19:
    case 20:
    case 21:
        onscreen = group + 7;
        break;
    case 22:
        onscreen = index < 3 ? 29 : 30;
        break;
    case 23:
    case 24:
    case 25:
        onscreen = group + 16;
        break;
    case 26:
        onscreen = index < 4 ? 42 : 43;
        break;
    case 27:
    case 28:
    case 29:
    case 30:
        onscreen = group + 17;
        break;
    default:
        break;
    }
}

bool Corvane_Constant_Server::onscreenDisplayGroup(int group, int control,
                                                   int& dataDisplayGroupIndex,
                                                   int& controlIndex) const
{
    // Display indices are not renumbered: on-screen LCD 1 shows model-data displays 2 and 3.
    controlIndex = control;
    if (group == 3) {
        dataDisplayGroupIndex = tcDisplayGroupID();
    } else if (group == 5) {
        dataDisplayGroupIndex = 2;
    } else if (group == 6) {
        dataDisplayGroupIndex = 3;
    } else if (group >= 7 && group <= 10) {
        dataDisplayGroupIndex = 4;
    } else if (group <= 2) {
        dataDisplayGroupIndex = lcdDisplayGroupID();
    } else {
        return false;
    }
    return true;
}

void Corvane_Constant_Server::modelDataDisplayGroupID(int group, int index, int& onscreen,
                                                      int& control) const
{
    control = index;
    onscreen = 0;
    if (group == lcdDisplayGroupID()) {
        if (index == 2 || index == 3)
            onscreen = 1;
        else if (index == 4 || index == 5)
            onscreen = 2;
    } else if (group == tcDisplayGroupID()) {
        onscreen = 3;
    } else if (group == 4) {
        // The NV windows show one bank of 24 LCD buttons; which bank is not part of the answer.
        control = index % 24;
        onscreen = (index % 24) / 6 + 7;
    } else if (group == 3) {
        onscreen = 6;
    } else if (group == 2) {
        onscreen = 5;
    }
}

int Corvane_Constant_Server::onscreenTrackballGroupIDForTrackball(int trackball) const
{
    return trackball + 17;
}

int Corvane_Constant_Server::trackballDataGroupID() const
{
    return kTrackballGroup;
}

bool Corvane_Constant_Server::onscreenGroupContainsChannelControls(int onscreenGroup) const
{
    return (onscreenGroup >= 23 && onscreenGroup <= 28) || onscreenGroup == 39;
}

int Corvane_Constant_Server::lcdDisplayGroupID() const
{
    return 0;
}

int Corvane_Constant_Server::tcDisplayGroupID() const
{
    return 1;
}

int Corvane_Constant_Server::idForLCDDisplay(int display, int line) const
{
    switch (display) {
    case 0:
        return line;
    case 1:
        return line + 2;
    case 2:
        return line + 4;
    default:
        return 0;
    }
}

int Corvane_Constant_Server::idForTimecodeDisplay(int) const
{
    return 0;
}

int Corvane_Constant_Server::widthOfDisplay(int display, int group) const
{
    switch (group) {
    case 0: {
        static constexpr std::array<int, 6> kLcdWidths = {40, 40, 24, 24, 24, 24};
        if (display < 0 || display >= static_cast<int>(kLcdWidths.size()))
            return 0;
        return kLcdWidths[static_cast<size_t>(display)];
    }
    case 1:
        return 8;
    case 2:
        return 7;
    case 3:
        return 40;
    default:
        return 0;
    }
}

const TVKSourceControlRecord*
Corvane_Constant_Server::sourceControlGroupFromGroup(int group, int display) const
{
    if (!recordIndexValid(group, display))
        return &kSourceRecords[0][0];
    return &kSourceRecords[group][display];
}

const TVKEmulatedDisplayRecord*
Corvane_Constant_Server::emulatedDisplayInfoFromGroup(int group, int display) const
{
    if (!recordIndexValid(group, display))
        return &kEmulatedRecords[0][0];
    return &kEmulatedRecords[group][display];
}

int Corvane_Constant_Server::peripheralCount() const
{
    return 0;
}

QString Corvane_Constant_Server::nibNameForPeripheralAtIndex(int) const
{
    return QString();
}
