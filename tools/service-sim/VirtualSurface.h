#pragma once

#include "surface/Corvane_Constant_Server.h"
#include "views/CorvanePictures.h"

#include <QTabWidget>
#include <cstdint>
#include <vector>

class CorvaneSurfaceView;
class ServiceSimulator;
class TVKControl;
class TVKMultiStateButton;

// The surface without hardware: the same pictures as the application's windows, one tab per
// unit. Pressing a control touches it (the service tells the application "TCtl" 1, and 0 on
// release), and the control the application selects lights here, from the "TCtl" it sends back.
class VirtualSurface : public QTabWidget
{
    Q_OBJECT
public:
    explicit VirtualSurface(ServiceSimulator& simulator);
    // Shows the window on the screen, as large as the units where there is room.
    void showOnScreen();

    // "click <unit> <x> <y>": a press and release at a point of a unit's picture, as the mouse
    // gives them. "tooltip <unit> <x> <y>": the tooltip at that point, as a "tooltip" line.
    // "window": where the window lies and how far the unit shown scrolls.
    bool runCommand(const QStringList& words);
    // The tooltip of the control or display at a point of a unit's picture, in the keyset and
    // layer the service plays; empty off every control.
    QString toolTipAt(const CorvaneSurfaceView& surface, QPoint point) const;
    // Lights the control (model-data group and index) and darkens the rest; the NV shows the
    // bank of the control lit.
    void light(std::uint32_t group, std::uint32_t control);
    const std::vector<CorvaneSurfaceView*>& surfaces() const { return m_surfaces; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The control or display under a point of a picture or display view of a unit.
    TVKControl* controlUnder(QWidget* target, QPoint local) const;
    // The NV shows the bank of a key touched or lit there.
    void followNVBanks(int onscreenGroup, int onscreenControl);

    ServiceSimulator& m_simulator;
    Corvane_Constant_Server m_constants;
    std::vector<CorvaneSurfaceView*> m_surfaces;
    CorvaneNVBanks m_nvBanks;
    // What a press touched, so that the release lets go of the same control.
    int m_pressedGroup = -1;
    int m_pressedControl = -1;
};
