#pragma once

#include "surface/TVK_Constant_Server.h"

// The surface family's answers: the main unit with its TL, TLW, TLW2, NV and DZ expanders.
// Every answer is a fixed table; the surface windows call the mappings for every control drawn.
class Corvane_Constant_Server final : public TVK_Constant_Server
{
public:
    static constexpr int kNumberOfControlGroups = 31;
    static constexpr int kNumberOfDisplayGroups = 5;
    static constexpr int kNumberOfOnscreenGroups = 49;
    static constexpr int kNumberOfOnscreenDisplayGroups = 11;

    int numberOfControlGroups() const override { return kNumberOfControlGroups; }
    int numberOfControlsInGroup(int group) const override;
    int numberOfDisplaysInGroup(int group) const override;
    QString dataModelGroupNameForGroup(int group) const override;
    QString groupIconNameForGroup(int group) const override;

    bool onscreenGroup(int group, int control, int& dataGroupIndex,
                       int& controlIndex) const override;
    void modelDataGroupID(int group, int controlIndex, int& onscreenGroup,
                          int& control) const override;
    bool onscreenDisplayGroup(int group, int control, int& dataDisplayGroupIndex,
                              int& controlIndex) const override;
    void modelDataDisplayGroupID(int group, int controlIndex, int& onscreenDisplayGroup,
                                 int& control) const override;

    int onscreenTrackballGroupIDForTrackball(int trackball) const override;
    int trackballDataGroupID() const override;
    bool onscreenGroupContainsChannelControls(int onscreenGroup) const override;
    int lcdDisplayGroupID() const override;
    int tcDisplayGroupID() const override;
    int idForLCDDisplay(int display, int line) const override;
    int idForTimecodeDisplay(int display) const override;
    int widthOfDisplay(int display, int group) const override;

    const TVKSourceControlRecord* sourceControlGroupFromGroup(int group,
                                                              int display) const override;
    const TVKEmulatedDisplayRecord* emulatedDisplayInfoFromGroup(int group,
                                                                 int display) const override;

    int peripheralCount() const override;
    QString nibNameForPeripheralAtIndex(int index) const override;
};
