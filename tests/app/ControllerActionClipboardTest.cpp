// Edit → Copy, Paste and Clear Action through the real clipboard, against the real simulated
// service: which controls take which actions, every layer at once as one undo step, the lock, and
// what the clipboard carries.
#include "ControllerFixture.h"
#include "actions/ActionClipboard.h"
#include "actions/ActionDescription.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QJsonObject>
#include <QMimeData>
#include <functional>
#include <map>
#include <set>

using namespace corvane;
using namespace corvane::test;
using Command = TVKMenuCommand;

namespace {

namespace T = corvane::ControlType;

// Every action type code there is, listed by the kinds of control that take it: a button's
// actions are 0x101 to 0x106, and so on. The encoder's emulation plays a console encoder and the
// fader's a console fader, so a fader takes the encoder's actions but that one.
const std::map<int, std::set<qint32>>& takes()
{
    static const std::map<int, std::set<qint32>> table = [] {
        const std::set<qint32> button = {0x101, 0x102, 0x103, 0x104, 0x105, 0x106};
        const std::set<qint32> fourWay = {0x301, 0x302, 0x303, 0x304, 0x305};
        const std::set<qint32> lcdLine = {0x100001, 0x100002, 0x100003, 0x100006, 0x100008};
        return std::map<int, std::set<qint32>>{
            {T::Button, button},
            {T::MultiColorButton, button},
            {T::Encoder, {0x201, 0x202, 0x203, 0x204, 0x205, 0x206}},
            {T::Fader, {0x201, 0x202, 0x203, 0x204, 0x205, 0x606}},
            {T::FourWay, fourWay},
            {T::Joystick, fourWay},
            {T::Shuttle, {0x401, 0x402, 0x403, 0x404, 0x405}},
            {T::Jog, {0x501, 0x502, 0x503, 0x504, 0x505, 0x506}},
            {T::LCDDisplay, lcdLine},
            {T::NVLCDDisplay, {0x100001, 0x100003, 0x100008, 0x101100}},
            {T::TimecodeDisplay, {0x100203, 0x100208}},
            {T::LCDButtonDisplay, {0x100701, 0x100707, 0x10070a}}};
    }();
    return table;
}

bool fits(qint32 code, int type)
{
    const auto found = takes().find(type);
    return found != takes().end() && found->second.count(code) != 0;
}

std::set<qint32> everyCode()
{
    std::set<qint32> codes;
    for (const auto& [type, taken] : takes())
        codes.insert(taken.begin(), taken.end());
    return codes;
}

QString hex(qint64 value)
{
    return QStringLiteral("0x%1").arg(value, 0, 16);
}

PlistValue archiveOf(const TVKAction* action)
{
    PlistValue dict = PlistValue::makeDict();
    if (action)
        action->writeTo(dict);
    return dict;
}

class ActionClipboardTest : public ControllerTest
{
protected:
    // One control of the surface: a control or a display, in model numbering.
    struct Place
    {
        int type = -1;
        bool display = false;
        int group = 0;
        int index = 0;
    };

    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"));
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
        controller->setSelectedKeyset(1);
        QGuiApplication::clipboard()->clear();
    }

    // The first control of every control type the layer's tables make, displays included.
    std::vector<Place> everyType() const
    {
        std::vector<Place> places;
        std::set<int> seen;
        const TVKLayer* layer = controller->modelData()->keysetAtIndex(1)->layerAtIndex(0);
        for (const bool display : {false, true}) {
            const auto& groups = display ? layer->displayGroups() : layer->groups();
            for (size_t group = 0; group < groups.size(); ++group)
                for (size_t index = 0; index < groups[group].size(); ++index) {
                    const int type = groups[group][index]->tvkControlType();
                    if (seen.insert(type).second)
                        places.push_back({type, display, int(group), int(index)});
                }
        }
        return places;
    }

