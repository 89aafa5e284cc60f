#include "ControllerFixture.h"
#include "actions/TVKMIDIAction.h"
#include "app/TVKRecoveryJournal.h"
#include "core/FourCharCode.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"

#include <QAction>
#include <QFileInfo>
#include <QJsonArray>

using namespace corvane;
using namespace corvane::test;

TEST_F(ControllerTest, WithoutTheServiceTheControllerPollsUntilItAppears)
{
    CorvaneController& c = startController();
    EXPECT_FALSE(c.connected());
    c.validateMenuItems();
    EXPECT_TRUE(c.menuItem(TVKMenuCommand::AttemptReconnect)->isEnabled());
    ASSERT_TRUE(startService());
    // The transport finds the port within 0.2 s, the next poll within 1.0 s.
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("(connected)"));
    EXPECT_FALSE(c.connectionMenuItem()->isEnabled());
}

TEST_F(ControllerTest, ServiceQuittingIsNoticedByTheKeepAliveWatch)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }));
    service->terminate();
    // One keep-alive period (1.5 s) and the queued state change after it; the wait is generous.
    ASSERT_TRUE(spinUntil([&] { return !c.connected(); }, 4000));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("reconnect"));
    EXPECT_TRUE(c.connectionMenuItem()->isEnabled());

    // Back again: polling finds it.
    ASSERT_TRUE(startService());
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000));
}

TEST_F(ControllerTest, SurfaceStateReportedByTheServiceAndReconnect)
{
    ASSERT_TRUE(startService(QStringList{QStringLiteral("--disconnected")}));
    CorvaneController& c = startController();
    spinFor(100);
    EXPECT_FALSE(c.connected());
    service->command(QStringLiteral("surface connected"));
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000)) << "the 1.0 s poll";

    // An unplugged surface is reported only by the service; the watch does not ask.
    service->command(QStringLiteral("send CnSt 0"));
    ASSERT_TRUE(spinUntil([&] { return !c.connected(); }));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("reconnect"));

    c.setIpAddress(QStringLiteral("192.168.1.20"));
    c.setEthernetPort(5004);
    const qsizetype from = mark();
    c.connectionMenuItem()->trigger();
    ASSERT_TRUE(waitForCount(QStringLiteral("RSoc"), 1, from));
    const QJsonObject reset = received(QStringLiteral("RSoc"), from).front();
    EXPECT_EQ(reset.value(QStringLiteral("ip")).toString(), QStringLiteral("192.168.1.20"));
    EXPECT_EQ(reset.value(QStringLiteral("port")).toInteger(), 5004);
}

namespace {

// A service killed while the application edits on, and a new one started from the store.
class ServiceReturnTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        for (const char* name : {"KS0001", "KS0002", "KS0003", "KS0004"})
            model.addKeysetWithName(QString::fromLatin1(name),
                                    fourCharCodeFromString(QString::fromLatin1(name).right(4)));
        // KS0003 differs from the rest, so that pasting it over another is a change.
        model.controlForKeyset(3, 0, 0, 0)->setUserName(QStringLiteral("Play"));
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
        ASSERT_TRUE(spinUntil([&] { return controller->connected(); }));
    }

    // Kills the service; it is noticed by the keep-alive watch.
    void killService()
    {
        service->kill();
        ASSERT_TRUE(spinUntil([&] { return !controller->connected(); }, 4000));
    }

    // Starts a service from the store and waits until the application has told it the lit
    // control, the last thing of a catch-up.
    void startServiceAgain()
    {
        ASSERT_TRUE(startService());
        ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 1, 0, 5000));
        ASSERT_TRUE(spinUntil([&] { return controller->connected(); }, 4000));
    }

    int count(const QString& code) { return int(received(code, 0).size()); }
};

} // namespace

