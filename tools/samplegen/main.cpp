// Writes the sample configuration shipped in resources/samples: a few keysets for typical Linux
// audio and video applications, made through the model and action classes so that the file is
// exactly what the program itself would store.
//
//   corvane-samplegen OUT.plist

#include "ConfigGenerator.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/PlistCodec.h"
#include "model/CorvaneLayer.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QCoreApplication>
#include <array>
#include <cstdio>

namespace {

// Modifier bits of a keystroke and the evdev codes of the keys the samples use.
constexpr quint64 kShift = 0x20000;
constexpr quint64 kControl = 0x40000;
constexpr quint32 kKeySpace = 57, kKeyHome = 102, kKeyEnd = 107, kKeyR = 19, kKeyZ = 44, kKeyJ = 36,
                  kKeyK = 37, kKeyL = 38, kKeyLeft = 105, kKeyRight = 106, kKeyI = 23, kKeyO = 24,
                  kKeyM = 50, kKeyTab = 15, kKey1 = 2;

// Model-data groups of the surface.
enum Group
{
    M = 0,
    Transport = 1,
    W = 2,
    LeftEncoders = 3,
    RightEncoders = 4,
    F = 5,
    Bank = 7,
    Trackballs = 11,
    TrackballRings = 12,
    Keypad = 13,
    Cursor = 14,
    Mutes = 16,
    Solos = 17,
    Faders = 21,
    TLWLCDButtons = 23,
    NVLCDButtons = 24,
};

void keys(TVKControl* control, const QString& userName,
          std::initializer_list<std::pair<quint32, quint64>> strokes,
          std::initializer_list<const char*> labels)
{
    auto action = std::make_unique<TVKButtonKeySequenceAction>(control, 50, false);
    auto label = labels.begin();
    for (const auto& [code, modifiers] : strokes) {
        TVKKeySequenceAction::addKeystroke(QString::fromLatin1(*label), code, modifiers,
                                           action->sequence());
        if (label + 1 != labels.end())
            ++label;
    }
    control->adoptAction(std::move(action));
    if (!userName.isEmpty())
        control->setUserName(userName);
}

void special(TVKControl* control, int mode)
{
    control->setActionMode(corvane::ActionMode::Developer);
    if (auto* action = dynamic_cast<TVKSpecialAction*>(control->action()))
        action->setMode(mode);
}

void customMidi(TVKControl* control, quint8 status, quint8 data1)
{
    control->setActionMode(corvane::ActionMode::NativeMIDI);
    if (auto* midi = dynamic_cast<TVKMIDIAction*>(control->action())) {
        const std::array<quint8, 3> message = {status, data1, TVKMIDIAction::kValuePlaceholder};
        midi->setMidiMode(TVKMIDIAction::Custom);
        midi->setMidiMessage(message.data(), 3);
    }
}

void text(TVKControl* display, const QString& text)
{
    display->adoptAction(std::make_unique<TVKLCDDisplayTextAction>(display, text));
}

// The first two layers start from the surface's native MIDI; the layer selectors sit on M1..M4
// of every layer.
void baseLayers(TVKKeyset& keyset)
{
    for (int layer = 0; layer < 2; ++layer)
        keyset.layerAtIndex(layer)->setAllControlsToActionMode(corvane::ActionMode::NativeMIDI);
    for (int layer = 0; layer < 4; ++layer)
        for (int m = 0; m < 4; ++m)
            special(keyset.controlForLayer(layer, M, m), 4 + m);
}

void ardour(TVKKeyset& keyset)
{
    baseLayers(keyset);
    TVKLayer* layer = keyset.layerAtIndex(0);
    keys(layer->controlForGroup(Transport, 0), QString(), {{kKeyHome, 0}}, {"Home"});
    keys(layer->controlForGroup(Transport, 1), QString(), {{kKeyEnd, 0}}, {"End"});
    keys(layer->controlForGroup(Transport, 3), QStringLiteral("Play"), {{kKeySpace, 0}}, {"space"});
    keys(layer->controlForGroup(Transport, 4), QStringLiteral("Rec"), {{kKeyR, kShift}}, {"R"});
    keys(layer->controlForGroup(W, 0), QStringLiteral("Undo"), {{kKeyZ, kControl}}, {"z"});
    keys(layer->controlForGroup(W, 1), QStringLiteral("Redo"), {{kKeyZ, kControl | kShift}}, {"Z"});
    // The console strips follow the emulated mixer.
    for (int group : {int(Mutes), int(Solos), int(Faders)})
        for (int i = 0; i < 8; ++i)
            layer->controlForGroup(group, i)->setActionMode(corvane::ActionMode::Emulation);
    layer->controlForGroup(Faders, 0)->setUserName(QStringLiteral("Kick"));
    layer->controlForGroup(Faders, 1)->setUserName(QStringLiteral("Snare"));
    layer->controlForGroup(Faders, 2)->setUserName(QStringLiteral("Vox Lead"));
    special(layer->controlForGroup(Trackballs, 0), 2);
    special(layer->controlForGroup(Keypad, 15), 8);
    text(layer->displayControlForGroup(0, 0), QStringLiteral("Ardour  Session: Album Mix"));
    layer->displayControlForGroup(0, 2)->adoptAction(
        std::make_unique<TVKLCDDisplayEncoderNameAction>(layer->displayControlForGroup(0, 2)));
    layer->displayControlForGroup(1, 0)->setActionMode(corvane::ActionMode::Emulation);

    // NV buttons grouped by instrument, on the first layer.
    auto* corvane = static_cast<CorvaneLayer*>(layer);
    corvane->createCorvaneNVGroupNamed(QStringLiteral("Drums"));
    corvane->createCorvaneNVGroupNamed(QStringLiteral("Vocals"));
    for (int b = 0; b < 4; ++b) {
        corvane->addButtonID(b, 0);
        corvane->addButtonID(8 + b, 1);
    }
    for (int b = 0; b < 4; ++b) {
        auto* button =
            static_cast<TVKMultiColorButtonControl*>(layer->controlForGroup(NVLCDButtons, b));
        button->setOnColor(48);  // bright red
        button->setOffColor(16); // dim red
    }

    // Layer 2: the strips' mutes and solos by custom controller messages.
    TVKLayer* second = keyset.layerAtIndex(1);
    for (int i = 0; i < 8; ++i) {
        customMidi(second->controlForGroup(Mutes, i), 0xB0, quint8(20 + i));
        customMidi(second->controlForGroup(Solos, i), 0xB0, quint8(40 + i));
    }
}

void kdenlive(TVKKeyset& keyset)
{
    baseLayers(keyset);
    TVKLayer* layer = keyset.layerAtIndex(0);
    keys(layer->controlForGroup(Transport, 0), QStringLiteral("Rewind"), {{kKeyJ, 0}}, {"j"});
    keys(layer->controlForGroup(Transport, 2), QStringLiteral("Pause"), {{kKeyK, 0}}, {"k"});
    keys(layer->controlForGroup(Transport, 3), QStringLiteral("Forward"), {{kKeyL, 0}}, {"l"});
    keys(layer->controlForGroup(F, 0), QStringLiteral("In"), {{kKeyI, 0}}, {"i"});
    keys(layer->controlForGroup(F, 1), QStringLiteral("Out"), {{kKeyO, 0}}, {"o"});
    keys(layer->controlForGroup(F, 2), QStringLiteral("Marker"), {{kKeyM, 0}}, {"m"});
    keys(layer->controlForGroup(F, 3), QStringLiteral("Trim In"), {{kKeyK, 0}, {kKeyI, 0}},
         {"k", "i"});

    // Jog steps frames, shuttle runs the J/K/L transport.
    TVKControl* jog = layer->controlForGroup(Transport, 5);
    auto jogKeys = std::make_unique<TVKJogKeySequenceAction>(jog, 50, true);
    TVKKeystrokeList back;
    TVKKeySequenceAction::addKeystroke(QStringLiteral("Left"), kKeyLeft, 0, back);
    TVKKeystrokeList forward;
    TVKKeySequenceAction::addKeystroke(QStringLiteral("Right"), kKeyRight, 0, forward);
    jogKeys->setSequence(back, 0);
    jogKeys->setSequence(forward, 1);
    jog->adoptAction(std::move(jogKeys));

    TVKControl* shuttle = layer->controlForGroup(Transport, 6);
    auto shuttleKeys = std::make_unique<TVKShuttleKeySequenceAction>(shuttle, 50, true);
    TVKKeystrokeList j, l, k;
    TVKKeySequenceAction::addKeystroke(QStringLiteral("j"), kKeyJ, 0, j);
    TVKKeySequenceAction::addKeystroke(QStringLiteral("l"), kKeyL, 0, l);
    TVKKeySequenceAction::addKeystroke(QStringLiteral("k"), kKeyK, 0, k);
    shuttleKeys->setSequence(j, 0);
    shuttleKeys->setSequence(l, 1);
    shuttleKeys->setSequence(k, 2);
    shuttle->adoptAction(std::move(shuttleKeys));

    // The timeline scrolls and zooms with the mouse wheel under the right encoders.
    auto scroll =
        std::make_unique<TVKEncoderMouseAction>(6, layer->controlForGroup(RightEncoders, 0));
    scroll->setLocationType(1);
    scroll->setLocation(QPointF(420, 610));
    scroll->setWindowName(QStringLiteral("Kdenlive"));
    layer->controlForGroup(RightEncoders, 0)->adoptAction(std::move(scroll));
    layer->controlForGroup(RightEncoders, 0)->setUserName(QStringLiteral("Scroll"));
    auto zoom =
        std::make_unique<TVKEncoderMouseAction>(7, layer->controlForGroup(RightEncoders, 1));
    zoom->setModifierFlags(unsigned(kControl));
    layer->controlForGroup(RightEncoders, 1)->adoptAction(std::move(zoom));
    auto click = std::make_unique<TVKButtonMouseAction>(1, layer->controlForGroup(W, 6));
    click->setLocationType(3);
    click->setLocation(QPointF(0.5, 36));
    click->setWindowName(QStringLiteral("Kdenlive"));
    click->setUsePartialWindowName(true);
    layer->controlForGroup(W, 6)->adoptAction(std::move(click));

    text(layer->displayControlForGroup(0, 0), QStringLiteral("Kdenlive  Timeline"));
    text(layer->displayControlForGroup(0, 1), QStringLiteral("J  K  L   In  Out  Marker"));
}

void obs(TVKKeyset& keyset)
{
    baseLayers(keyset);
    TVKLayer* layer = keyset.layerAtIndex(0);
    // Scenes on the TLW LCD buttons, each with its name on the button's display.
    for (int scene = 0; scene < 8; ++scene) {
        TVKControl* button = layer->controlForGroup(TLWLCDButtons, scene);
        auto sceneKeys = std::make_unique<TVKButtonKeySequenceAction>(button, 50, false);
        TVKKeySequenceAction::addKeystroke(QString::number(scene + 1), kKey1 + quint32(scene),
                                           kControl, sceneKeys->sequence());
        button->adoptAction(std::move(sceneKeys));
        button->setUserName(QStringLiteral("Scene %1").arg(scene + 1));
        TVKControl* display = layer->displayControlForGroup(2, scene);
        display->adoptAction(std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
            display, 2, QStringLiteral("Scene"), QString::number(scene + 1), QString(), QString()));
    }
    keys(layer->controlForGroup(Transport, 4), QStringLiteral("Stream"),
         {{kKeyTab, kControl | kShift}}, {"Tab"});
    TVKControl* icon = layer->displayControlForGroup(4, 0);
    icon->adoptAction(std::make_unique<CorvaneLCDButtonDisplayIconAction>(icon, 12));
    text(layer->displayControlForGroup(3, 0), QStringLiteral("OBS Studio  Live"));
}

