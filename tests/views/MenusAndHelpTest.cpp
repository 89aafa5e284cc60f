// What the menus and texts tell a person: why an item is greyed, where a command is, what
// File > Install… found, the keys that quit and open the manual, and the manual itself.
#include "QtPrinters.h"
#include "ViewsFixture.h"
#include "app/TVKMenuCommand.h"
#include "model/CorvaneModelData.h"
#include "views/TVKHelpWindow.h"
#include "views/TVKInstallerWindows.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKQtDialogs.h"
#include "views/editors/TVKDisplayPreview.h"

#include <QAction>
#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QFontInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>

using namespace corvane;
using namespace corvane::test;

namespace {

QString plain(QString text)
{
    return text.remove(QLatin1Char('&')).remove(QChar(0x2026)).trimmed();
}

// The item at "Menu › Item" in the menu bar. An item's title may carry the keyset's name
// ("Lock Default keyset" for "Lock keyset"), so the named words must appear in order.
const QAction* findMenuPath(const QMenuBar& bar, const QString& menuTitle, const QString& itemTitle)
{
    QStringList words = plain(itemTitle).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString& word : words)
        word = QRegularExpression::escape(word);
    const QRegularExpression pattern(QStringLiteral("^") + words.join(QStringLiteral("\\b.*\\b")) +
                                     QStringLiteral("$"));
    for (const QAction* top : bar.actions()) {
        if (!top->menu() || plain(top->text()) != plain(menuTitle))
            continue;
        for (const QAction* item : top->menu()->actions()) {
            if (pattern.match(plain(item->text())).hasMatch())
                return item;
        }
    }
    return nullptr;
}

// Every "Menu › Item" a text names.
std::vector<std::pair<QString, QString>> menuPaths(const QString& text)
{
    static const QRegularExpression path(
        QStringLiteral("([A-Z][A-Za-z]+) \u203a ([A-Z][A-Za-z0-9 ]*[A-Za-z0-9]\u2026?)"));
    std::vector<std::pair<QString, QString>> out;
    for (auto it = path.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        out.emplace_back(m.captured(1), m.captured(2));
    }
    return out;
}

// The bold phrases of a shipped page, where it names menus and items, as plain text.
QStringList boldPhrases(const QString& resource)
{
    QFile file(resource);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << resource.toStdString();
    static const QRegularExpression bold(QStringLiteral("<b>(.*?)</b>"),
                                         QRegularExpression::DotMatchesEverythingOption);
    QStringList out;
    const QString html = QString::fromUtf8(file.readAll());
    for (auto it = bold.globalMatch(html); it.hasNext();) {
        QTextDocument phrase;
        phrase.setHtml(it.next().captured(1));
        out << phrase.toPlainText().replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified();
    }
    return out;
}

} // namespace

TEST_F(ViewsTest, GreyedExpanderItemsSayWhyAndWhereToChangeIt)
{
    startApplication();
    auto& corvane = dynamic_cast<CorvaneController&>(*controller);
    CorvaneModelData& model = *corvane.corvaneModelData();
    const QMenuBar& bar = *app->mainWindow()->tvkMenuBar();
    struct Unit
    {
        const char* name;
        TVKMenuCommand item;
        void (CorvaneModelData::*set)(bool);
    };
    const std::vector<Unit> units = {
        {"TL", TVKMenuCommand::ShowExpander, &CorvaneModelData::setStandaloneTL},
        {"TLW", TVKMenuCommand::ShowTLW, &CorvaneModelData::setStandaloneTLW},
        {"TLW2", TVKMenuCommand::ShowTLW2, &CorvaneModelData::setStandaloneTLW2},
        {"NV", TVKMenuCommand::ShowNV, &CorvaneModelData::setStandaloneNV}};
    // None used without the RS, then each in turn.
    for (int standalone = -1; standalone < int(units.size()); ++standalone) {
        for (size_t i = 0; i < units.size(); ++i)
            (model.*units[i].set)(int(i) == standalone);
        controller->validateMenuItems();
        for (const Unit& unit : units) {
            SCOPED_TRACE(std::string(unit.name) + " with standalone " + std::to_string(standalone));
            const QAction* item = controller->menuItem(unit.item);
            ASSERT_NE(item, nullptr);
            ASSERT_TRUE(findMenuPath(bar, QStringLiteral("Window"), item->text()));
            if (item->isEnabled()) {
                EXPECT_TRUE(item->statusTip().isEmpty());
                continue;
            }
            const QString why = item->toolTip();
            EXPECT_EQ(item->statusTip(), why);
            EXPECT_TRUE(why.contains(QLatin1String(unit.name))) << why.toStdString();
            EXPECT_TRUE(why.contains(QStringLiteral("without the RS"))) << why.toStdString();
            const auto paths = menuPaths(why);
            ASSERT_EQ(paths.size(), 1u) << why.toStdString();
            const QAction* preferences =
                findMenuPath(bar, paths.front().first, paths.front().second);
            EXPECT_EQ(preferences, controller->menuItem(TVKMenuCommand::ShowPreferencePanel))
                << why.toStdString();
        }
    }
}

