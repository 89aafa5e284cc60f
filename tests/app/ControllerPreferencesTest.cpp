#include "ControllerFixture.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"

#include <QAction>
#include <QHostAddress>
#include <QTcpServer>

using namespace corvane;
using namespace corvane::test;

TEST(AddressFields, AreSplitIntoAtMostThreeDigitsEach)
{
    const auto split = [](const QString& text) {
        QStringList parts;
        qsizetype position = 0;
        for (int i = 0; i < 4; ++i) {
            parts << TVKController::nextFieldFromIpAddress(text, position);
            ++position;
        }
        return parts;
    };
    EXPECT_EQ(split(QStringLiteral("192.168.1.20")),
              (QStringList{QStringLiteral("192"), QStringLiteral("168"), QStringLiteral("1"),
                           QStringLiteral("20")}));
    EXPECT_EQ(
        split(QStringLiteral("1234.5.6.7")),
        (QStringList{QStringLiteral("123"), QString(), QStringLiteral("5"), QStringLiteral("6")}));
    EXPECT_EQ(split(QStringLiteral("10.1")),
              (QStringList{QStringLiteral("10"), QStringLiteral("1"), QString(), QString()}));
}

TEST_F(ControllerTest, PreferenceSheetValidatesCollectsAndSendsEverything)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    c.setIpAddress(QStringLiteral("192.168.1.20"));
    c.showPreferencePanel();
    ASSERT_EQ(views.begun, std::vector<TVKSheet>{TVKSheet::Preferences});
    TVKPreferenceFields& fields = c.preferenceFields();
    EXPECT_EQ(fields.ipAddress[3], QStringLiteral("20"));

    // An empty field keeps the sheet open and is selected.
    fields.ipAddress[2].clear();
    c.okPrefsWindow();
    EXPECT_TRUE(views.ended.empty());
    EXPECT_EQ(views.selectedFields, std::vector<TVKSheetField>{TVKSheetField::IpAddress2});

    // At most one standalone expander: the others are disabled while one is on.
    c.handleStandaloneTLW2CheckBox(true);
    EXPECT_TRUE(fields.standaloneTLW2Enabled);
    EXPECT_FALSE(fields.standaloneTLEnabled || fields.standaloneTLWEnabled ||
                 fields.standaloneNVEnabled);
    c.handleStandaloneTLW2CheckBox(false);
    EXPECT_TRUE(fields.standaloneTLEnabled && fields.standaloneNVEnabled);
    c.handleStandaloneTLW2CheckBox(true);

    fields.ipAddress[2] = QStringLiteral("7");
    fields.ethernetPort = QStringLiteral("5004");
    fields.hardwareStyle = 1;
    views.visible.insert(TVKWindow::TLW);
    const qsizetype from = mark();
    int styleChanges = 0;
    NotificationCenter::Observation watch =
        NotificationCenter::defaultCenter().observeAll(nullptr, [&](const Notification& n) {
            styleChanges += n.name == QLatin1StringView("TVKHdwStyChg");
        });
    c.okPrefsWindow();
    EXPECT_EQ(views.ended, std::vector<TVKSheet>{TVKSheet::Preferences});
    EXPECT_EQ(c.ipAddress(), QStringLiteral("192.168.7.20"));
    EXPECT_EQ(c.ethernetPort(), 5004u);
    EXPECT_TRUE(c.corvaneModelData()->standaloneTLW2());
    EXPECT_EQ(views.hardwareImages.back(), QStringLiteral("CorvaneRS.png"));
    EXPECT_EQ(styleChanges, 1);
    EXPECT_EQ(std::count(views.shown.begin(), views.shown.end(), TVKWindow::TLW2), 1);
    EXPECT_TRUE(views.closed.empty()) << "TLW2 on leaves the TLW window alone";
    ASSERT_TRUE(waitForCount(QStringLiteral("TVNV"), 1, from));
    for (const char* code : {"RSoc", "TSTL", "TTLW", "TTL2"})
        EXPECT_EQ(received(QString::fromLatin1(code), from).size(), 1u) << code;
    c.validateMenuItems();
    EXPECT_TRUE(c.menuItem(TVKMenuCommand::ShowTLW2)->isEnabled());
    EXPECT_FALSE(c.menuItem(TVKMenuCommand::ShowExpander)->isEnabled());
    EXPECT_FALSE(c.menuItem(TVKMenuCommand::ShowNV)->isEnabled());
}

TEST_F(ControllerTest, ApplicationPortIsChosenSavedAndSent)
{
    CorvaneModelData model;
    model.addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"));
    model.addKeysetWithName(QStringLiteral("Mixer"), fourCC("MiXr"));
    model.keysetAtIndex(2)->setConnectViaEthernet(true);
    model.keysetAtIndex(2)->setEthernetPort(65532);
    model.keysetAtIndex(1)->setEthernetPort(65531);
    storeConfiguration(model);
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    c.setSelectedKeyset(1);

    // Two ports taken by listeners, one by another keyset; the keyset's own port is free to it.
    QTcpServer first;
    QTcpServer second;
    ASSERT_TRUE(first.listen(QHostAddress::AnyIPv4, 65534));
    ASSERT_TRUE(second.listen(QHostAddress::AnyIPv4, 65533));
    c.showAppPortPanel();
    TVKAppPortFields& fields = c.appPortFields();
    EXPECT_EQ(fields.selectedCell, 1);
    EXPECT_EQ(
        fields.cellTitles[1],
        QStringLiteral("The application Editor will not\nconnect to the Corvane via ethernet"));
    c.findAvailablePort();
    EXPECT_EQ(fields.port, QStringLiteral("65531"));
    EXPECT_EQ(fields.selectedCell, 0);

    qsizetype from = mark();
    c.okAppPortWindow();
    EXPECT_TRUE(c.modelData()->keysetAtIndex(1)->connectViaEthernet());
    ASSERT_TRUE(waitForCount(QStringLiteral("ApEP"), 1, from));
    // The only save besides quitting.
    const TVKUserDefaults store(storePath);
    EXPECT_TRUE(CorvaneModelData(store.objectForKey(key::ModelData))
                    .keysetAtIndex(1)
                    ->connectViaEthernet());
    EXPECT_TRUE(serviceInStep());

    // Off: sent as -1, and the keyset keeps its port.
    from = mark();
    c.showAppPortPanel();
    fields.selectedCell = 1;
    c.okAppPortWindow();
    EXPECT_FALSE(c.modelData()->keysetAtIndex(1)->connectViaEthernet());
    EXPECT_EQ(c.modelData()->keysetAtIndex(1)->ethernetPort(), 65531u);
    ASSERT_TRUE(waitForCount(QStringLiteral("ApEP"), 1, from));
    EXPECT_TRUE(serviceInStep());
    // An empty port keeps the sheet open.
    c.showAppPortPanel();
    fields.port.clear();
    const size_t ended = views.ended.size();
    c.okAppPortWindow();
    EXPECT_EQ(views.ended.size(), ended);
}
