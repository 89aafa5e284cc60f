// The keyset tool describes every kind of action, restored from a keyset file, with the system's
// exact texts. Runs the real program on a file written to a temporary folder and compares the
// described actions with a golden file, whole.
#include "TestConfig.h"
#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/PlistCodec.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kTool =
    QStringLiteral(CORVANE_BINARY_DIR) + QStringLiteral("/tools/keyset/corvane-keyset");
const QString kGolden = QStringLiteral(CORVANE_SOURCE_DIR) +
                        QStringLiteral("/tests/actions/data/describe_every_kind.txt");

template <typename Action, typename... Args>
void put(TVKControl* control, Args&&... args)
{
    control->adoptAction(std::make_unique<Action>(control, std::forward<Args>(args)...));
}

// The MIDI and mouse initialisers take the control last.
template <typename Action, typename... Args>
void putLast(TVKControl* control, Args&&... args)
{
    control->adoptAction(std::make_unique<Action>(std::forward<Args>(args)..., control));
}

template <typename Multiple>
void keys(TVKControl* control)
{
    auto action = std::make_unique<Multiple>(control, 50, false);
    TVKKeystrokeList list;
    TVKKeySequenceAction::addKeystroke(QStringLiteral("x"), 45, 0x40000, list);
    for (int direction = 0; direction + 1 < action->numberOfDirections(); ++direction)
        action->setSequence(list, direction);
    control->adoptAction(std::move(action));
}

template <typename Mouse>
void mouse(TVKControl* control, unsigned type)
{
    auto action = std::make_unique<Mouse>(1u, control);
    action->setLocationType(type);
    action->setLocation(type == 3 || type == 6 ? QPointF(0.5, 20) : QPointF(120, 45));
    if (type != 4)
        action->setWindowName(QStringLiteral("Arrange"));
    control->adoptAction(std::move(action));
}

template <typename BuiltIn>
void builtIn(TVKControl* control, int mode)
{
    control->adoptAction(
        std::make_unique<BuiltIn>(control, 0u, false, 0, 1, QStringLiteral("Transport"),
                                  QStringLiteral("Play"), mode, mode ? 4 : 0, 57u, 0u));
}

