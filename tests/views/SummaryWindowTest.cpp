// The keyset summary against the real controller and simulated service.
#include "TestConfig.h"
#include "ViewsFixture.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/editors/KeyEventTranslator.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneSurfaceView.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMultiStateButton.h"

#include <QColumnView>
#include <QLineEdit>
#include <QTest>
#include <QTreeWidget>
#include <set>
#include <tuple>

using namespace corvane;
using namespace corvane::test;

namespace {

class SummaryTest : public ViewsTest
{
protected:
    // The sample configuration: five keysets with named controls and actions.
    KeysetSummaryController& openSummaryOnSample()
    {
        const PlistReadResult sample = PlistCodec::readFile(
            QStringLiteral(CORVANE_SOURCE_DIR "/resources/samples/Studio.plist"));
        EXPECT_TRUE(sample.ok);
        TVKUserDefaults store(storePath);
        store.setObject(key::ModelData, sample.value);
        EXPECT_TRUE(store.synchronize());
        startApplication();
        controller->showSummary();
        EXPECT_NE(app->summary(), nullptr);
        return *app->summary();
    }

    // Where the browser stands: keyset, layer, group, control rows.
    std::vector<int> browserPath(const KeysetSummaryController& summary) const
    {
        std::vector<int> rows;
        for (QModelIndex i = summary.keysetBrowser()->currentIndex(); i.isValid(); i = i.parent())
            rows.insert(rows.begin(), i.row());
        return rows;
    }
};

} // namespace

TEST_F(SummaryTest, TheBrowserFollowsTheSelectionAndMovesIt)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    EXPECT_EQ(summary.model().rowCount(), 5);

    // A click on the picture: Play (group 1, control 3; the picture's fourth) of the keyset shown.
    TVKMultiStateButton& transport = button(mainSurface(), 1);
    clickSurface(mainSurface(), transport.geometry().topLeft() + insideControl(transport, 4));
    nextFrame();
    EXPECT_EQ(browserPath(summary), (std::vector<int>{0, 0, 1, 3}));

    // Choosing another control in the browser selects it and tells the surface.
    const qsizetype from = mark();
    const QModelIndex play = summary.keysetBrowser()->currentIndex();
    summary.keysetBrowser()->setCurrentIndex(play.sibling(4, 0));
    EXPECT_EQ(controller->modelDataGroupIndex(), 1);
    EXPECT_EQ(controller->modelDataControlIndex(), 4);
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    EXPECT_EQ(words(received(QStringLiteral("TCtl"), from).back()),
              (std::vector<qint64>{1, 4, 0, 1}));

    // And another layer.
    summary.keysetBrowser()->setCurrentIndex(play.parent().parent().sibling(2, 0));
    EXPECT_EQ(controller->selectedLayer(), 2);
}

TEST_F(SummaryTest, ControlsReadAsNameUserNameAndActionInTheirColour)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    auto* model = dynamic_cast<CorvaneModelData*>(controller->modelData());
    // Ardour (keyset 1): Play is named "Play" by the user and types a space.
    const TVKControl* play = summary.model().controlForRow(1, 0, 1, 3);
    ASSERT_NE(play, nullptr);
    const auto pieces = KeysetSummaryModel::descriptorPieces(*play);
    ASSERT_EQ(pieces.size(), 5u);
    EXPECT_EQ(pieces[0], (std::pair<QString, int>{QStringLiteral("Play"), 0}));
    EXPECT_EQ(pieces[1].first, QStringLiteral(" ("));
    EXPECT_EQ(pieces[2], (std::pair<QString, int>{QStringLiteral("Play"), 1}));
    EXPECT_EQ(pieces[3].first, QStringLiteral("): "));
    EXPECT_EQ(pieces[4].second, 2);
    EXPECT_TRUE(pieces[4].first.startsWith(QStringLiteral("Key Sequence")));
    // Without a user name: name, colon, action.
    const auto plain =
        KeysetSummaryModel::descriptorPieces(*summary.model().controlForRow(0, 0, 0, 0));
    ASSERT_EQ(plain.size(), 3u);
    EXPECT_EQ(plain[1].first, QStringLiteral(": "));

    // A trackball in red is listed in red; an LCD button with the same colour stays black.
    auto* trackball = dynamic_cast<TVK4WayControl*>(model->controlForKeyset(0, 0, 11, 0));
    ASSERT_NE(trackball, nullptr);
    trackball->setOnColor(3);
    EXPECT_EQ(KeysetSummaryModel::colorSetFor(*trackball), 1);
    auto* lcd = dynamic_cast<TVKMultiColorButtonControl*>(model->controlForKeyset(0, 0, 23, 0));
    ASSERT_NE(lcd, nullptr);
    lcd->setOnColor(3);
    EXPECT_EQ(KeysetSummaryModel::colorSetFor(*lcd), 0);

    // With the TLW used alone, its channel groups list eight controls; the others keep theirs.
    model->setStandaloneTLW(true);
    EXPECT_EQ(summary.model().calcNumberOfRowsInColumn(KeysetSummaryModel::ControlColumn, 0, 0, 16),
              8);
    EXPECT_EQ(summary.model().calcNumberOfRowsInColumn(KeysetSummaryModel::ControlColumn, 0, 0, 19),
              32);
}

