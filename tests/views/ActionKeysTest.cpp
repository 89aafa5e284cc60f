// Copy, Paste and Clear Action from the keyboard on the surface pictures, the Edit menu's items,
// and the inspector's flag on a built-in command that the keyset's application does not have.
#include "ViewsFixture.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "views/CorvaneSurfaceView.h"
#include "views/InspectorController.h"
#include "views/TVKEditorView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKMultiStateButton.h"
#include "views/editors/TVKBuiltInActionEditorView.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QStatusBar>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using Command = TVKMenuCommand;

namespace {

namespace T = corvane::ControlType;

class ActionKeysTest : public ViewsTest
{
protected:
    PlistValue actionOfType(qint32 code)
    {
        PlistValue dict = PlistValue::makeDict();
        dict.insert(key::ActnType, PlistValue(qint64(code)));
        return dict;
    }

    // Gives the selected control an action, as its editor does.
    void giveSelected(const PlistValue& archive)
    {
        TVKControl* control = controller->modelData()->selectedControl();
        std::shared_ptr<const TVKAction> action =
            TVKStandardActionTypes::createActionFromArchive(archive, control);
        ASSERT_TRUE(action);
        controller->undoableInsertAction(
            {action}, controller->selectedKeyset(), controller->selectedLayer(), control->groupID(),
            control->index(), QStringLiteral("Edit Control Action"), false);
    }

    // The picture that draws the selected control, with the keyboard.
    TVKMultiStateButton& focusSelected()
    {
        TVKMultiStateButton& picture = button(mainSurface(), controller->selectedGroup());
        app->mainWindow()->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(app->mainWindow()));
        picture.setFocus(Qt::OtherFocusReason);
        EXPECT_EQ(QApplication::focusWidget(), &picture);
        return picture;
    }

    TVKControl* selected() const { return controller->modelData()->selectedControl(); }

    TVKBuiltInActionEditorView* builtInEditor() const
    {
        TVKEditorView* editor = app->inspector()->currentEditor();
        return editor
                   ? dynamic_cast<TVKBuiltInActionEditorView*>(editor->actionEditor(fourCC("BILT")))
                   : nullptr;
    }
};

} // namespace

TEST_F(ActionKeysTest, PicturesCopyPasteAndClearWhileTextFieldsKeepTheirKeys)
{
    startApplication();
    QGuiApplication::clipboard()->clear();

    // The Edit menu carries the three items with their keys, and says why one is grey.
    const QList<QAction*> edit = app->mainWindow()->menuBar()->actions()[1]->menu()->actions();
    for (const Command command :
         {Command::HandleCopyAction, Command::HandlePasteAction, Command::HandleClearAction})
        EXPECT_TRUE(edit.contains(controller->menuItem(command))) << int(command);
    EXPECT_EQ(controller->menuItem(Command::HandlePasteAction)->shortcut(),
              QKeySequence(QKeySequence::Paste));
    EXPECT_TRUE(app->mainWindow()->menuBar()->actions()[1]->menu()->toolTipsVisible());

    controller->showInspector();
    TVKControl* source = selectFirstOfType(T::Button);
    ASSERT_NE(source, nullptr);
    PlistValue special = actionOfType(0x105);
    special.insert(QStringLiteral("TVKSpMode"), PlistValue(qint64(6)));
    giveSelected(special);
    TVKMultiStateButton& picture = focusSelected();
    QTest::keyClick(&picture, Qt::Key_C, Qt::ControlModifier);
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(copied && copied->hasFormat(QStringLiteral("application/x-corvane-action+plist")));
    EXPECT_EQ(copied->text(), QStringLiteral("Surface: Layer 3 Selector"));

    // Onto the next button of the same picture, from the keyboard.
    controller->selectionChangedInSummaryWindowToGroup(source->groupID(), source->index() + 1);
    TVKControl* target = selected();
    ASSERT_NE(target, source);
    focusSelected();
    qsizetype from = mark();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_V, Qt::ControlModifier);
    ASSERT_NE(target->action(), nullptr);
    EXPECT_EQ(target->action()->actionDescriptor(), QStringLiteral("Layer 3 Selector"));
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Paste Action"));
    nextFrame();
    EXPECT_EQ(app->inspector()->currentEditor()->actionDescriptor(),
              QStringLiteral("Layer 3 Selector"))
        << "the inspector shows the pasted action";
    EXPECT_EQ(app->inspector()->currentEditor()->currentTabID(), fourCC("SPEC"));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(target->action(), nullptr);
    nextFrame();
    EXPECT_EQ(app->inspector()->currentEditor()->actionDescriptor(),
              QStringLiteral("No Action Assigned"));
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Clear Action"));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 2, from));
    EXPECT_TRUE(serviceInStep());

    // An encoder refuses a button's action, and the window's status line says why.
    ASSERT_NE(selectFirstOfType(T::Encoder), nullptr);
    TVKControl* encoder = selected();
    focusSelected();
    const int steps = controller->undoManager().stack().count();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(encoder->action(), nullptr);
    EXPECT_EQ(controller->undoManager().stack().count(), steps);
    EXPECT_EQ(app->mainWindow()->statusBar()->currentMessage(),
              QStringLiteral("An action made for a button does not fit an encoder."));

    // The inspector's name field pastes the text, and the control keeps its action.
    controller->selectionChangedInSummaryWindowToGroup(source->groupID(), source->index());
    controller->showInspector();
    QLineEdit* name = app->inspector()->userNameField();
    app->inspector()->panel()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(app->inspector()->panel()));
    name->setFocus(Qt::OtherFocusReason);
    name->clear();
    QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(name->text(), QStringLiteral("Surface: Layer 3 Selector"));
    QTest::keyClick(name, Qt::Key_Home);
    QTest::keyClick(name, Qt::Key_Delete);
    EXPECT_EQ(name->text(), QStringLiteral("urface: Layer 3 Selector"));
    ASSERT_NE(source->action(), nullptr) << "Delete in a text field cleared the action";
    EXPECT_EQ(controller->undoManager().stack().count(), steps);
}