void audacity(TVKKeyset& keyset)
{
    baseLayers(keyset);
    TVKLayer* layer = keyset.layerAtIndex(0);
    // Commands from the built-in catalogue (Transport and Edit groups).
    const QString transport = QStringLiteral("Transport");
    const QString edit = QStringLiteral("Edit");
    TVKControl* play = layer->controlForGroup(Transport, 3);
    play->adoptAction(std::make_unique<TVKButtonBuiltInAction>(
        play, 50, false, 0, 0, transport, QStringLiteral("Play/Stop"), 0, 0, kKeySpace, 0));
    TVKControl* record = layer->controlForGroup(Transport, 4);
    record->adoptAction(std::make_unique<TVKButtonBuiltInAction>(
        record, 50, false, 0, 1, transport, QStringLiteral("Record"), 0, 0, kKeyR, kShift));
    TVKControl* undo = layer->controlForGroup(W, 0);
    undo->adoptAction(std::make_unique<TVKButtonBuiltInAction>(
        undo, 50, false, 1, 0, edit, QStringLiteral("Undo"), 0, 0, kKeyZ, kControl));
    TVKControl* split = layer->controlForGroup(W, 2);
    split->adoptAction(std::make_unique<TVKButtonBuiltInAction>(
        split, 50, false, 1, 2, edit, QStringLiteral("Split"), 0, 0, kKeyI, kControl));
    split->setUserName(QStringLiteral("Split Clip"));
    for (int i = 0; i < 6; ++i)
        special(layer->controlForGroup(LeftEncoders, i), 10);
    special(layer->controlForGroup(TrackballRings, 0), 2);
    text(layer->displayControlForGroup(0, 0), QStringLiteral("Audacity"));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: corvane-samplegen OUT.plist\n");
        return 64;
    }
    Corvane_Constant_Server constants;
    corvane::ConfigGenerator generator(7);
    CorvaneModelData model;

    // The "Default" keyset of a fresh configuration, its first layer set to the developer
    // functions.
    model.keysetAtIndex(0)->layerAtIndex(0)->setAllControlsToActionMode(
        corvane::ActionMode::Developer);

    model.addKeysetWithName(QStringLiteral("Ardour"), corvane::kUnknownSignature,
                            QStringLiteral("org.ardour.Ardour8"), generator.makeIcon(64));
    ardour(*model.keysetAtIndex(1));
    model.keysetAtIndex(1)->setEmulationMode(corvane::EmulationMode::A);
    model.addKeysetWithName(QStringLiteral("Kdenlive"), corvane::kUnknownSignature,
                            QStringLiteral("org.kde.kdenlive"));
    kdenlive(*model.keysetAtIndex(2));
    model.addKeysetWithName(QStringLiteral("OBS Studio"), corvane::kUnknownSignature,
                            QStringLiteral("com.obsproject.Studio"));
    obs(*model.keysetAtIndex(3));
    model.addKeysetWithName(QStringLiteral("Audacity"), corvane::kUnknownSignature,
                            QStringLiteral("org.audacityteam.Audacity"));
    audacity(*model.keysetAtIndex(4));
    model.keysetAtIndex(4)->setOneTouchRecord(true);

    model.setHasOwnerKeyset(true, QStringLiteral("org.ardour.Ardour8"), corvane::kUnknownSignature);

    corvane::PlistValue tree = corvane::PlistValue::makeDict();
    model.writeTo(tree);
    QString error;
    if (!corvane::PlistCodec::writeFile(QString::fromLocal8Bit(argv[1]), tree,
                                        corvane::PlistFormat::Xml, &error)) {
        std::fprintf(stderr, "corvane-samplegen: cannot write %s: %s\n", argv[1],
                     qPrintable(error));
        return 1;
    }
    return 0;
}