TEST_F(SummaryTest, SearchFindsAnAssignmentInEveryKeysetAndGoesToIt)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    // A user name in one keyset, a key in several.
    const auto vocals = summary.find(QStringLiteral("vox lead"));
    ASSERT_EQ(vocals.size(), 1u);
    EXPECT_EQ(vocals[0].keyset, 1);
    EXPECT_EQ(vocals[0].group, 21);
    EXPECT_EQ(vocals[0].control, 2);
    std::set<int> keysets;
    for (const auto& match : summary.find(QStringLiteral("Key Sequence")))
        keysets.insert(match.keyset);
    EXPECT_GE(keysets.size(), 3u);
    EXPECT_TRUE(summary.find(QStringLiteral("   ")).empty());

    // Typed in the field, the results list; choosing one selects it in the application.
    QTest::keyClicks(summary.searchField(), QStringLiteral("Vox Lead"));
    ASSERT_TRUE(spinUntil([&] { return summary.results()->topLevelItemCount() == 1; }));
    QTreeWidgetItem* item = summary.results()->topLevelItem(0);
    EXPECT_EQ(item->text(0), QStringLiteral("Ardour"));
    EXPECT_EQ(item->text(3), QStringLiteral("Fader 3 (Vox Lead)"));
    Q_EMIT summary.results()->itemActivated(item, 0);
    EXPECT_EQ(controller->selectedKeyset(), 1);
    EXPECT_EQ(controller->modelDataGroupIndex(), 21);
    EXPECT_EQ(controller->modelDataControlIndex(), 2);
    EXPECT_EQ(app->mainWindow()->keysetName(), QStringLiteral("Ardour"));
}

TEST_F(SummaryTest, ANameCutOffAtItsColumnsEdgeReadsWholeInItsToolTip)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    const KeysetSummaryModel& model = summary.model();
    const TVK_Constant_Server& constants = *TVK_Constant_Server::defaultConstantServer();
    const QFontMetrics metrics(summary.keysetBrowser()->font());
    int cut = 0;
    for (int keyset = 0; keyset < model.rowCount(); ++keyset) {
        const QModelIndex k = model.index(keyset, 0);
        const QString name = controller->modelData()->keysetAtIndex(keyset)->name();
        EXPECT_EQ(k.data(Qt::ToolTipRole).toString(), name);
        const QModelIndex layer = model.index(0, 0, k);
        ASSERT_EQ(model.rowCount(layer), constants.numberOfControlGroups());
        for (int group = 0; group < constants.numberOfControlGroups(); ++group) {
            const QString title = constants.dataModelGroupNameForGroup(group);
            const QModelIndex g = model.index(group, 0, layer);
            EXPECT_EQ(g.data(Qt::ToolTipRole).toString(), title) << group;
            cut += metrics.horizontalAdvance(title) + 40 >
                   KeysetSummaryController::columnWidth(KeysetSummaryModel::GroupColumn);
        }
    }
    EXPECT_GT(cut, 0) << "some group names are wider than their column";
}