    Place firstOfType(int type, int skip = 0) const
    {
        const TVKLayer* layer = controller->modelData()->keysetAtIndex(1)->layerAtIndex(0);
        const bool display = T::isDisplayType(type);
        const auto& groups = display ? layer->displayGroups() : layer->groups();
        for (size_t group = 0; group < groups.size(); ++group)
            for (size_t index = 0; index < groups[group].size(); ++index)
                if (groups[group][index]->tvkControlType() == type && skip-- == 0)
                    return {type, display, int(group), int(index)};
        ADD_FAILURE() << "no control of type " << type;
        return {};
    }

    // Selects the control on layer 0, whatever layer an edit moved the selection to.
    void select(const Place& place)
    {
        controller->setSelectedLayer(0);
        if (place.display)
            controller->handleDisplay(place.index, place.group);
        else
            controller->selectionChangedInSummaryWindowToGroup(place.group, place.index);
    }

    TVKControl* at(const Place& place, int layer = 0) const
    {
        TVKModelData* model = controller->modelData();
        return place.display ? model->displayForKeyset(1, layer, place.group, place.index)
                             : model->controlForKeyset(1, layer, place.group, place.index);
    }

    // Gives the control an action as the inspector's editors do.
    void give(const Place& place, const PlistValue& archive, int layer = 0)
    {
        std::shared_ptr<const TVKAction> action =
            TVKStandardActionTypes::createActionFromArchive(archive, at(place, layer));
        ASSERT_TRUE(action) << "type "
                            << hex(archive.value(key::ActnType).toInteger()).toStdString();
        if (place.display)
            controller->undoableInsertDisplayAction(action, 1, layer, place.group, place.index,
                                                    QStringLiteral("Edit Display Function"));
        else
            controller->undoableInsertAction({action}, 1, layer, place.group, place.index,
                                             QStringLiteral("Edit Control Action"), false);
    }

    static PlistValue actionOfType(qint32 code)
    {
        PlistValue dict = PlistValue::makeDict();
        dict.insert(key::ActnType, PlistValue(qint64(code)));
        return dict;
    }

    QAction* item(Command command)
    {
        controller->validateMenuItems();
        return controller->menuItem(command);
    }
};

} // namespace

TEST_F(ActionClipboardTest, EveryKindOfActionPastesOnlyWhereItFits)
{
    const std::vector<Place> places = everyType();
    // The model's tables make every control type but the joystick, which no unit has.
    std::set<int> types;
    for (const Place& place : places)
        types.insert(place.type);
    EXPECT_EQ(types.size(), 11u);
    EXPECT_EQ(types.count(T::Joystick), 0u);

    int controlEdits = 0;
    int displayEdits = 0;
    const qsizetype from = mark();
    for (const qint32 code : everyCode()) {
        SCOPED_TRACE(hex(code).toStdString());
        // Copied from a control that takes it…
        const auto source = std::find_if(places.begin(), places.end(),
                                         [&](const Place& p) { return fits(code, p.type); });
        ASSERT_NE(source, places.end());
        select(*source);
        give(*source, actionOfType(code));
        (source->display ? displayEdits : controlEdits) += 1;
        ASSERT_TRUE(item(Command::HandleCopyAction)->isEnabled());
        item(Command::HandleCopyAction)->trigger();
        const PlistValue copied = archiveOf(at(*source)->action());

        // … and pasted onto one control of every type.
        for (const Place& target : places) {
            SCOPED_TRACE(QStringLiteral("onto type %1").arg(target.type).toStdString());
            select(target);
            const PlistValue before = archiveOf(at(target)->action());
            QAction* paste = item(Command::HandlePasteAction);
            const bool expected = fits(code, target.type);
            EXPECT_EQ(paste->isEnabled(), expected);
            if (!expected) {
                EXPECT_TRUE(paste->statusTip().contains(QStringLiteral("does not fit")))
                    << paste->statusTip().toStdString();
            }
            controller->handlePasteAction();
            const TVKAction* now = at(target)->action();
            if (!expected) {
                EXPECT_TRUE(archiveOf(now) == before) << "refused, yet the control changed";
                continue;
            }
            ASSERT_NE(now, nullptr);
            EXPECT_EQ(now->actionType(), code);
            EXPECT_EQ(now->owningControl(), at(target)) << "the pasted action is the control's";
            if (!(before == copied)) {
                EXPECT_EQ(controller->undoManager().undoActionName(),
                          QStringLiteral("Paste Action"));
                (target.display ? displayEdits : controlEdits) += 1;
            }
        }
    }
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), controlEdits, from));
    ASSERT_TRUE(waitForCount(QStringLiteral("IDAc"), displayEdits, from));
    EXPECT_TRUE(serviceInStep());
}

