#pragma once

#include "ControllerFixture.h"
#include "views/CorvaneViews.h"

#include <QJsonObject>
#include <memory>
#include <vector>

class CorvaneSurfaceView;
class TVKControl;
class TVKMultiStateButton;

namespace corvane::test {

// The whole application: the real controller and windows against the real simulated service,
// with only the modal dialogs scripted.
class ViewsTest : public ControllerTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts the service and the application as the program does; waits for the connection.
    CorvaneViews& startApplication();
    CorvaneSurfaceView& mainSurface() const;
    TVKMultiStateButton& button(const CorvaneSurfaceView& surface, qint64 tag) const;
    // A point inside control k's outline, in the button.
    QPoint insideControl(const TVKMultiStateButton& button, qint64 k) const;
    // Clicks as the user does: press and release at a point of the surface, delivered to
    // whatever widget lies there.
    void clickSurface(CorvaneSurfaceView& surface, QPoint point);
    // Selects the first control (or display) of a control type in the selected layer as a touch
    // on the surface (a click on a display) does; none when the surface has no such control.
    TVKControl* selectFirstOfType(int type);
    // Lets the windows draw their next frame: they follow a selection or an edit there, not
    // inside its notice, so a step taken without the event loop waits for it.
    void nextFrame();
    // Puts the shipped built-in command catalogue where the editors read it, as the installer
    // does; call before the application starts.
    void installCatalogue();

    std::unique_ptr<CorvaneViews> app;
};

// The four words of a "TCtl" line: group, control, axis, value.
std::vector<qint64> words(const QJsonObject& line);

} // namespace corvane::test
