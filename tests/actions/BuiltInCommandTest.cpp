// The built-in command catalogue and the built-in editor's choices, on the shipped example
// catalogue and on catalogues written to a temporary folder.
#include "QtPrinters.h"
#include "TestConfig.h"
#include "actions/BuiltInCommandCatalogue.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/editors/BuiltInActionEditor.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString kShippedCatalogue =
    QStringLiteral(CORVANE_SOURCE_DIR) +
    QStringLiteral("/resources/BuiltInCommands/TVK_Built_In_Commands.xml");

PlistValue command(const QString& name, const QString& usage, int mode, int keyOrProc,
                   const QString& modifiers = QString())
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(QStringLiteral("CommandName"), PlistValue(name));
    dict.insert(QStringLiteral("Usage"), PlistValue(usage));
    dict.insert(QStringLiteral("Mode"), PlistValue(mode));
    if (mode == 0) {
        dict.insert(QStringLiteral("KeyCode"), PlistValue(keyOrProc));
        dict.insert(QStringLiteral("Modifiers"), PlistValue(modifiers));
    } else {
        dict.insert(QStringLiteral("Proc"), PlistValue(keyOrProc));
    }
    return dict;
}

PlistValue group(const QString& name, std::initializer_list<PlistValue> commands)
{
    PlistValue list = PlistValue::makeArray();
    for (const PlistValue& c : commands)
        list.append(c);
    PlistValue dict = PlistValue::makeDict();
    dict.insert(QStringLiteral("GroupName"), PlistValue(name));
    dict.insert(QStringLiteral("Commands"), list);
    return dict;
}

// A catalogue for the application "ABCD" (no bundle identifier): a keystroke group, an
// encoder-only group and a separator.
PlistValue testCatalogue()
{
    PlistValue groups = PlistValue::makeArray();
    groups.append(group(QStringLiteral("Edit"),
                        {command(QStringLiteral("Undo"), QStringLiteral("button"), 0, 0x1002C,
                                 QStringLiteral("cmd")),
                         command(QStringLiteral("Scrub"), QStringLiteral("encoder"), 2, 9),
                         command(QStringLiteral("Render"), QStringLiteral("button"), 1, 42)}));
    groups.append(group(QStringLiteral("Knobs"),
                        {command(QStringLiteral("Zoom"), QStringLiteral("encoder"), 0, 13)}));
    groups.append(group(QStringLiteral("_______"), {}));
    groups.append(group(QStringLiteral("Buttons "),
                        {command(QStringLiteral("Save"), QStringLiteral("Button"), 0, 31)}));
    PlistValue root = PlistValue::makeDict();
    root.insert(QStringLiteral("ABCD"), groups);
    return root;
}

} // namespace

TEST(BuiltInCatalogue, SupportFolderFollowsXdgDataHome)
{
    const QByteArray saved = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", "/tmp/corvane-data");
    EXPECT_EQ(BuiltInCommandCatalogue::defaultCataloguePath(),
              QStringLiteral("/tmp/corvane-data/Tavrik/TVK_Built_In_Commands.xml"));
    qputenv("XDG_DATA_HOME", "relative/not/allowed");
    EXPECT_TRUE(
        BuiltInCommandCatalogue::supportFolder().endsWith(QStringLiteral("/.local/share/Tavrik")));
    qunsetenv("XDG_DATA_HOME");
    EXPECT_TRUE(
        BuiltInCommandCatalogue::supportFolder().endsWith(QStringLiteral("/.local/share/Tavrik")));
    if (!saved.isNull())
        qputenv("XDG_DATA_HOME", saved);
}

TEST(BuiltInCatalogue, ModifierTextAndLookupKey)
{
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QStringLiteral("cmd shift")), 0u);
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QStringLiteral("cmd+shift")), 0x120000u);
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QStringLiteral("cmdshift")), 0x120000u);
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QStringLiteral("ctrl-opt")), 0xC0000u);
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QStringLiteral(" ctrl")), 0u);
    EXPECT_EQ(BuiltInCommandCatalogue::parseModifiers(QString()), 0u);
    EXPECT_EQ(BuiltInCommandCatalogue::lookupKey(QString(), fourCC("ABCD")),
              QStringLiteral("ABCD"));
    EXPECT_EQ(BuiltInCommandCatalogue::lookupKey(QStringLiteral("org.x.App"), fourCC("ABCD")),
              QStringLiteral("org.x.App"));
}

