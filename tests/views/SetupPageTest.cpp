// The first-run setup page: what it reads from a store, what it refuses and what it writes.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "views/TVKSetupViewControllers.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <gtest/gtest.h>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

class SetupPageTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "views_tests";
            static char* argv[] = {name, nullptr};
            new QApplication(argc, argv);
        }
    }

    std::unique_ptr<corvaneEthernetSetupViewController> page(CorvaneModelData* model = nullptr)
    {
        std::unique_ptr<TVKSetupViewController> made =
            TVKSetupViewController::make(QStringLiteral("corvaneEthernetSetupViewController"),
                                         QStringLiteral("corvaneEthernet_Initial_Setup"),
                                         QStringLiteral("corvaneEthernet"), store, model);
        return std::unique_ptr<corvaneEthernetSetupViewController>(
            static_cast<corvaneEthernetSetupViewController*>(made.release()));
    }

    void type(corvaneEthernetSetupViewController& setup, const QStringList& address,
              const QString& port)
    {
        for (int i = 0; i < 4; ++i)
            setup.ipField(i)->setText(address[i]);
        setup.portField()->setText(port);
    }

    QTemporaryDir dir;
    corvane::TVKUserDefaults store{dir.path() + QStringLiteral("/store.plist")};
};

TEST_F(SetupPageTest, StartsFromNothingAndStoresTheAddressWithoutLeadingZeros)
{
    auto setup = page();
    EXPECT_EQ(setup->ipField(0)->text(), QStringLiteral("0"));
    EXPECT_EQ(setup->ipField(3)->text(), QStringLiteral("0"));
    EXPECT_EQ(setup->portField()->text(), QStringLiteral("23"));
    EXPECT_EQ(setup->themeRadioGroup()->checkedId(), 0);
    EXPECT_FALSE(setup->tlsaCheck()->isChecked());
    EXPECT_FALSE(setup->helpDisplay()->toPlainText().isEmpty()) << "help page 0 is shown";

    type(*setup,
         {QStringLiteral("192"), QStringLiteral("168"), QStringLiteral("001"),
          QStringLiteral("250")},
         QStringLiteral("23"));
    ASSERT_TRUE(setup->finishSetup());
    corvane::TVKUserDefaults written(store.path());
    EXPECT_EQ(written.objectForKey(key::IPAdr).toString(), QStringLiteral("192.168.1.250"));
    EXPECT_EQ(written.objectForKey(key::EnetPrt).toInteger(), 23);

    // 256 in a field, or the port 65535, is refused and nothing changes.
    type(*setup,
         {QStringLiteral("10"), QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("256")},
         QStringLiteral("23"));
    EXPECT_FALSE(setup->finishSetup());
    type(*setup,
         {QStringLiteral("10"), QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("1")},
         QStringLiteral("65535"));
    EXPECT_FALSE(setup->finishSetup());
    EXPECT_EQ(corvane::TVKUserDefaults(store.path()).objectForKey(key::IPAdr).toString(),
              QStringLiteral("192.168.1.250"));
}