TEST_F(ServiceReturnTest, AServiceStartedAgainFromTheStoreIsBroughtInStep)
{
    TVKController& c = *controller;
    // Somewhere other than the start, so that the service could not have it by chance.
    c.setSelectedKeyset(2);
    c.setSelectedLayer(3);
    c.hardwareControlChangeForGroup(4, 2, 0, 1);
    const qint64 group = c.modelDataGroupIndex();
    const qint64 control = c.modelDataControlIndex();
    ASSERT_EQ(std::pair(group, control), std::pair(qint64(4), qint64(2)));

    // Back with nothing changed: no keyset is sent again, only the selection.
    killService();
    startServiceAgain();
    EXPECT_EQ(count(QStringLiteral("TUpK")) + count(QStringLiteral("TAdK")) +
                  count(QStringLiteral("TDlK")) + count(QStringLiteral("TChO")),
              0);
    ASSERT_EQ(count(QStringLiteral("ChEK")), 1);
    ASSERT_EQ(count(QStringLiteral("ChEL")), 1);
    EXPECT_EQ(received(QStringLiteral("ChEK"), 0)[0].value(u"words").toArray(), (QJsonArray{2}));
    EXPECT_EQ(received(QStringLiteral("ChEL"), 0)[0].value(u"words").toArray(), (QJsonArray{3}));
    EXPECT_EQ(received(QStringLiteral("TCtl"), 0).back().value(u"words").toArray(),
              (QJsonArray{group, control, 0, 1}));
    EXPECT_TRUE(serviceInStep());

    // Edits of every kind while it is away.
    killService();
    const QString file = home.path() + QStringLiteral("/KS0002.CvKs");
    c.setSelectedKeyset(2);
    views.savePanelAnswers.push_back(file);
    c.handleExportKeyset();
    views.alertAnswers = {0};
    c.handleDeleteKeyset(); // KS0002
    views.openPanelAnswers.push_back(file);
    c.handleImportKeyset(); // back, at the end
    c.setSelectedKeyset(2);
    c.handleCopyKeyset();
    c.setSelectedKeyset(1);
    c.handlePasteKeyset(); // KS0003 over KS0001
    c.setSelectedKeyset(0);
    c.handleLockUnlockMenu(); // Default
    c.handleOwnerMenu();
    c.setSelectedKeyset(0);
    c.hardwareControlChangeForGroup(group, control, 0, 1);
    TVKButtonMIDIAction edited(c.modelData()->controlForKeyset(0, 0, group, control));
    views.editedAction = &edited;
    NotificationCenter::defaultCenter().post(note::InsertEditedAction{false});
    ASSERT_EQ(c.modelData()->numberOfKeysets(), 5);
    c.setSelectedLayer(1);

    const size_t journalled =
        TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath)).read().records.size();
    startServiceAgain();
    EXPECT_TRUE(serviceInStep());
    // Each changed keyset once (Default and KS0001); KS0003 and KS0004 moved up unchanged and
    // are not sent; the one moved to the end costs a deletion and an addition.
    EXPECT_EQ(count(QStringLiteral("TUpK")), 2);
    EXPECT_EQ(count(QStringLiteral("TDlK")), 1);
    EXPECT_EQ(count(QStringLiteral("TAdK")), 1);
    EXPECT_EQ(count(QStringLiteral("TChO")), 1);
    EXPECT_EQ(received(QStringLiteral("ChEK"), 0).back().value(u"words").toArray(),
              (QJsonArray{0}));
    EXPECT_EQ(received(QStringLiteral("ChEL"), 0).back().value(u"words").toArray(),
              (QJsonArray{1}));
    // Nothing was added (the journal may have been compacted into its snapshot meanwhile).
    const TVKRecoveryJournal::Contents after =
        TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath)).read();
    EXPECT_TRUE(after.records.size() == journalled ||
                (after.records.size() == 1 && after.records[0].id == TVKRecoveryJournal::Snapshot))
        << "the catch-up is not the user's edit";

    // The store written (at quit, here by hand): the next service starts from it and needs no
    // keyset.
    ASSERT_TRUE(c.writeDataToDefaults());
    killService();
    startServiceAgain();
    EXPECT_EQ(count(QStringLiteral("TUpK")) + count(QStringLiteral("TAdK")) +
                  count(QStringLiteral("TDlK")) + count(QStringLiteral("TChO")),
              0);
    EXPECT_TRUE(serviceInStep());
}

