#include "ConfigGenerator.h"

#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/FourCharCode.h"
#include "model/CorvaneLayer.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

#include <QtEndian>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

struct Application
{
    const char16_t* name;
    const char16_t* bundleID;
};

// Applications a Linux studio drives from a control surface.
const std::array<Application, 16> kApplications = {{
    {u"Ardour", u"org.ardour.Ardour8"},
    {u"Kdenlive", u"org.kde.kdenlive"},
    {u"Blender", u"org.blender.Blender"},
    {u"OBS Studio", u"com.obsproject.Studio"},
    {u"Audacity", u"org.audacityteam.Audacity"},
    {u"Shotcut", u"org.shotcut.Shotcut"},
    {u"GIMP", u"org.gimp.GIMP"},
    {u"Darktable", u"org.darktable.Darktable"},
    {u"Inkscape", u"org.inkscape.Inkscape"},
    {u"Krita", u"org.kde.krita"},
    {u"Qtractor", u"org.rncbc.qtractor"},
    {u"LMMS", u"io.lmms.LMMS"},
    {u"Hydrogen", u"org.hydrogenmusic.Hydrogen"},
    {u"Olive", u"org.olivevideoeditor.Olive"},
    {u"Natron", u"fr.natron.Natron"},
    {u"Rosegarden", u"com.rosegardenmusic.rosegarden"},
}};

const std::array<const char16_t*, 12> kUserNames = {
    u"Kick", u"Snare",  u"Vox Lead", u"Bass DI", u"Overheads", u"Room",
    u"Cut",  u"Ripple", u"Marker",   u"Render",  u"Grade",     u"Scene A",
};

struct Key
{
    const char16_t* label;
    quint32 code; // evdev key code
};

const std::array<Key, 16> kKeys = {{
    {u"s", 31},
    {u"z", 44},
    {u"x", 45},
    {u"c", 46},
    {u"v", 47},
    {u"b", 48},
    {u"m", 50},
    {u"space", 57},
    {u"Return", 28},
    {u"Home", 102},
    {u"End", 107},
    {u"Page Up", 104},
    {u"Left", 105},
    {u"Right", 106},
    {u"F5", 63},
    {u"Delete", 111},
}};

constexpr std::array<quint64, 5> kModifiers = {0, 0x20000, 0x40000, 0x100000, 0x40000 | 0x20000};

// The control kind byte of the action type codes, from the control type code.
int controlKind(int type)
{
    switch (type) {
    case ControlType::Button:
    case ControlType::MultiColorButton:
        return 1;
    case ControlType::Encoder:
    case ControlType::Fader:
        return 2;
    case ControlType::FourWay:
    case ControlType::Joystick:
        return 3;
    case ControlType::Shuttle:
        return 4;
    case ControlType::Jog:
        return 5;
    default:
        return 0;
    }
}

quint32 crc32(const char* data, qsizetype size, quint32 crc = 0)
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> t{};
        for (quint32 n = 0; n < 256; ++n) {
            quint32 c = n;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[n] = c;
        }
        return t;
    }();
    crc = ~crc;
    for (qsizetype i = 0; i < size; ++i)
        crc = table[(crc ^ quint8(data[i])) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

void appendChunk(QByteArray& png, const char* type, const QByteArray& data)
{
    char length[4];
    qToBigEndian(quint32(data.size()), length);
    png.append(length, 4);
    QByteArray body(type, 4);
    body.append(data);
    png.append(body);
    char crc[4];
    qToBigEndian(crc32(body.constData(), body.size()), crc);
    png.append(crc, 4);
}

} // namespace

QByteArray encodePngRgba(const QByteArray& pixels, int edge)
{
    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    QByteArray header(13, '\0');
    qToBigEndian(quint32(edge), header.data());
    qToBigEndian(quint32(edge), header.data() + 4);
    header[8] = 8; // bits per channel
    header[9] = 6; // RGBA
    appendChunk(png, "IHDR", header);

    QByteArray rows;
    rows.reserve(qsizetype(edge) * (edge * 4 + 1));
    for (int y = 0; y < edge; ++y) {
        rows.append('\0'); // no filter
        rows.append(pixels.constData() + qsizetype(y) * edge * 4, qsizetype(edge) * 4);
    }
    // qCompress gives a zlib stream behind a four-byte length of its own.
    appendChunk(png, "IDAT", qCompress(rows, 9).mid(4));
    appendChunk(png, "IEND", QByteArray());
    return png;
}

ConfigGenerator::ConfigGenerator(quint32 seed) : m_random(seed) {}

QByteArray ConfigGenerator::makeIcon(int edge)
{
    const int hue = pick(256);
    const int accent = pick(256);
    QByteArray pixels(qsizetype(edge) * edge * 4, '\0');
    const double centre = (edge - 1) / 2.0;
    const double radius = edge * 0.45;
    for (int y = 0; y < edge; ++y) {
        for (int x = 0; x < edge; ++x) {
            const double dx = x - centre;
            const double dy = y - centre;
            const bool inside = dx * dx + dy * dy <= radius * radius;
            char* p = pixels.data() + (qsizetype(y) * edge + x) * 4;
            // A shaded disc with a little grain, as application icons have.
            const int grain = pick(24);
            p[0] = char((hue + x + grain) & 0xFF);
            p[1] = char((accent + y) & 0xFF);
            p[2] = char((hue ^ accent ^ (x * y)) & 0xFF);
            p[3] = char(inside ? 255 : 0);
        }
    }
    return encodePngRgba(pixels, edge);
}

