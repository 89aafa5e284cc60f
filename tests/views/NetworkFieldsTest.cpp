// The address and port fields of the first-run page and of the two sheets, typed into as a
// person does, and what reaches the service and the store from them.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "views/TVKNetworkFields.h"
#include "views/TVKSetupViewControllers.h"
#include "views/TVKSheetDialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTest>

using namespace corvane;
using namespace corvane::test;

namespace {

using Parts = std::array<QString, 4>;

Parts parts(const char* a, const char* b, const char* c, const char* d)
{
    return {QString::fromLatin1(a), QString::fromLatin1(b), QString::fromLatin1(c),
            QString::fromLatin1(d)};
}

// Types each character into whichever field of the window has the focus at that moment, as
// the keyboard does.
void type(QWidget& window, const QString& text)
{
    for (const QChar c : text) {
        QWidget* target = window.focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, c.toLatin1());
    }
}

void startTypingIn(QLineEdit* field)
{
    field->setFocus();
    field->selectAll();
}

void clickOk(QDialog& sheet)
{
    auto* buttons = sheet.findChild<QDialogButtonBox*>();
    ASSERT_NE(buttons, nullptr);
    buttons->button(QDialogButtonBox::Ok)->click();
}

// One place where an address and a port are entered.
struct Host
{
    const char* name;
    QWidget* window;
    TVKAddressField* address; // none on the application-port sheet
    QLineEdit* port;
};

} // namespace

TEST_F(ViewsTest, AddressAndPortFieldsTakeOnlyWhatTheyMeanWherever)
{
    startApplication();
    controller->modelData()->setIpAddress(QStringLiteral("10.1.2.3"));
    std::unique_ptr<TVKSetupViewController> made = TVKSetupViewController::make(
        QStringLiteral("corvaneEthernetSetupViewController"),
        QStringLiteral("corvaneEthernet_Initial_Setup"), QStringLiteral("corvaneEthernet"),
        controller->defaults(), controller->corvaneModelData());
    auto& setup = static_cast<corvaneEthernetSetupViewController&>(*made);
    setup.show();
    controller->showPreferencePanel();
    TVKPreferencesSheet& preferences = *app->preferencesSheet();
    std::vector<Host> hosts = {
        {"first-run page", &setup, setup.addressField(), setup.portField()},
        {"preference sheet", &preferences, preferences.address(), preferences.portField()},
        {"application-port sheet", nullptr, nullptr, nullptr}};

    for (const Host& host : hosts) {
        SCOPED_TRACE(host.name);
        if (!host.address)
            continue;
        QWidget& window = *host.window;
        TVKAddressField& address = *host.address;
        // Typed in one go from the first part: "." moves on, each part keeps its number.
        address.setParts(parts("", "", "", ""));
        startTypingIn(address.part(0));
        type(window, QStringLiteral("192.168.1.250"));
        EXPECT_EQ(address.parts(), parts("192", "168", "1", "250"));
        // Clicked into at the end of a fresh address's "0" and typed: the zero is typed over.
        address.setParts(parts("0", "0", "0", "0"));
        address.part(0)->setFocus();
        address.part(0)->end(false);
        type(window, QStringLiteral("192.168.1.250"));
        EXPECT_EQ(address.parts(), parts("192", "168", "1", "250"));
        address.setParts(parts("10", "0", "0", "0"));
        address.part(2)->setFocus();
        address.part(2)->end(false);
        type(window, QStringLiteral("07"));
        EXPECT_EQ(address.parts(), parts("10", "0", "7", "0"));
        // A part is full at three digits and the next digit goes on to the next part; "." on
        // an empty part waits for its digits.
        address.setParts(parts("", "", "", ""));
        startTypingIn(address.part(0));
        type(window, QStringLiteral("10..0.0.7"));
        EXPECT_EQ(address.parts(), parts("10", "0", "0", "7"));
        address.setParts(parts("", "", "", ""));
        startTypingIn(address.part(0));
        type(window, QStringLiteral("1921681"));
        EXPECT_EQ(address.parts(), parts("192", "168", "1", ""));
        // Letters, signs and numbers above 255 are not taken.
        for (int part = 0; part < 4; ++part) {
            address.setParts(parts("", "", "", ""));
            startTypingIn(address.part(part));
            type(window, QStringLiteral("abc-+ 25"));
            type(window, QStringLiteral("6"));
            EXPECT_EQ(address.part(part)->text(), QStringLiteral("25")) << "part " << part;
            EXPECT_EQ(window.focusWidget(), address.part(part)) << "256 is refused, not moved on";
        }
        // Backspace at the start of a part goes back into the one before it.
        address.setParts(parts("172", "16", "", ""));
        address.part(2)->setFocus();
        QTest::keyClick(address.part(2), Qt::Key_Backspace);
        EXPECT_EQ(window.focusWidget(), address.part(1));
        type(window, QStringLiteral("\b7"));
        EXPECT_EQ(address.parts(), parts("172", "17", "", ""));

        // A whole address pasted into any part fills all four, by key or by the context menu;
        // anything else pasted changes nothing.
        for (int part = 0; part < 4; ++part) {
            address.setParts(parts("1", "2", "3", "4"));
            QGuiApplication::clipboard()->setText(QStringLiteral(" 192.168.1.250\n"));
            address.part(part)->setFocus();
            address.part(part)->end(false);
            QTest::keyClick(address.part(part), Qt::Key_V, Qt::ControlModifier);
            EXPECT_EQ(address.parts(), parts("192", "168", "1", "250")) << "part " << part;
            QGuiApplication::clipboard()->setText(QStringLiteral("10.20.30.40"));
            address.part(part)->selectAll();
            address.part(part)->paste();
            EXPECT_EQ(address.parts(), parts("10", "20", "30", "40")) << "part " << part;
            for (const char* junk : {"300.1.1.1", "1.2.3", "hello", "1.2.3.4.5", "-1"}) {
                QGuiApplication::clipboard()->setText(QString::fromLatin1(junk));
                address.part(part)->selectAll();
                QTest::keyClick(address.part(part), Qt::Key_V, Qt::ControlModifier);
                EXPECT_EQ(address.parts(), parts("10", "20", "30", "40")) << junk;
            }
        }
    }

    controller->cancelPrefsWindow();
    controller->showAppPortPanel();
    hosts[2].window = app->appPortSheet();
    hosts[2].port = app->appPortSheet()->portField();
    for (const Host& host : hosts) {
        SCOPED_TRACE(host.name);
        QLineEdit& port = *host.port;
        for (const auto& [typed, kept] :
             {std::pair{"65535", "65535"}, std::pair{"65536", "6553"}, std::pair{"70000", "7000"},
              std::pair{"80a80", "8080"}, std::pair{"-23", "23"}, std::pair{"123456", "12345"}}) {
            port.clear();
            startTypingIn(&port);
            type(*host.window, QString::fromLatin1(typed));
            EXPECT_EQ(port.text(), QString::fromLatin1(kept)) << typed;
            EXPECT_TRUE(port.hasAcceptableInput()) << typed;
        }
        port.clear();
        startTypingIn(&port);
        type(*host.window, QStringLiteral("0"));
        EXPECT_FALSE(port.hasAcceptableInput()) << "0 is no port";
    }
    controller->cancelAppPortWindow();
}