TEST(BuiltInCatalogue, FiltersByUsageAndKeepsSeparators)
{
    const BuiltInCommandCatalogue catalogue(testCatalogue());
    const auto buttons = catalogue.commandsFor(QStringLiteral("ABCD"), QStringLiteral("button"));
    ASSERT_EQ(buttons.size(), 2u) << "the encoder-only group and the \"Button\" usage are dropped";
    EXPECT_EQ(buttons[0].name, QStringLiteral("Edit"));
    ASSERT_EQ(buttons[0].commands.size(), 2u);
    EXPECT_EQ(buttons[0].commands[0].keyCode, 0x2Cu);
    EXPECT_EQ(buttons[0].commands[0].modifiers, 0x100000u);
    EXPECT_EQ(buttons[0].commands[1].procedure, 42);
    EXPECT_TRUE(buttons[1].isSeparator());
    EXPECT_TRUE(buttons[1].commands.empty());

    const auto encoders = catalogue.commandsFor(QStringLiteral("ABCD"), QStringLiteral("encoder"));
    ASSERT_EQ(encoders.size(), 3u);
    EXPECT_EQ(encoders[1].name, QStringLiteral("Knobs"));
    EXPECT_TRUE(catalogue.commandsFor(QStringLiteral("WXYZ"), QStringLiteral("button")).empty());
}

TEST(BuiltInCatalogue, MissingOrUnreadableFileIsAnEmptyCatalogue)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_TRUE(
        BuiltInCommandCatalogue::load(dir.filePath(QStringLiteral("absent.xml"))).isEmpty());
    QFile broken(dir.filePath(QStringLiteral("broken.xml")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<?xml version=\"1.0\"?><plist><dict><key>ABCD</key><array><dict>");
    broken.close();
    EXPECT_TRUE(BuiltInCommandCatalogue::load(broken.fileName()).isEmpty());
    QFile list(dir.filePath(QStringLiteral("list.xml")));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write(PlistCodec::write(PlistValue::makeArray()));
    list.close();
    EXPECT_TRUE(BuiltInCommandCatalogue::load(list.fileName()).isEmpty());
}

TEST(BuiltInCatalogue, ShippedExampleLoadsAndEveryCommandIsWellFormed)
{
    const PlistReadResult read = PlistCodec::readFile(kShippedCatalogue);
    ASSERT_TRUE(read.ok) << read.error.toString().toStdString();
    const BuiltInCommandCatalogue catalogue = BuiltInCommandCatalogue::load(kShippedCatalogue);
    ASSERT_FALSE(catalogue.isEmpty());
    const QStringList usages = {QStringLiteral("button"),    QStringLiteral("encoder"),
                                QStringLiteral("trackball"), QStringLiteral("ring"),
                                QStringLiteral("wheel"),     QStringLiteral("lcd"),
                                QStringLiteral("led")};
    int commands = 0;
    bool sawSeparator = false;
    for (const QString& app : read.value.keys()) {
        const PlistValue& groups = read.value.value(app);
        ASSERT_TRUE(groups.isArray()) << app.toStdString();
        for (qsizetype g = 0; g < groups.size(); ++g) {
            const PlistValue& grp = groups.at(g);
            ASSERT_TRUE(grp.value(u"GroupName").isString());
            sawSeparator |=
                grp.value(u"GroupName").toString() == BuiltInCommandGroup::separatorName();
            const PlistValue& list = grp.value(u"Commands");
            for (qsizetype c = 0; c < list.size(); ++c, ++commands) {
                const PlistValue& cmd = list.at(c);
                const QString name = cmd.value(u"CommandName").toString();
                EXPECT_FALSE(name.isEmpty());
                EXPECT_TRUE(usages.contains(cmd.value(u"Usage").toString())) << name.toStdString();
                if (cmd.value(u"Mode").toInteger() == 0) {
                    EXPECT_TRUE(cmd.value(u"KeyCode").isInteger()) << name.toStdString();
                    EXPECT_FALSE(cmd.value(u"Modifiers").toString().contains(QLatin1Char(' ')))
                        << name.toStdString();
                } else {
                    EXPECT_TRUE(cmd.value(u"Proc").isInteger()) << name.toStdString();
                }
            }
        }
    }
    EXPECT_GE(read.value.size(), 2);
    EXPECT_GT(commands, 10);
    EXPECT_TRUE(sawSeparator);
}

class BuiltInEditorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        path = dir.filePath(BuiltInCommandCatalogue::catalogueFileName());
        ASSERT_TRUE(PlistCodec::writeFile(path, testCatalogue()));
        model = std::make_unique<CorvaneModelData>();
        model->addKeysetWithName(QStringLiteral("Editor"), fourCC("ABCD"));
        keyset = model->keysetAtIndex(1);
    }

    QTemporaryDir dir;
    QString path;
    std::unique_ptr<CorvaneModelData> model;
    TVKKeyset* keyset = nullptr;
    TVKActionContainer container;
};

TEST_F(BuiltInEditorTest, ListAndTitleForTheSelectedKeyset)
{
    BuiltInActionEditor editor(container, TVKButtonBuiltInAction::kActionType, path);
    int redraws = 0;
    editor.setStateChangedHandler([&] { ++redraws; });
    EXPECT_EQ(editor.usageWord(), QStringLiteral("button"));
    EXPECT_EQ(editor.title(), QStringLiteral("No Built In Commands available for Default"));
    model->setSelectedKeysetIndex(1);
    NotificationCenter::defaultCenter().post(corvane::note::SelectedKeysetChange{});
    EXPECT_EQ(redraws, 1);
    EXPECT_EQ(editor.title(), QStringLiteral("Built In Commands for Editor:"));
    ASSERT_EQ(editor.groups().size(), 2u);
    EXPECT_TRUE(editor.isGroupRowEnabled(0));
    EXPECT_FALSE(editor.isGroupRowLeaf(0));
    EXPECT_FALSE(editor.isGroupRowEnabled(1));
    EXPECT_TRUE(editor.isGroupRowLeaf(1));

    editor.loadCommandList(model->keysetAtIndex(0), path);
    EXPECT_EQ(editor.title(), QStringLiteral("No Built In Commands available for Default"));
    editor.loadCommandList(keyset, dir.filePath(QStringLiteral("missing.xml")));
    EXPECT_TRUE(editor.groups().empty());
    EXPECT_EQ(editor.title(), QStringLiteral("No Built In Commands available for Editor"));
}

TEST_F(BuiltInEditorTest, ChoosingCommandsMakesOrUpdatesTheAction)
{
    BuiltInActionEditor editor(container, TVKButtonBuiltInAction::kActionType, path);
    editor.loadCommandList(keyset, path);
    EXPECT_TRUE(editor.browserPath().isNull());

    EXPECT_FALSE(editor.chooseCommand(0, 0, false).chosen) << "only the last column acts";
    EXPECT_FALSE(editor.chooseCommand(1, 0).chosen) << "a separator has no commands";

    const auto choice = editor.chooseCommand(0, 0);
    EXPECT_TRUE(choice.chosen);
    EXPECT_EQ(choice.userName, QStringLiteral("Undo"));
    auto* action = dynamic_cast<TVKButtonBuiltInAction*>(container.action());
    ASSERT_TRUE(action);
    EXPECT_EQ(action->delay(), 0.0f);
    EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Built In- Edit: Undo"));
    ASSERT_EQ(action->sequence().size(), 1u);
    EXPECT_EQ(action->sequence()[0], TVKKeystrokeElement(QString(), 0x2C, 0x100000));
    EXPECT_EQ(editor.browserPath(), QStringLiteral("|Edit|Undo"));

    // A procedure command updates the same action and keeps the old keystroke.
    editor.chooseCommand(0, 1);
    ASSERT_EQ(container.action(), action);
    EXPECT_EQ(action->mode(), 1);
    EXPECT_EQ(action->procedure(), 42);
    EXPECT_EQ(action->commandIndex(), 1);
    EXPECT_EQ(action->sequence()[0].keyCode(), 0x2Cu);
    PlistValue stored = PlistValue::makeDict();
    action->writeTo(stored);
    EXPECT_EQ(stored.value(key::KeySeq).at(0).value(key::KCode).toInteger(), 0x2C);
    EXPECT_FALSE(stored.value(key::KeySeq).at(0).contains(key::Char));
    EXPECT_EQ(stored.value(u"CommandName").toString(), QStringLiteral("Render"));

    // A new procedure action carries a zero keystroke.
    TVKActionContainer other;
    BuiltInActionEditor encoderEditor(other, TVKEncoderBuiltInAction::kActionType, path);
    encoderEditor.loadCommandList(keyset, path);
    encoderEditor.chooseCommand(0, 0);
    auto* scrub = dynamic_cast<TVKEncoderBuiltInAction*>(other.action());
    ASSERT_TRUE(scrub);
    EXPECT_EQ(scrub->procedure(), 9);
    EXPECT_EQ(scrub->sequence()[0], TVKKeystrokeElement(QString(), 0, 0));
}