std::unique_ptr<CorvaneModelData> ConfigGenerator::generateConfiguration(int keysetCount)
{
    auto model = std::make_unique<CorvaneModelData>();
    for (int k = 0; k < keysetCount; ++k) {
        const Application& app = kApplications[size_t(k) % kApplications.size()];
        const int round = k / int(kApplications.size());
        const QString name =
            round == 0 ? QString::fromUtf16(app.name)
                       : QStringLiteral("%1 %2").arg(QString::fromUtf16(app.name)).arg(round + 1);
        QString bundleID = QString::fromUtf16(app.bundleID);
        if (round > 0)
            bundleID += QStringLiteral(".v%1").arg(round + 1);
        // Most Linux applications have no creator code; a few keysets carry one.
        const FourCharCode signature =
            k % 7 == 3 ? fourCharCodeFromString(
                             QStringLiteral("Cv%1").arg(k % 100, 2, 10, QLatin1Char('0')))
                       : kUnknownSignature;
        if (pick(10) < 8)
            model->addKeysetWithName(name, signature, bundleID, makeIcon());
        else
            model->addKeysetWithName(name, signature, bundleID);
        TVKKeyset* keyset = model->keysetAtIndex(model->numberOfKeysets() - 1);
        keyset->setOneTouchRecord(pick(4) == 0);
        keyset->setLocked(pick(10) == 0);
        populateKeyset(*keyset);
    }
    if (keysetCount > 0)
        model->deleteKeysetAtIndex(0);
    model->setSelectedKeysetIndex(0);
    return model;
}

void ConfigGenerator::populateKeyset(TVKKeyset& keyset)
{
    const TVK_Constant_Server& constants = surfaceConstants();
    for (const auto& layer : keyset.layers()) {
        // Controls past the surface's count (the TLW2 encoders and switches) are rebuilt fresh
        // whenever a configuration is read, so a stored one never carries settings for them.
        for (size_t g = 0; g < layer->groups().size(); ++g) {
            const auto& group = layer->groups()[g];
            const size_t stored =
                std::min(group.size(), size_t(constants.numberOfControlsInGroup(int(g))));
            for (size_t i = 0; i < stored; ++i)
                populateControl(*group[i]);
        }
        for (const auto& group : layer->displayGroups())
            for (const auto& display : group)
                populateDisplay(*display);

        // A few NV button groups on the first two layers.
        if (auto* corvane = dynamic_cast<CorvaneLayer*>(layer.get());
            corvane && layer->index() < 2) {
            const int groups = 1 + pick(3);
            for (int g = 0; g < groups; ++g) {
                corvane->createCorvaneNVGroupNamed(QStringLiteral("Bank Set %1").arg(g + 1));
                const int first = g * 24 + pick(12);
                for (int b = 0; b < 4; ++b)
                    corvane->addButtonID(first + b, g);
            }
        }
    }
}

