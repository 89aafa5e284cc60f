#pragma once

#include "ControllerFixture.h"
#include "views/CorvaneViews.h"

#include <QJsonObject>
#include <memory>
#include <vector>

class CorvaneSurfaceView;
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

    std::unique_ptr<CorvaneViews> app;
};

// The four words of a "TCtl" line: group, control, axis, value.
std::vector<qint64> words(const QJsonObject& line);

} // namespace corvane::test