namespace {

// The controls a layer's table defines in a group: its records up to the first without a name.
int tableSize(const TVKLayer& layer, int group)
{
    const TVKControlInitTable* table = layer.controlInitDataForGroupID(group);
    int size = 0;
    while (table && size < int(table->size()) && !(*table)[std::size_t(size)].name.isEmpty())
        ++size;
    return size;
}

} // namespace

TEST_F(ControllerTest, ControlsTheModelDoesNotHaveAreRefusedAtEveryBoundary)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }));
    const TVKLayer& layer = *c.modelData()->keysetAtIndex(0)->layerAtIndex(0);
    const int groups = layer.numGroups();
    ASSERT_GT(groups, 0);
    const QString huge = QString::number(UINT32_MAX);
    LogCapture log;

    // What the service says is refused and changes nothing; the control before it in the same
    // run is taken, and is the only thing echoed.
    const auto refusedThenTaken = [&](const QString& refused, int group, int control) {
        SCOPED_TRACE(refused.toStdString());
        const qsizetype from = mark();
        const int logged = int(log.lines().size());
        service->command(QStringLiteral("send ") + refused);
        service->command(QStringLiteral("send TCtl %1 %2 0 1").arg(group).arg(control));
        ASSERT_TRUE(spinUntil([&] {
            for (const QJsonObject& line : received(QStringLiteral("TCtl"), from)) {
                if (line.value(u"words").toArray() == QJsonArray{group, control, 0, 1})
                    return true;
            }
            return false;
        }));
        EXPECT_EQ(int(log.lines().size()), logged + 1) << log.lines().join(u'\n').toStdString();
        EXPECT_EQ(received(QStringLiteral("TCtl"), from).size(), 2u) << "off, then on";
        EXPECT_TRUE(received(QStringLiteral("ChEK"), from).empty());
        EXPECT_TRUE(received(QStringLiteral("ChEL"), from).empty());
        EXPECT_EQ(c.modelDataGroupIndex(), group);
        EXPECT_EQ(c.modelDataControlIndex(), control);
        EXPECT_EQ(c.selectedKeyset(), 0);
        EXPECT_EQ(c.selectedLayer(), 0);
    };

    for (int group = 0; group < groups; ++group) {
        const int size = tableSize(layer, group);
        ASSERT_GT(size, 0) << group;
        refusedThenTaken(QStringLiteral("TCtl %1 %2 0 1").arg(group).arg(size), group, size - 1);
        refusedThenTaken(QStringLiteral("CurC 0 0 %1 %2").arg(group).arg(size), group == 0 ? 1 : 0,
                         0);
    }
    refusedThenTaken(QStringLiteral("TCtl %1 0 0 1").arg(groups), groups - 1, 0);
    refusedThenTaken(QStringLiteral("TCtl %1 0 0 1").arg(huge), 0, 0);
    refusedThenTaken(QStringLiteral("TCtl 0 %1 0 1").arg(huge), 0, 1);
    refusedThenTaken(QStringLiteral("CurC 0 0 %1 0").arg(groups), 1, 0);
    const int keysets = c.modelData()->numberOfKeysets();
    refusedThenTaken(QStringLiteral("CurC %1 0 0 0").arg(keysets), 2, 0);
    refusedThenTaken(QStringLiteral("CurC %1 0 0 0").arg(huge), 3, 0);
    refusedThenTaken(QStringLiteral("CurC 0 4 0 0"), 4, 0);
    refusedThenTaken(QStringLiteral("CurC 0 %1 0 0").arg(huge), 5, 0);
}