TEST_F(SummaryTest, DeletingTheKeysetsTheSummaryShowsLeavesItOnTheNewSelection)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&summary));
    // Each keyset but the Default in turn, from the end and from the start, deleted while the
    // summary stands
    // on one of its controls.
    while (controller->modelData()->numberOfKeysets() > 1) {
        const int count = controller->modelData()->numberOfKeysets();
        const int doomed = count % 2 == 0 ? count - 1 : 1;
        SCOPED_TRACE(doomed);
        controller->keysetChangedInSummaryWindow(doomed);
        const int group = count % 2;
        const int control = 3 * group;
        controller->selectionChangedInSummaryWindowToGroup(group, control);
        nextFrame();
        ASSERT_EQ(browserPath(summary), (std::vector<int>{doomed, 0, group, control}));
        views.alertAnswers = {0};
        controller->handleDeleteKeyset();
        ASSERT_EQ(controller->modelData()->numberOfKeysets(), count - 1);
        nextFrame();
        const std::vector<int> path = browserPath(summary);
        ASSERT_FALSE(path.empty());
        EXPECT_EQ(path.front(), controller->selectedKeyset());
        EXPECT_EQ(summary.model().rowCount(), count - 1);
        // Every path the browser can take still leads to the live keysets' controls.
        for (int keyset = 0; keyset < summary.model().rowCount(); ++keyset) {
            const QModelIndex groups =
                summary.model().index(0, 0, summary.model().index(keyset, 0));
            EXPECT_GT(summary.model().rowCount(summary.model().index(1, 0, groups)), 0);
        }
    }
}

// Keys are searched as the desktop writes them, in any case and with the modifiers typed in
// any order; MIDI messages by their names.
TEST_F(SummaryTest, SearchFindsKeysInAnyModifierOrderAndMessagesByName)
{
    KeysetSummaryController& summary = openSummaryOnSample();
    TVKModelData* model = controller->modelData();
    TVKControl* control = model->controlForKeyset(2, 1, 5, 3);
    ASSERT_NE(control, nullptr);
    auto keys = std::make_unique<TVKButtonKeySequenceAction>(control, 50, false);
    keys->sequence().push_back(TVKKeystrokeElement(
        QStringLiteral("s"), 31, KeyEventTranslator::kControl | KeyEventTranslator::kShift));
    control->adoptAction(std::move(keys));
    const auto at = [](const std::vector<KeysetSummaryController::Match>& matches) {
        std::set<std::tuple<int, int, int, int>> out;
        for (const auto& m : matches)
            out.insert({m.keyset, m.layer, m.group, m.control});
        return out;
    };

    const auto wanted = at(summary.find(QStringLiteral("ctrl+shift+s")));
    EXPECT_TRUE(wanted.count({2, 1, 5, 3})) << "Ctrl+Shift+S is not found";
    for (const char* typed : {"shift+ctrl+s", "Shift+Control+S", "CTRL+SHIFT+S", " ctrl+shift+s "})
        EXPECT_EQ(at(summary.find(QString::fromLatin1(typed))), wanted) << typed;
    // Other shortcuts are other controls.
    EXPECT_FALSE(at(summary.find(QStringLiteral("ctrl+s"))).count({2, 1, 5, 3}));
    EXPECT_FALSE(at(summary.find(QStringLiteral("ctrl+alt+shift+s"))).count({2, 1, 5, 3}));
    EXPECT_FALSE(at(summary.find(QStringLiteral("shift+s"))).count({2, 1, 5, 3}));
    // A shortcut being typed finds every shortcut it begins.
    EXPECT_TRUE(at(summary.find(QStringLiteral("shift+ctrl+"))).count({2, 1, 5, 3}));

    // A message by its name, in any case.
    TVKControl* noteButton = model->controlForKeyset(3, 0, 5, 0);
    ASSERT_NE(noteButton, nullptr);
    const quint8 note[] = {0x91, 62, 90};
    noteButton->adoptAction(
        std::make_unique<TVKButtonMIDIAction>(TVKMIDIAction::Custom, note, 3u, noteButton));
    EXPECT_TRUE(
        at(summary.find(QStringLiteral("note on d4 (62) vel 90 · ch 2"))).count({3, 0, 5, 0}));

    // The results show what the control does in the desktop's words.
    QTest::keyClicks(summary.searchField(), QStringLiteral("shift+ctrl+s"));
    ASSERT_TRUE(
        spinUntil([&] { return summary.results()->topLevelItemCount() == int(wanted.size()); }));
    bool shown = false;
    for (int row = 0; row < summary.results()->topLevelItemCount(); ++row)
        shown = shown ||
                summary.results()->topLevelItem(row)->text(5) == QStringLiteral("Ctrl+Shift+S");
    EXPECT_TRUE(shown);
}
