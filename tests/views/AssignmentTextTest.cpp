// What a control does, in the desktop's words, where the user looks for it: the main window's
// status line and the tooltips of the pictures, both following every edit, undo and layer.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/editors/KeyEventTranslator.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMultiStateButton.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

using namespace corvane;
using namespace corvane::test;

namespace {

class AssignmentTextTest : public ViewsTest
{
protected:
    // The tooltip of the main window's picture over a control of the model, in plain text.
    QString toolTipOver(const TVKControl& control)
    {
        for (TVKMultiStateButton* picture : mainSurface().buttons()) {
            const qint64 onscreen =
                picture->controlForModelControl(control.groupID(), control.index());
            if (onscreen < 0)
                continue;
            const QPoint point = insideControl(*picture, picture->imageIndexForControl(onscreen));
            QHelpEvent event(QEvent::ToolTip, point, picture->mapToGlobal(point));
            QCoreApplication::sendEvent(picture, &event);
            if (!QToolTip::isVisible())
                return QString();
            QTextDocument document;
            document.setHtml(QToolTip::text());
            return document.toPlainText();
        }
        ADD_FAILURE() << "the main window does not draw " << control.name().toStdString();
        return QString();
    }

    // What the status line shows once the window has drawn its next frame.
    QString status()
    {
        nextFrame();
        return app->mainWindow()->statusText();
    }
};

} // namespace

TEST_F(AssignmentTextTest, StatusLineAndTooltipsFollowEditsUndoAndTheLayer)
{
    startApplication();
    TVKControl* button = selectFirstOfType(ControlType::Button);
    ASSERT_NE(button, nullptr);
    const int group = button->groupID();
    const int index = button->index();
    const QString before = status();
    EXPECT_TRUE(before.startsWith(button->name())) << before.toStdString();
    const QString tipBefore = toolTipOver(*button);
    EXPECT_TRUE(tipBefore.startsWith(button->name())) << tipBefore.toStdString();

    // Ctrl+Shift+S assigned as the key sequence editor assigns it.
    auto keys = std::make_shared<TVKButtonKeySequenceAction>(nullptr, 50, false);
    keys->sequence().push_back(TVKKeystrokeElement(
        QStringLiteral("s"), 31, KeyEventTranslator::kControl | KeyEventTranslator::kShift));
    controller->undoableInsertAction({keys}, 0, 0, group, index,
                                     QStringLiteral("Edit Control Action"), false);
    const TVKControl* edited = controller->modelData()->controlForKeyset(0, 0, group, index);
    // The system's descriptor stays, and the desktop's words follow it.
    EXPECT_TRUE(status().contains(edited->action()->actionDescriptor())) << status().toStdString();
    EXPECT_TRUE(status().endsWith(QStringLiteral("  ·  Ctrl+Shift+S"))) << status().toStdString();
    EXPECT_EQ(toolTipOver(*edited), edited->name() + QStringLiteral("\nCtrl+Shift+S"));

    controller->undoManager().undo();
    EXPECT_EQ(status(), before);
    EXPECT_EQ(toolTipOver(*controller->modelData()->controlForKeyset(0, 0, group, index)),
              tipBefore);

    controller->undoManager().redo();
    EXPECT_TRUE(status().endsWith(QStringLiteral("Ctrl+Shift+S")));

    // Another layer shows its own control; coming back shows the edit again.
    controller->handleTVKLayerSelector(1);
    EXPECT_FALSE(status().contains(QStringLiteral("Ctrl+Shift+S"))) << status().toStdString();
    const TVKControl* other = controller->modelData()->controlForKeyset(0, 1, group, index);
    EXPECT_FALSE(toolTipOver(*other).contains(QStringLiteral("Ctrl+Shift+S")));
    controller->handleTVKLayerSelector(0);
    EXPECT_TRUE(status().endsWith(QStringLiteral("Ctrl+Shift+S")));
    EXPECT_TRUE(toolTipOver(*edited).endsWith(QStringLiteral("Ctrl+Shift+S")));

    // A name given shows in both.
    controller->undoableSetUserName(QStringLiteral("Save As"), 0, 0, group, index, false);
    EXPECT_TRUE(status().contains(QStringLiteral("“Save As”"))) << status().toStdString();
    EXPECT_EQ(toolTipOver(*edited), edited->name() + QStringLiteral(" “Save As”\nCtrl+Shift+S"));
}