TEST_F(ViewsTest, PreferenceSheetSendsAndStoresOnlyAWholeAddress)
{
    startApplication();
    controller->showPreferencePanel();
    TVKPreferencesSheet& sheet = *app->preferencesSheet();
    ASSERT_TRUE(sheet.isVisible());
    startTypingIn(sheet.addressField(0));
    type(sheet, QStringLiteral("10.0.0.7"));
    startTypingIn(sheet.portField());
    type(sheet, QStringLiteral("5004"));
    const qsizetype from = mark();
    clickOk(sheet);
    EXPECT_FALSE(sheet.isVisible());
    ASSERT_TRUE(waitForCount(QStringLiteral("RSoc"), 1, from));
    const QJsonObject sent = received(QStringLiteral("RSoc"), from).front();
    EXPECT_EQ(sent.value(u"ip").toString(), QStringLiteral("10.0.0.7"));
    EXPECT_EQ(sent.value(u"port").toInteger(), 5004);
    EXPECT_EQ(controller->ipAddress(), QStringLiteral("10.0.0.7"));
    const qsizetype afterFirst = mark();

    // Whatever reaches a field past its checks, the controller refuses what is not an address
    // part or a port: the sheet stays open on that field, and nothing is sent or stored.
    struct Bad
    {
        int field; // 0..3 the address parts, 4 the port
        const char* text;
    };
    for (const Bad bad :
         {Bad{0, "abc"}, Bad{1, "256"}, Bad{2, ""}, Bad{3, "1.2"}, Bad{3, " "}, Bad{0, "\u0661"},
          Bad{4, "0"}, Bad{4, "65536"}, Bad{4, "80a"}, Bad{4, ""}}) {
        SCOPED_TRACE(bad.text);
        controller->showPreferencePanel();
        QLineEdit* field = bad.field < 4 ? sheet.addressField(bad.field) : sheet.portField();
        field->setText(QString::fromUtf8(bad.text));
        clickOk(sheet);
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_EQ(sheet.focusWidget(), field);
        EXPECT_EQ(field->selectedText(), field->text());
        controller->cancelPrefsWindow();
        EXPECT_EQ(controller->ipAddress(), QStringLiteral("10.0.0.7"));
        EXPECT_EQ(controller->ethernetPort(), 5004u);
    }
    // The service hears messages in order: once a good address sent after them arrives, a bad
    // one sent before would have arrived too.
    controller->showPreferencePanel();
    sheet.addressField(3)->setText(QStringLiteral("8"));
    clickOk(sheet);
    ASSERT_TRUE(waitForCount(QStringLiteral("RSoc"), 1, afterFirst));
    const std::vector<QJsonObject> later = received(QStringLiteral("RSoc"), afterFirst);
    ASSERT_EQ(later.size(), 1u);
    EXPECT_EQ(later.front().value(u"ip").toString(), QStringLiteral("10.0.0.8"));

    controller->handleTerminateMessage();
    const TVKUserDefaults store(storePath);
    EXPECT_EQ(store.objectForKey(key::IPAdr).toString(), QStringLiteral("10.0.0.8"));
    EXPECT_EQ(store.objectForKey(key::EnetPrt).toInteger(), 5004);
}

TEST_F(ViewsTest, ApplicationPortSheetTakesOnlyAPort)
{
    startApplication();
    controller->showAppPortPanel();
    TVKAppPortSheet& sheet = *app->appPortSheet();
    startTypingIn(sheet.portField());
    type(sheet, QStringLiteral("0"));
    const qsizetype from = mark();
    clickOk(sheet);
    EXPECT_TRUE(sheet.isVisible()) << "0 is no port";
    EXPECT_EQ(sheet.focusWidget(), sheet.portField());
    type(sheet, QStringLiteral("49200"));
    clickOk(sheet);
    EXPECT_FALSE(sheet.isVisible());
    ASSERT_TRUE(waitForCount(QStringLiteral("ApEP"), 1, from));
    EXPECT_EQ(controller->modelData()->selectedKeyset()->ethernetPort(), 49200u);
    EXPECT_EQ(received(QStringLiteral("ApEP"), from).size(), 1u);
}