// One layer per control kind's family, every kind of action on some control.
void assignEveryKind(TVKKeyset& keyset)
{
    const quint8 noteOn[] = {0x90, 0x3C, 0xF1};
    const quint8 program[] = {0xC3, 0x05};
    const quint8 clock[] = {0xF8};

    TVKLayer* one = keyset.layerAtIndex(0);
    TVKControl* button = one->controlForGroup(0, 0);
    builtIn<TVKButtonBuiltInAction>(button, 0);
    auto sequence =
        std::make_unique<TVKButtonKeySequenceAction>(one->controlForGroup(0, 1), 50, true);
    sequence->addKeystroke(QStringLiteral("a"), 30, 0x100000, sequence->sequence());
    sequence->addKeystroke(QStringLiteral("Page Up"), 104, 0, sequence->sequence());
    one->controlForGroup(0, 1)->adoptAction(std::move(sequence));
    mouse<TVKButtonMouseAction>(one->controlForGroup(0, 2), 1);
    putLast<TVKButtonMIDIAction>(one->controlForGroup(0, 3), 2u, noteOn, 3u);
    put<TVKButtonSpecialAction>(one->controlForGroup(0, 4), 5);
    put<TVKButtonEmulationAction>(one->controlForGroup(1, 0), 0, 3, true, false);
    put<TVKButtonEmulationAction>(one->controlForGroup(1, 1), 16, 4, false, false);
    putLast<TVKButtonMIDIAction>(one->controlForGroup(1, 2), 2u, program, 2u);
    putLast<TVKButtonMIDIAction>(one->controlForGroup(1, 3), 2u, clock, 1u);
    putLast<TVKButtonMIDIAction>(one->controlForGroup(1, 4), 1u, nullptr, 0u);
    for (int type = 2; type <= 7; ++type)
        mouse<TVKButtonMouseAction>(one->controlForGroup(5, type - 2), unsigned(type));
    mouse<TVKButtonMouseAction>(one->controlForGroup(5, 6), 0);
    putLast<TVKButtonMouseAction>(one->controlForGroup(5, 7), 10u);

    // Encoders, faders and the 4-way switch.
    TVKLayer* two = keyset.layerAtIndex(1);
    builtIn<TVKEncoderBuiltInAction>(two->controlForGroup(4, 0), 1);
    keys<TVKEncoderKeySequenceAction>(two->controlForGroup(4, 1));
    mouse<TVKEncoderMouseAction>(two->controlForGroup(4, 2), 3);
    putLast<TVKEncoderMIDIAction>(two->controlForGroup(4, 3), 2u, program, 2u);
    put<TVKEncoderSpecialAction>(two->controlForGroup(4, 4), 2);
    put<TVKEncoderEmulationAction>(two->controlForGroup(3, 0), 2, 0, false, true);
    put<TVKEncoderEmulationAction>(two->controlForGroup(3, 1), 0, 6, false, false);
    put<TVKFaderEmulationAction>(two->controlForGroup(21, 0), 1, 8, false, false);
    builtIn<TVK4WayBuiltInAction>(two->controlForGroup(11, 0), 0);
    keys<TVK4WayKeySequenceAction>(two->controlForGroup(11, 1));
    mouse<TVK4WayMouseAction>(two->controlForGroup(11, 2), 6);
    putLast<TVK4WayMIDIAction>(two->controlForGroup(12, 0), 2u, nullptr, 0u, noteOn, 3u);
    putLast<TVK4WayMIDIAction>(two->controlForGroup(12, 1), 1u, nullptr, 0u, nullptr, 0u);
    put<TVKSpecial4WayAction>(two->controlForGroup(12, 2), 9);

    // Shuttle and jog.
    TVKLayer* three = keyset.layerAtIndex(2);
    keys<TVKShuttleKeySequenceAction>(three->controlForGroup(1, 6));
    keys<TVKJogKeySequenceAction>(three->controlForGroup(1, 5));
    builtIn<TVKShuttleBuiltInAction>(three->controlForGroup(0, 0), 1);
    mouse<TVKShuttleMouseAction>(three->controlForGroup(0, 1), 5);
    putLast<TVKShuttleMIDIAction>(three->controlForGroup(0, 2), 2u, noteOn, 3u);
    put<TVKShuttleSpecialAction>(three->controlForGroup(0, 3), 10);
    builtIn<TVKJogBuiltInAction>(three->controlForGroup(0, 4), 0);
    mouse<TVKJogMouseAction>(three->controlForGroup(2, 0), 7);
    putLast<TVKJogMIDIAction>(three->controlForGroup(2, 1), 1u, nullptr, 0u);
    put<TVKSpecialJogAction>(three->controlForGroup(2, 2), 8);
    put<TVKJogEmulationAction>(three->controlForGroup(2, 3), 3u);

    // Displays.
    TVKLayer* four = keyset.layerAtIndex(3);
    put<TVKLCDDisplayTextAction>(four->displayControlForGroup(0, 0), QStringLiteral("Mix \"A\""));
    put<TVKLCDDisplayEncoderNameAction>(four->displayControlForGroup(0, 1));
    put<TVKLCDDisplayEmulationAction>(four->displayControlForGroup(0, 2), 0);
    put<TVKLCDDisplayButtonNameAction>(four->displayControlForGroup(0, 3));
    builtIn<TVKBuiltInLCDDisplayAction>(four->displayControlForGroup(0, 4), 1);
    put<TVKTimecodeDisplayEmulationAction>(four->displayControlForGroup(1, 0));
    builtIn<TVKBuiltInTimecodeDisplayAction>(keyset.layerAtIndex(2)->displayControlForGroup(1, 0),
                                             1);
    put<CorvaneHiResLCDButtonDisplayTextAction>(four->displayControlForGroup(2, 0), 2u,
                                                QStringLiteral("Record"), QStringLiteral("Arm it"),
                                                QString(), QString());
    put<CorvaneLCDButtonDisplayIconAction>(four->displayControlForGroup(2, 1), 12);
    put<CorvaneButtonDisplayMidiEmulationAction>(four->displayControlForGroup(2, 2), 2u);
    put<CorvaneButtonDisplayMidiEmulationAction>(four->displayControlForGroup(2, 3), 1u);
    put<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(four->displayControlForGroup(3, 0));
    // Never restored from a file: its display comes back without an action.
    put<TVKLCDButtonDisplayTextAction>(four->displayControlForGroup(2, 4), QStringLiteral("gone"));
}

QStringList describedActions(const QByteArray& output)
{
    QStringList lines;
    for (const QByteArray& line : output.split('\n')) {
        const QString text = QString::fromUtf8(line);
        if (text.isEmpty() || text.endsWith(QLatin1String("\tNo Action Assigned")) ||
            text.endsWith(QLatin1String("\tNo Function Assigned")))
            continue;
        lines.append(text);
    }
    return lines;
}

} // namespace

TEST(DescribeEveryKind, KeysetFileDescribedByTheKeysetTool)
{
    ASSERT_TRUE(QFile::exists(kTool)) << kTool.toStdString();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("every-kind.CvKs"));
    {
        const Corvane_Constant_Server constants;
        CorvaneModelData model;
        TVKKeyset* keyset = model.selectedKeyset();
        keyset->setName(QStringLiteral("Every Kind"));
        keyset->setEmulationMode(corvane::EmulationMode::A);
        assignEveryKind(*keyset);
        corvane::PlistValue dict = corvane::PlistValue::makeDict();
        keyset->writeTo(dict);
        ASSERT_TRUE(corvane::PlistCodec::writeFile(path, dict));
    }

    QProcess tool;
    tool.start(kTool, {QStringLiteral("describe"), path});
    ASSERT_TRUE(tool.waitForFinished(60000));
    ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
    const QStringList actual = describedActions(tool.readAllStandardOutput());

    QFile golden(kGolden);
    if (qEnvironmentVariableIsSet("CORVANE_UPDATE_GOLDEN")) {
        ASSERT_TRUE(golden.open(QIODevice::WriteOnly | QIODevice::Truncate));
        golden.write(actual.join(QLatin1Char('\n')).toUtf8() + '\n');
        GTEST_SKIP() << "golden file written";
    }
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly)) << kGolden.toStdString();
    const QStringList expected = describedActions(golden.readAll());
    EXPECT_EQ(actual.size(), expected.size());
    for (qsizetype i = 0; i < qMax(actual.size(), expected.size()); ++i)
        EXPECT_EQ(actual.value(i).toStdString(), expected.value(i).toStdString())
            << "line " << i + 1;
}