TEST_F(ActionClipboardTest, PasteOnAllLayersIsOneStepAndUndoGivesEachLayerItsOwn)
{
    const Place source = firstOfType(T::Button);
    const Place target = firstOfType(T::Button, 1);
    PlistValue midi = actionOfType(0x104);
    midi.insert(QStringLiteral("TVKMMode"), PlistValue(qint64(2)));
    midi.insert(QStringLiteral("TVKMMsg"), PlistValue(QByteArray("\x90\x3c\x64", 3)));
    give(source, midi);
    for (int layer = 0; layer < 4; ++layer) {
        PlistValue special = actionOfType(0x105);
        special.insert(QStringLiteral("TVKSpMode"), PlistValue(qint64(4 + layer)));
        give(target, special, layer);
    }
    const auto layersHold = [&](const char* what, const std::function<bool(int)>& test) {
        for (int layer = 0; layer < 4; ++layer)
            EXPECT_TRUE(test(layer)) << what << ", layer " << layer;
    };
    const auto ownSpecial = [&](int layer) {
        const PlistValue held = archiveOf(at(target, layer)->action());
        return held.value(key::ActnType).toInteger() == 0x105 &&
               held.value(u"TVKSpMode").toInteger() == 4 + layer;
    };
    ASSERT_TRUE(serviceInStep());

    select(source);
    item(Command::HandleCopyAction)->trigger();
    const PlistValue copied = archiveOf(at(source)->action());
    select(target);
    views.copyToAllLayers = true;
    const int steps = controller->undoManager().stack().count();
    qsizetype from = mark();
    item(Command::HandlePasteAction)->trigger();
    EXPECT_EQ(controller->undoManager().stack().count(), steps + 1) << "one step for four layers";
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Paste Action"));
    layersHold("pasted",
               [&](int layer) { return archiveOf(at(target, layer)->action()) == copied; });
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 4, from));
    std::set<qint64> sentLayers;
    for (const QJsonObject& line : received(QStringLiteral("InAc"), from)) {
        const QJsonObject body = line.value(QStringLiteral("plist")).toObject();
        sentLayers.insert(body.value(QStringLiteral("TVKLayerIndex")).toInteger());
        EXPECT_EQ(body.value(QStringLiteral("TVKGroupID")).toInteger(), target.group);
        EXPECT_EQ(body.value(QStringLiteral("TVKControlIndex")).toInteger(), target.index);
    }
    EXPECT_EQ(sentLayers, (std::set<qint64>{0, 1, 2, 3})) << "one message per layer";
    EXPECT_TRUE(serviceInStep());

    from = mark();
    controller->undoMenuItem()->trigger();
    layersHold("undone", ownSpecial);
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 4, from));
    EXPECT_TRUE(serviceInStep());
    controller->redoMenuItem()->trigger();
    layersHold("redone",
               [&](int layer) { return archiveOf(at(target, layer)->action()) == copied; });
    EXPECT_TRUE(serviceInStep());
    controller->undoMenuItem()->trigger();
    ASSERT_TRUE(serviceInStep());

    // The same paste again changes nothing and is no step.
    views.copyToAllLayers = false;
    select(source);
    const int before = controller->undoManager().stack().count();
    from = mark();
    item(Command::HandlePasteAction)->trigger();
    EXPECT_EQ(controller->undoManager().stack().count(), before);
    spinFor(50);
    EXPECT_TRUE(received(QStringLiteral("InAc"), from).empty());
}