void ConfigGenerator::populateControl(TVKControl& control)
{
    if (pick(20) == 0) {
        control.setUserName(
            QStringLiteral("%1 %2")
                .arg(QString::fromUtf16(kUserNames[size_t(pick(int(kUserNames.size())))]))
                .arg(++m_nameCounter % 64));
    }

    const int kind = controlKind(control.tvkControlType());
    const int roll = pick(100);
    std::unique_ptr<TVKAction> action;

    if (roll >= 78 && roll < 88) {
        const Key& key = kKeys[size_t(pick(int(kKeys.size())))];
        const QString label = QString::fromUtf16(key.label);
        const quint64 modifiers = kModifiers[size_t(pick(int(kModifiers.size())))];
        const auto fill = [&](TVKKeystrokeList& list) {
            const int strokes = 1 + pick(3);
            for (int s = 0; s < strokes; ++s)
                TVKKeySequenceAction::addKeystroke(label, key.code, modifiers, list);
        };
        const auto fillAll = [&](TVKMultipleKeySequenceAction& multiple) {
            for (int d = 0; d < multiple.numberOfDirections(); ++d) {
                TVKKeystrokeList list;
                fill(list);
                multiple.setSequence(list, d);
            }
        };
        switch (kind) {
        case 1: {
            auto keys = std::make_unique<TVKButtonKeySequenceAction>(&control, 50, false);
            fill(keys->sequence());
            action = std::move(keys);
            break;
        }
        case 2: {
            auto keys = std::make_unique<TVKEncoderKeySequenceAction>(&control, 50, true);
            fillAll(*keys);
            action = std::move(keys);
            break;
        }
        case 3: {
            auto keys = std::make_unique<TVK4WayKeySequenceAction>(&control, 50, true);
            fillAll(*keys);
            action = std::move(keys);
            break;
        }
        case 4: {
            auto keys = std::make_unique<TVKShuttleKeySequenceAction>(&control, 50, true);
            fillAll(*keys);
            action = std::move(keys);
            break;
        }
        case 5: {
            auto keys = std::make_unique<TVKJogKeySequenceAction>(&control, 50, true);
            fillAll(*keys);
            action = std::move(keys);
            break;
        }
        default:
            break;
        }
    } else if (roll >= 93 && roll < 97 && kind != 0) {
        const unsigned operation = kind == 1 ? 1 : unsigned(2 + pick(8));
        switch (kind) {
        case 1:
            action = std::make_unique<TVKButtonMouseAction>(operation, &control);
            break;
        case 2:
            action = std::make_unique<TVKEncoderMouseAction>(operation, &control);
            break;
        case 3:
            action = std::make_unique<TVK4WayMouseAction>(operation, &control);
            break;
        case 4:
            action = std::make_unique<TVKShuttleMouseAction>(operation, &control);
            break;
        default:
            action = std::make_unique<TVKJogMouseAction>(operation, &control);
            break;
        }
        auto* mouse = static_cast<TVKMouseAction*>(action.get());
        mouse->setLocationType(unsigned(pick(8)));
        mouse->setLocation(QPointF(pick(1200), pick(800)));
        mouse->setWindowName(QStringLiteral("Editor"));
    } else if (roll >= 97 && kind != 0) {
        const Key& key = kKeys[size_t(pick(int(kKeys.size())))];
        const int command = pick(40);
        const QString group = QStringLiteral("Edit");
        const QString name = QStringLiteral("Command %1").arg(command + 1);
        const quint64 modifiers = kModifiers[size_t(pick(int(kModifiers.size())))];
        switch (kind) {
        case 1:
            action = std::make_unique<TVKButtonBuiltInAction>(
                &control, 50, false, 1, command, group, name, 0, 0, key.code, modifiers);
            break;
        case 2:
            action = std::make_unique<TVKEncoderBuiltInAction>(
                &control, 50, false, 1, command, group, name, 0, 0, key.code, modifiers);
            break;
        case 3:
            action = std::make_unique<TVK4WayBuiltInAction>(&control, 50, false, 1, command, group,
                                                            name, 0, 0, key.code, modifiers);
            break;
        case 4:
            action = std::make_unique<TVKShuttleBuiltInAction>(
                &control, 50, false, 1, command, group, name, 0, 0, key.code, modifiers);
            break;
        default:
            action = std::make_unique<TVKJogBuiltInAction>(&control, 50, false, 1, command, group,
                                                           name, 0, 0, key.code, modifiers);
            break;
        }
    }

    if (action) {
        control.adoptAction(std::move(action));
        return;
    }

    if (roll >= 88 && roll < 93) {
        control.setActionMode(ActionMode::Emulation);
        if (control.action())
            return;
    }
    if (roll >= 42 && roll < 88) {
        control.setActionMode(ActionMode::NativeMIDI);
        if (auto* midi = dynamic_cast<TVKMIDIAction*>(control.action()); midi && pick(3) == 0) {
            // A custom controller message: channel, controller number, value from the control.
            const std::array<quint8, 3> message = {quint8(0xB0 | pick(16)), quint8(pick(120)),
                                                   TVKMIDIAction::kValuePlaceholder};
            midi->setMidiMode(TVKMIDIAction::Custom);
            midi->setMidiMessage(message.data(), 3);
        }
        return;
    }
    control.setActionMode(pick(10) == 0 ? ActionMode::RawEthernet : ActionMode::Developer);
    if (auto* special = dynamic_cast<TVKSpecialAction*>(control.action()); special && pick(2))
        special->setMode(1 + pick(TVKSpecialAction::kModeCount - 1));
}

void ConfigGenerator::populateDisplay(TVKControl& display)
{
    const int roll = pick(100);
    switch (display.tvkControlType()) {
    case ControlType::LCDDisplay:
    case ControlType::NVLCDDisplay:
        if (roll < 50) {
            display.adoptAction(std::make_unique<TVKLCDDisplayTextAction>(
                &display, QStringLiteral("Track %1  Bus %2").arg(pick(64)).arg(pick(8))));
        } else if (roll < 75) {
            display.adoptAction(std::make_unique<TVKLCDDisplayEncoderNameAction>(&display));
        } else {
            display.setActionMode(ActionMode::Emulation);
        }
        break;
    case ControlType::TimecodeDisplay:
        display.setActionMode(ActionMode::Emulation);
        break;
    case ControlType::LCDButtonDisplay:
        if (roll < 55) {
            display.adoptAction(std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
                &display, 2, QStringLiteral("Scene"), QStringLiteral("%1").arg(pick(99)), QString(),
                QString()));
        } else if (roll < 70) {
            display.adoptAction(
                std::make_unique<CorvaneLCDButtonDisplayIconAction>(&display, pick(64)));
        } else if (roll < 85) {
            display.adoptAction(
                std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(&display));
        }
        break;
    default:
        break;
    }
}

} // namespace corvane