TEST_F(ViewsTest, EveryMenuPathTheShippedTextsNameIsInTheMenus)
{
    startApplication();
    const QMenuBar& bar = *app->mainWindow()->tvkMenuBar();
    QStringList resources;
    for (const QString& folder : {QStringLiteral(":/setup"), QStringLiteral(":/help")}) {
        for (QDirIterator it(folder, QDir::Files); it.hasNext();)
            resources << it.next();
    }
    ASSERT_GE(resources.size(), 3);
    // The pages also name menus of the units' own displays ("Setup › Network"): a path is the
    // program's when it starts with one of the program's menus.
    QStringList menus;
    for (const QAction* top : bar.actions())
        menus << plain(top->text());
    int named = 0;
    for (const QString& resource : resources) {
        for (const QString& phrase : boldPhrases(resource)) {
            for (const auto& [menu, item] : menuPaths(phrase)) {
                if (!menus.contains(menu))
                    continue;
                ++named;
                EXPECT_NE(findMenuPath(bar, menu, item), nullptr)
                    << resource.toStdString() << " names " << menu.toStdString() << " > "
                    << item.toStdString();
            }
        }
    }
    EXPECT_GT(named, 10);
}

TEST_F(ViewsTest, InstallFromTheMenuSaysTheComponentsAreCurrent)
{
    startApplication();
    ASSERT_TRUE(views.alerts.empty());
    controller->menuItem(TVKMenuCommand::HandleInstall)->trigger();
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts.front().message,
              QStringLiteral("The Corvane Ethernet components are installed and current."));
    EXPECT_FALSE(views.alerts.front().informativeText.isEmpty());
    EXPECT_EQ(views.alerts.front().buttons, QStringList{QStringLiteral("OK")});
}

TEST_F(ViewsTest, KeysQuitAndOpenTheManualWhateverThePlatformTheme)
{
    startApplication();
    TVKMainWindow& main = *app->mainWindow();
    main.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));

    // The manual: offline, from the program's resources, with every topic a new user needs.
    QTest::keyClick(&main, Qt::Key_F1);
    TVKHelpWindow* help = app->helpWindow();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    const QString manual = help->browser()->toPlainText();
    for (const char* topic :
         {"Keysets and layers", "Kinds of action", "Emulation modes",
          "Expanders with and without the RS", "The service and its status", "Keyset files"})
        EXPECT_TRUE(manual.contains(QLatin1String(topic))) << topic;
    // Every link within the manual leads somewhere.
    QFile source(QStringLiteral(":/help/corvane-help.html"));
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QString html = QString::fromUtf8(source.readAll());
    static const QRegularExpression link(QStringLiteral("href=\"#([a-z]+)\""));
    int links = 0;
    for (auto it = link.globalMatch(html); it.hasNext(); ++links) {
        const QString anchor = it.next().captured(1);
        EXPECT_TRUE(html.contains(QStringLiteral("name=\"%1\"").arg(anchor)))
            << anchor.toStdString();
    }
    EXPECT_EQ(links, 6);
    help->close();

    // Ctrl+Q ends the program from the main window even where the theme has no Quit key.
    main.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
    QSignalSpy ended(controller.get(), &TVKController::terminated);
    QTest::keyClick(&main, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(ended.size(), 1);
}

TEST_F(ViewsTest, InstallerLogRulesOffItsStepsWithoutUnderscores)
{
    startApplication();
    TVKInstallerDialog window(TVKInstallerDialog::Kind::Install, controller->defaults(),
                              controller->corvaneModelData(), app->mainWindow());
    TVKInstallerFace face;
    face.message = QStringLiteral("installing midi driver\n________\ninstalling application "
                                  "support\ncould not copy\n    Permission denied\n________\n"
                                  "*** Click Finish to continue ***");
    window.refresh(face);
    const QTextDocument& shown = *window.messageField()->document();
    EXPECT_FALSE(shown.toPlainText().contains(QStringLiteral("__")));
    EXPECT_TRUE(shown.toPlainText().contains(QStringLiteral("\n    Permission denied")))
        << "error lines keep their indent";
    int rules = 0;
    for (QTextBlock block = shown.begin(); block.isValid(); block = block.next())
        rules += block.blockFormat().hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
    EXPECT_EQ(rules, 2);
}