TEST_F(SetupPageTest, ReadsTheConfigurationAndWritesItBackWithTheModel)
{
    PlistValue model = PlistValue::makeDict();
    model.insert(key::IPAdr, PlistValue(QStringLiteral("10.1")));
    model.insert(key::EnetPrt, PlistValue(qint64(4000)));
    model.insert(key::StandaloneNV, PlistValue(qint64(1)));
    model.insert(key::HardwareStyle, PlistValue(qint64(1)));
    store.setObject(key::ModelData, model);

    CorvaneModelData data;
    auto setup = page(&data);
    // An address of two parts fills two fields.
    EXPECT_EQ(setup->ipField(1)->text(), QStringLiteral("1"));
    EXPECT_TRUE(setup->ipField(2)->text().isEmpty());
    EXPECT_EQ(setup->portField()->text(), QStringLiteral("4000"));
    EXPECT_EQ(setup->themeRadioGroup()->checkedId(), 1);
    // At most one expander standalone: the one on can be turned off, the others wait.
    EXPECT_TRUE(setup->cnvsaCheck()->isChecked());
    EXPECT_TRUE(setup->cnvsaCheck()->isEnabled());
    EXPECT_FALSE(setup->tlsaCheck()->isEnabled());
    setup->cnvsaCheck()->click();
    EXPECT_TRUE(setup->tlsaCheck()->isEnabled());
    setup->tlsaCheck()->click();
    EXPECT_FALSE(setup->tlwsaCheck()->isEnabled());
    EXPECT_FALSE(setup->cnvsaCheck()->isEnabled());

    type(*setup,
         {QStringLiteral("10"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")},
         QStringLiteral("4001"));
    ASSERT_TRUE(setup->finishSetup());
    const PlistValue& written = store.objectForKey(key::ModelData);
    EXPECT_EQ(written.value(key::IPAdr).toString(), QStringLiteral("10.1.2.3"));
    EXPECT_EQ(written.value(key::StandaloneTL).toInteger(), 1);
    EXPECT_EQ(written.value(key::StandaloneNV).toInteger(), 0);
    EXPECT_TRUE(data.standaloneTL());
    EXPECT_FALSE(data.standaloneNV());
    EXPECT_EQ(data.hardwareStyle(), 1);
}

} // namespace

// The controller and the setup page read the Ethernet settings by the same rule: the global pair
// when the store has both keys; otherwise the page shows what the stored configuration holds (or
// the fresh-installation values without one), while the controller keeps its configuration's.
using EthernetSettingsTest = corvane::test::ViewsTest;

TEST_F(EthernetSettingsTest, TheControllerAndTheSetupPageAgreeOnTheEthernetSettings)
{
    struct Pair
    {
        bool address, port;
    };
    const Pair presence[] = {{false, false}, {true, false}, {false, true}, {true, true}};
    for (const Pair& globals : presence) {
        for (int configuration = -1; configuration < 4; ++configuration) {
            // configuration -1: no "TVKModelData" at all; else which of its pair it holds.
            const bool hasConfiguration = configuration >= 0;
            const Pair held = hasConfiguration ? presence[configuration] : Pair{false, false};
            SCOPED_TRACE(testing::Message() << "globals " << globals.address << globals.port
                                            << ", configuration " << configuration);
            QFile::remove(storePath);
            {
                corvane::TVKUserDefaults store(storePath);
                if (globals.address)
                    store.setObject(key::IPAdr, PlistValue(QStringLiteral("10.0.0.7")));
                if (globals.port)
                    store.setObject(key::EnetPrt, PlistValue(qint64(4321)));
                if (hasConfiguration) {
                    PlistValue model = PlistValue::makeDict();
                    if (held.address)
                        model.insert(key::IPAdr, PlistValue(QStringLiteral("172.16.0.9")));
                    if (held.port)
                        model.insert(key::EnetPrt, PlistValue(qint64(5004)));
                    store.setObject(key::ModelData, model);
                }
                ASSERT_TRUE(store.synchronize());
            }
            const bool global = globals.address && globals.port;
            const QString pageAddress = global              ? QStringLiteral("10.0.0.7")
                                        : !hasConfiguration ? QStringLiteral("0.0.0.0")
                                        : held.address      ? QStringLiteral("172.16.0.9")
                                                            : QString();
            const uint pagePort = global ? 4321 : !hasConfiguration ? 23 : held.port ? 5004 : 0;
            const QString modelAddress = global         ? QStringLiteral("10.0.0.7")
                                         : held.address ? QStringLiteral("172.16.0.9")
                                                        : QStringLiteral("192.168.1.250");
            const uint modelPort = global ? 4321 : held.port ? 5004 : 23;

            corvane::TVKUserDefaults store(storePath);
            std::unique_ptr<TVKSetupViewController> page =
                TVKSetupViewController::make(QStringLiteral("corvaneEthernetSetupViewController"),
                                             QStringLiteral("corvaneEthernet_Initial_Setup"),
                                             QStringLiteral("corvaneEthernet"), store, nullptr);
            auto* ethernet = static_cast<TVKEthernetSetupViewController*>(page.get());
            EXPECT_EQ(ethernet->ip(), pageAddress);
            EXPECT_EQ(ethernet->port(), pagePort);

            CorvaneController& c = startController();
            EXPECT_EQ(c.ipAddress(), modelAddress);
            EXPECT_EQ(c.ethernetPort(), modelPort);
            controller.reset();
        }
    }
}

namespace {

// The mean colour of a widget as drawn.
QColor meanColour(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    qint64 r = 0, g = 0, b = 0, n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            r += c.red();
            g += c.green();
            b += c.blue();
            ++n;
        }
    return n ? QColor(int(r / n), int(g / n), int(b / n)) : QColor();
}

int distance(const QColor& a, const QColor& b)
{
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
           std::abs(a.blue() - b.blue());
}

} // namespace

// The two help pages' buttons show which page is up, in a light and in a dark scheme alike.
TEST_F(SetupPageTest, TheHelpPageShownIsMarkedInAnyPalette)
{
    QPalette dark;
    for (const auto& [role, colour] : std::initializer_list<std::pair<QPalette::ColorRole, QColor>>{
             {QPalette::Window, QColor(0x35, 0x35, 0x35)},
             {QPalette::WindowText, Qt::white},
             {QPalette::Button, QColor(0x35, 0x35, 0x35)},
             {QPalette::ButtonText, Qt::white},
             {QPalette::Base, QColor(0x2a, 0x2a, 0x2a)},
             {QPalette::Text, Qt::white},
             {QPalette::Highlight, QColor(0x2a, 0x82, 0xda)},
             {QPalette::HighlightedText, Qt::white}})
        dark.setColor(role, colour);
    const QPalette before = QApplication::palette();
    for (const QPalette& scheme : {before, dark}) {
        QApplication::setPalette(scheme);
        auto setup = page();
        setup->resize(setup->sizeHint());
        QPushButton* network = nullptr;
        QPushButton* expanders = nullptr;
        for (QPushButton* each : setup->findChildren<QPushButton*>()) {
            if (each->text() == QStringLiteral("Network"))
                network = each;
            else if (each->text() == QStringLiteral("Expanders"))
                expanders = each;
        }
        ASSERT_TRUE(network && expanders);
        for (int round = 0; round < 2; ++round) {
            QPushButton* on = round == 0 ? network : expanders;
            QPushButton* off = round == 0 ? expanders : network;
            if (round == 1)
                expanders->click();
            SCOPED_TRACE(on->text().toStdString() + (scheme == dark ? " dark" : " light"));
            EXPECT_TRUE(on->isChecked());
            EXPECT_FALSE(off->isChecked());
            EXPECT_TRUE(on->font().bold());
            EXPECT_FALSE(off->font().bold());
            EXPECT_EQ(on->palette().color(QPalette::Button), scheme.color(QPalette::Highlight));
            EXPECT_EQ(off->palette().color(QPalette::Button), scheme.color(QPalette::Button));
            // As drawn, the two differ plainly, not by a shade.
            EXPECT_GT(distance(meanColour(*on), meanColour(*off)), 60);
        }
    }
    QApplication::setPalette(before);
}
