#pragma once

#include <QList>
#include <QString>

// Which controls feed a display that shows control names or values.
struct TVKSourceControlRecord
{
    int sourceControlGroup = 0; // model-data group
    int firstSourceControl = 0;
    int numberOfSourceControls = 0;
    int displayWidth = 0;
};

// How many encoders an emulated console display covers and how wide it is.
struct TVKEmulatedDisplayRecord
{
    int numberOfEncoders = 0;
    int displayWidth = 0;
};

// Describes the physical surface to the rest of the program: layers, control and display groups
// in both numberings (model-data groups as stored and sent to the service, on-screen groups as
// drawn by the surface windows), display widths and the fixed vocabularies of the surface family.
//
// This base holds the shared vocabularies and answers every surface-specific query by logging
// that a subclass must answer it; the surface family's subclass gives the real tables.
//
// Out-arguments follow one rule: a conversion writes only what it states it writes, and leaves
// the caller's value as it was otherwise.
class TVK_Constant_Server
{
public:
    TVK_Constant_Server();
    virtual ~TVK_Constant_Server();
    TVK_Constant_Server(const TVK_Constant_Server&) = delete;
    TVK_Constant_Server& operator=(const TVK_Constant_Server&) = delete;

    // The instance most recently made; not owned. Cleared when that instance goes away.
    static TVK_Constant_Server* defaultConstantServer();
    // Lets a test (or a tool that makes its own instance) start from a known state.
    static void setDefaultConstantServer(TVK_Constant_Server* server);

    int numLayers() const { return 4; }

    // How many model-data groups of controls a layer holds.
    virtual int numberOfControlGroups() const { return 0; }
    virtual int numberOfControlsInGroup(int group) const;
    virtual int numberOfDisplaysInGroup(int group) const;
    virtual QString dataModelGroupNameForGroup(int group) const;
    virtual QString groupIconNameForGroup(int group) const;

    // On-screen group and control to model-data group and control index; false when the
    // on-screen group does not exist (outputs untouched).
    virtual bool onscreenGroup(int group, int control, int& dataGroupIndex,
                               int& controlIndex) const;
    // Model-data group and index to on-screen group and control.
    virtual void modelDataGroupID(int group, int controlIndex, int& onscreenGroup,
                                  int& control) const;
    // The controls an on-screen group draws, in its own numbering and in order; its picture
    // shows them as states 1, 2, 3 … (state 0 shows none). Each control of the model belongs to
    // the on-screen group that the model-data-to-screen conversion names. A group that
    // conversion never names draws a model group a second time (the TLW's function keys): it
    // holds every control its own numbering reaches from 0 on.
    QList<int> onscreenControlsInGroup(int onscreenGroup) const;
    virtual bool onscreenDisplayGroup(int group, int control, int& dataDisplayGroupIndex,
                                      int& controlIndex) const;
    virtual void modelDataDisplayGroupID(int group, int controlIndex, int& onscreenDisplayGroup,
                                         int& control) const;

    virtual int onscreenTrackballGroupIDForTrackball(int trackball) const;
    virtual int trackballDataGroupID() const;
    virtual bool onscreenGroupContainsChannelControls(int onscreenGroup) const;
    virtual int lcdDisplayGroupID() const;
    virtual int tcDisplayGroupID() const;
    virtual int idForLCDDisplay(int display, int line) const;
    virtual int idForTimecodeDisplay(int display) const;
    virtual int widthOfDisplay(int display, int group) const;

    // nullptr when the surface has no such records.
    virtual const TVKSourceControlRecord* sourceControlGroupFromGroup(int group, int display) const;
    virtual const TVKSourceControlRecord* sourceButtonGroupFromGroup(int group, int display) const;
    virtual const TVKEmulatedDisplayRecord* emulatedDisplayInfoFromGroup(int group,
                                                                         int display) const;

    virtual int peripheralCount() const;
    virtual QString nibNameForPeripheralAtIndex(int index) const;
    virtual QString lcdButtonOnImageNameAtIndex(int index) const;
    virtual QString lcdButtonOffImageNameAtIndex(int index) const;
    virtual QString lcdButtonSelectedOnImageNameAtIndex(int index) const;
    virtual QString lcdButtonSelectedOffImageNameAtIndex(int index) const;

    // Shared vocabularies. A null QString stands for "no text".
    QString specialModeDescriptor(int index) const;
    QString midiModeDescriptor(int mode) const;
    QString captureModeFormatString(int mode) const;
    QString captureModeShortFormatString(int mode) const;
    QString mouseActionString(int index) const;
    QString buttonEmulationGroupName(int group) const;
    QString encoderEmulationGroupName(int group) const;
    QString buttonEmulationControlName(int group, int control) const;

    static constexpr int kSpecialModeCount = 11;
    static constexpr int kButtonEmulationGroupCount = 22;
    static constexpr int kButtonEmulationControlLimit = 9;
    static constexpr int kEncoderEmulationGroupCount = 3;
    static constexpr int kCaptureModeCount = 8;
};