TEST_F(ViewsTest, DisplayPreviewKeepsFixedWidthCharactersInEveryTheme)
{
    const QFont before = QApplication::font();
    // Themes give their fonts in points or in pixels, in families of any kind.
    QFont pixels(QStringLiteral("DejaVu Sans"));
    pixels.setPixelSize(15);
    QFont points(QStringLiteral("DejaVu Serif"));
    points.setPointSizeF(10.5);
    for (const QFont& theme : {pixels, points}) {
        QApplication::setFont(theme);
        for (const auto look : {TVKDisplayPreview::Look::Lcd, TVKDisplayPreview::Look::LcdButton,
                                TVKDisplayPreview::Look::Timecode}) {
            TVKDisplayPreview preview(look);
            const QFontInfo shown(preview.displayFont());
            EXPECT_TRUE(shown.fixedPitch()) << shown.family().toStdString();
            EXPECT_GE(shown.pixelSize(), QFontInfo(theme).pixelSize());
        }
    }
    QApplication::setFont(before);
    EXPECT_FALSE(CorvaneViews::applicationIcon().pixmap(64, 64).isNull())
        << "the application's own icon is built in";
}

TEST_F(ViewsTest, AnAlertAsksInAHeadlineAndExplainsOnLinesOfAReadableLength)
{
    TVKQtDialogs dialogs;
    const std::vector<TVKAlert> alerts = {
        {QStringLiteral("Delete Keyset?"),
         QStringLiteral("Do you really want to delete the keyset \"XTerm\"?"),
         {QStringLiteral("Delete"), QStringLiteral("Don't Delete")}},
        {QStringLiteral("Keyset Already Exists"),
         QStringLiteral("A keyset for the application \"Ardour 8\" already exists. Do you want to "
                        "replace it with the one you are importing, or keep both?"),
         {QStringLiteral("Replace"), QStringLiteral("Cancel"), QStringLiteral("Keep Both")}},
    };
    for (const TVKAlert& alert : alerts) {
        SCOPED_TRACE(alert.message.toStdString());
        bool seen = false;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            const QLabel* headline = nullptr;
            const QLabel* explanation = nullptr;
            for (const QLabel* label : box->findChildren<QLabel*>()) {
                if (label->text() == alert.message)
                    headline = label;
                else if (label->text() == alert.informativeText)
                    explanation = label;
            }
            ASSERT_NE(headline, nullptr);
            ASSERT_NE(explanation, nullptr);
            EXPECT_TRUE(QFontInfo(headline->font()).bold()) << "the question stands out";
            EXPECT_GT(QFontInfo(headline->font()).weight(),
                      QFontInfo(explanation->font()).weight());
            // About fifty characters a line, as a reader takes them in, not a narrow column.
            const QFontMetrics metrics = explanation->fontMetrics();
            const int lines =
                metrics
                    .boundingRect(QRect(0, 0, explanation->contentsRect().width(), 10000),
                                  Qt::TextWordWrap, alert.informativeText)
                    .height() /
                metrics.lineSpacing();
            const int characters = int(alert.informativeText.size());
            EXPECT_LE(lines, characters / 40 + 1) << lines << " lines";
            EXPECT_GE(explanation->width(),
                      std::min(metrics.horizontalAdvance(alert.informativeText),
                               metrics.averageCharWidth() * 40));
            seen = true;
            QTest::keyClick(box, Qt::Key_Escape);
        });
        EXPECT_EQ(dialogs.runAlert(alert), 1) << "Escape is the second button, the way out";
        EXPECT_TRUE(seen);
    }
}

TEST_F(ViewsTest, InstallerWarningAndProgressLineUpWithTheTextBesideTheIcon)
{
    startApplication();
    for (const auto kind :
         {TVKInstallerDialog::Kind::Install, TVKInstallerDialog::Kind::Uninstall}) {
        TVKInstallerDialog window(kind, controller->defaults(), controller->corvaneModelData(),
                                  app->mainWindow());
        TVKInstallerFace face;
        face.message = QStringLiteral("Additional software components must be installed.");
        face.quitMIDIWarningShown = true;
        face.restartLabelShown = true;
        face.proceed = {QStringLiteral("Install"), true, true};
        window.refresh(face);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        const auto textLeft = [&](const QWidget* w, int inset) {
            return w->mapTo(&window, QPoint(inset, 0)).x();
        };
        const QTextBrowser* message = window.messageField();
        const int text = textLeft(message->viewport(), int(message->document()->documentMargin()));
        const QLabel* warning = window.quitMIDIWarningField();
        EXPECT_EQ(textLeft(warning, warning->contentsRect().left() + warning->margin()), text);
        const QLabel* restart = window.restartMIDILable();
        EXPECT_EQ(textLeft(restart, restart->contentsRect().left() + restart->margin()), text);
        window.hide();
    }
}
