#pragma once

#include "actions/editors/EditorLogic.h"
#include "core/NotificationCenter.h"
#include "model/EmulationMode.h"

#include <QtGlobal>

class TVKActionContainer;
class TVKControl;

namespace corvane {

// The editor of what the emulated console sends for a display: for a character display a source
// (a line of the console's display, or its pot values), for the timecode display a box.
class DisplayEmulationEditor : public EditorLogic
{
public:
    // The source pop-up's "nothing" item.
    static constexpr int kNoSource = -1;

    // actionType: the LCD or the timecode display emulation. Follows the keyset's emulation mode
    // ("TVKEmulChg").
    DisplayEmulationEditor(TVKActionContainer& container, qint32 actionType);

    bool isTimecode() const;

    void updateForNewAction();
    // The source pop-up (LCD): kNoSource removes the action; another source changes the held
    // action in place or puts a new one for the display into the container.
    bool setSource(int source, TVKControl* display);
    // The timecode box.
    bool setTimecodeShown(bool shown, TVKControl* display);

    int source() const { return m_source; }
    bool timecodeShown() const { return m_timecodeShown; }
    // The selected keyset's emulation mode, 0 without emulation.
    EmulationMode emulationMode() const { return m_emulationMode; }

private:
    TVKActionContainer& m_container;
    qint32 m_actionType;
    int m_source = kNoSource;
    bool m_timecodeShown = false;
    EmulationMode m_emulationMode = EmulationMode::None;
    NotificationCenter::Observation m_emulationChangeObservation;
};

} // namespace corvane