TEST_F(ActionKeysTest, ABuiltInCommandTheApplicationLacksIsFlaggedInTheInspector)
{
    installCatalogue();
    CorvaneModelData model;
    model.addKeysetWithName(QStringLiteral("Audacity"), fourCC("????"),
                            QStringLiteral("org.audacityteam.Audacity"));
    model.addKeysetWithName(QStringLiteral("Vim"), fourCC("????"), QStringLiteral("org.vim.Vim"));
    storeConfiguration(model);
    startApplication();
    controller->showInspector();

    // Audacity's own "Transport: Record" is not flagged.
    controller->setSelectedKeyset(1);
    ASSERT_NE(selectFirstOfType(T::Button), nullptr);
    PlistValue record = actionOfType(0x101);
    record.insert(QStringLiteral("GroupName"), PlistValue(QStringLiteral("Transport")));
    record.insert(QStringLiteral("CommandName"), PlistValue(QStringLiteral("Record")));
    giveSelected(record);
    // Shown afresh, as after any edit the inspector did not make itself.
    ASSERT_NE(selectFirstOfType(T::Encoder), nullptr);
    ASSERT_NE(selectFirstOfType(T::Button), nullptr);
    TVKBuiltInActionEditorView* editor = builtInEditor();
    ASSERT_NE(editor, nullptr);
    nextFrame();
    EXPECT_EQ(app->inspector()->currentEditor()->currentTabID(), fourCC("BILT"));
    EXPECT_TRUE(editor->unavailableLabel()->isHidden())
        << editor->unavailableLabel()->text().toStdString();
    const QString flag =
        QStringLiteral("Not available for Vim: “Transport: Record” is not one of the built-in "
                       "commands for Vim.");

    // Pasted into Vim's keyset, the command is flagged.
    controller->validateMenuItems();
    controller->menuItem(Command::HandleCopyAction)->trigger();
    controller->setSelectedKeyset(2);
    ASSERT_NE(selectFirstOfType(T::Button), nullptr);
    controller->validateMenuItems();
    controller->menuItem(Command::HandlePasteAction)->trigger();
    ASSERT_NE(selected()->action(), nullptr);
    EXPECT_EQ(selected()->action()->actionDescriptor(),
              QStringLiteral("Built In- Transport: Record"));
    nextFrame();
    EXPECT_EQ(app->inspector()->currentEditor()->currentTabID(), fourCC("BILT"));
    EXPECT_FALSE(editor->unavailableLabel()->isHidden());
    EXPECT_EQ(editor->unavailableLabel()->text(), flag);
    EXPECT_TRUE(serviceInStep());

    // So is it when the whole keyset is pasted across applications.
    controller->undoManager().undo();
    controller->setSelectedKeyset(1);
    controller->handleCopyKeyset();
    controller->setSelectedKeyset(2);
    controller->handlePasteKeyset();
    ASSERT_NE(selectFirstOfType(T::Button), nullptr);
    ASSERT_NE(selected()->action(), nullptr);
    EXPECT_EQ(selected()->action()->actionDescriptor(),
              QStringLiteral("Built In- Transport: Record"));
    nextFrame();
    EXPECT_FALSE(editor->unavailableLabel()->isHidden());
    EXPECT_EQ(editor->unavailableLabel()->text(), flag);

    // Back in Audacity's keyset the flag goes.
    controller->setSelectedKeyset(1);
    ASSERT_NE(selectFirstOfType(T::Button), nullptr);
    nextFrame();
    EXPECT_TRUE(editor->unavailableLabel()->isHidden());
}