TEST_F(ActionClipboardTest, ClearTakesTheActionOffOneLayerOrAllAndADisplaysOff)
{
    const Place encoder = firstOfType(T::Encoder);
    for (int layer = 0; layer < 4; ++layer)
        give(encoder, actionOfType(0x205), layer);
    select(encoder);
    ASSERT_TRUE(serviceInStep());
    QAction* clear = item(Command::HandleClearAction);
    ASSERT_TRUE(clear->isEnabled());
    qsizetype from = mark();
    clear->trigger();
    EXPECT_EQ(at(encoder, 0)->action(), nullptr);
    EXPECT_NE(at(encoder, 1)->action(), nullptr) << "one layer only";
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Clear Action"));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    const QJsonObject sent =
        received(QStringLiteral("InAc"), from).back().value(QStringLiteral("plist")).toObject();
    EXPECT_EQ(sent.value(QStringLiteral("TVActionObject"))
                  .toObject()
                  .value(QStringLiteral("TVKActnType"))
                  .toInteger(),
              7)
        << "the service hears of no action as the null action";
    EXPECT_FALSE(item(Command::HandleClearAction)->isEnabled()) << "nothing left to clear";
    EXPECT_FALSE(item(Command::HandleCopyAction)->isEnabled()) << "nothing to copy";
    EXPECT_TRUE(item(Command::HandleCopyAction)->statusTip().contains(QStringLiteral("no action")));

    // The other layers still hold theirs: with every layer ticked, Clear has work to do.
    views.copyToAllLayers = true;
    ASSERT_TRUE(item(Command::HandleClearAction)->isEnabled());
    from = mark();
    item(Command::HandleClearAction)->trigger();
    for (int layer = 0; layer < 4; ++layer)
        EXPECT_EQ(at(encoder, layer)->action(), nullptr) << layer;
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 4, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    for (int layer = 1; layer < 4; ++layer)
        EXPECT_NE(at(encoder, layer)->action(), nullptr) << layer;
    EXPECT_TRUE(serviceInStep());

    // A display's function, on its one layer.
    const Place line = firstOfType(T::LCDDisplay);
    give(line, actionOfType(0x100001));
    select(line);
    from = mark();
    item(Command::HandleClearAction)->trigger();
    EXPECT_EQ(at(line)->action(), nullptr);
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Clear Action"));
    ASSERT_TRUE(waitForCount(QStringLiteral("IDAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    EXPECT_NE(at(line)->action(), nullptr);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(ActionClipboardTest, ALockedKeysetIsNeitherPastedIntoNorCleared)
{
    const Place source = firstOfType(T::Button);
    give(source, actionOfType(0x105));
    const Place other = firstOfType(T::Button, 1);
    select(source);
    item(Command::HandleCopyAction)->trigger();
    give(other, actionOfType(0x104));
    select(other);
    ASSERT_TRUE(serviceInStep());
    controller->handleLockUnlockMenu();
    ASSERT_TRUE(controller->modelData()->keysetAtIndex(1)->locked());

    for (const Command command : {Command::HandlePasteAction, Command::HandleClearAction}) {
        QAction* refused = item(command);
        EXPECT_FALSE(refused->isEnabled());
        EXPECT_TRUE(refused->text().endsWith(QStringLiteral("(keyset “Editor” is locked)")))
            << refused->text().toStdString();
        EXPECT_TRUE(
            refused->statusTip().startsWith(QStringLiteral("The keyset “Editor” is locked")))
            << refused->statusTip().toStdString();
    }
    const PlistValue before = archiveOf(at(other)->action());
    const int steps = controller->undoManager().stack().count();
    const qsizetype from = mark();
    controller->handlePasteAction();
    controller->handleClearAction();
    EXPECT_TRUE(archiveOf(at(other)->action()) == before);
    EXPECT_EQ(controller->undoManager().stack().count(), steps);
    spinFor(50);
    EXPECT_TRUE(received(QStringLiteral("InAc"), from).empty());
    // Copying changes nothing: a locked keyset can still be copied from.
    EXPECT_TRUE(item(Command::HandleCopyAction)->isEnabled());

    controller->handleLockUnlockMenu();
    EXPECT_TRUE(item(Command::HandlePasteAction)->isEnabled());
    EXPECT_EQ(item(Command::HandlePasteAction)->text(), QStringLiteral("Paste Action"));
}

TEST_F(ActionClipboardTest, TheClipboardCarriesThePropertyListAndTheDescription)
{
    const Place button = firstOfType(T::Button);
    PlistValue keys = actionOfType(0x102);
    PlistValue stroke = PlistValue::makeDict();
    stroke.insert(QStringLiteral("TVKChar"), PlistValue(QStringLiteral("s")));
    stroke.insert(QStringLiteral("TVKKCode"), PlistValue(qint64(1)));
    stroke.insert(QStringLiteral("TVKMods"), PlistValue(qint64(0x60000)));
    PlistValue sequence = PlistValue::makeArray();
    sequence.append(stroke);
    keys.insert(QStringLiteral("TVKKeySeq"), sequence);
    give(button, keys);
    select(button);
    item(Command::HandleCopyAction)->trigger();

    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr);
    ASSERT_TRUE(data->hasFormat(QStringLiteral("application/x-corvane-action+plist")));
    const QByteArray bytes = data->data(QStringLiteral("application/x-corvane-action+plist"));
    EXPECT_TRUE(bytes.startsWith("<?xml")) << "an XML property list";
    const PlistReadResult read = PlistCodec::read(bytes);
    ASSERT_TRUE(read.ok);
    EXPECT_TRUE(read.value == archiveOf(at(button)->action())) << "the action's archive";
    EXPECT_EQ(data->text(), describeAction(*at(button)->action(), Detail::Full));
    EXPECT_TRUE(data->text().contains(QStringLiteral("Ctrl+Shift+S")))
        << data->text().toStdString();

    // What another program leaves, or a damaged action, is refused with the reason.
    const Place target = firstOfType(T::Button, 1);
    select(target);
    ASSERT_TRUE(serviceInStep());
    const auto refused = [&](const char* what, QMimeData* content, const QString& reason) {
        SCOPED_TRACE(what);
        QGuiApplication::clipboard()->setMimeData(content);
        QAction* paste = item(Command::HandlePasteAction);
        EXPECT_FALSE(paste->isEnabled());
        EXPECT_TRUE(paste->statusTip().contains(reason)) << paste->statusTip().toStdString();
        const qsizetype from = mark();
        controller->handlePasteAction();
        EXPECT_EQ(at(target)->action(), nullptr);
        spinFor(20);
        EXPECT_TRUE(received(QStringLiteral("InAc"), from).empty());
    };
    const QString type = ActionClipboard::mimeType();
    const auto under = [&](const QString& format, const QByteArray& content) {
        auto* made = new QMimeData;
        made->setData(format, content);
        return made;
    };
    auto* text = new QMimeData;
    text->setText(QStringLiteral("Key Sequence: Ctrl+Shift+S"));
    refused("plain text", text, QStringLiteral("holds no action"));
    refused("another program's property list",
            under(QStringLiteral("application/x-plist"), PlistCodec::write(keys)),
            QStringLiteral("holds no action"));
    refused("a damaged property list", under(type, bytes.left(bytes.size() / 2)),
            QStringLiteral("cannot be read"));
    refused("a list", under(type, PlistCodec::write(PlistValue::makeArray())),
            QStringLiteral("cannot be read"));
    refused("the null action", under(type, PlistCodec::write(actionOfType(7))),
            QStringLiteral("does not know"));
    refused("a trackball's emulation, which there is none of",
            under(type, PlistCodec::write(actionOfType(0x306))), QStringLiteral("does not know"));
    refused("a binary property list of an encoder's action",
            under(type, PlistCodec::write(actionOfType(0x205), PlistFormat::Binary)),
            QStringLiteral("An action made for an encoder does not fit a button."));
}
