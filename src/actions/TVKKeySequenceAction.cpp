#include "actions/TVKKeySequenceAction.h"

#include "actions/ActionText.h"
#include "core/Log.h"
#include "core/StoredKeys.h"

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

qsizetype clampedIndex(qsizetype index, qsizetype count)
{
    return (index < 0 || index >= count) ? count - 1 : index;
}

} // namespace

TVKKeySequenceAction::TVKKeySequenceAction(TVKControl* control, unsigned delay, bool repeat)
    : TVKAction(control), m_delay(float(delay)), m_repeat(repeat)
{}

TVKKeySequenceAction::TVKKeySequenceAction(const PlistValue& archive, TVKControl* control)
    : TVKAction(archive, control)
{
    m_delay = float(archive.value(key::Delay).toReal());
    // Read back as a 16-bit number; any non-zero value repeats.
    m_repeat = quint16(archive.value(key::Rpt).toInteger()) != 0;
}

qsizetype TVKKeySequenceAction::countForSequence(const TVKKeystrokeList& sequence)
{
    return qsizetype(sequence.size());
}

void TVKKeySequenceAction::addKeystrokeElement(const TVKKeystrokeElement* element,
                                               TVKKeystrokeList& sequence)
{
    if (element)
        sequence.push_back(*element);
}

void TVKKeySequenceAction::addKeystroke(const QString& character, quint32 keyCode,
                                        quint64 modifiers, TVKKeystrokeList& sequence)
{
    sequence.emplace_back(character, keyCode, modifiers);
}

TVKKeystrokeElement* TVKKeySequenceAction::keystrokeAtIndex(qsizetype index,
                                                            TVKKeystrokeList& sequence)
{
    if (sequence.empty())
        return nullptr;
    return &sequence[size_t(clampedIndex(index, qsizetype(sequence.size())))];
}

const TVKKeystrokeElement* TVKKeySequenceAction::keystrokeAtIndex(qsizetype index,
                                                                  const TVKKeystrokeList& sequence)
{
    if (sequence.empty())
        return nullptr;
    return &sequence[size_t(clampedIndex(index, qsizetype(sequence.size())))];
}

void TVKKeySequenceAction::setKeystroke(const QString& character, quint32 keyCode,
                                        quint64 modifiers, qsizetype index,
                                        TVKKeystrokeList& sequence)
{
    if (TVKKeystrokeElement* element = keystrokeAtIndex(index, sequence)) {
        element->setCharacter(character);
        element->setKeyCode(quint16(keyCode & 0xFFFF));
        element->setModifierFlags(modifiers);
    }
}

void TVKKeySequenceAction::removeKeystrokeAtIndex(qsizetype index, TVKKeystrokeList& sequence)
{
    if (sequence.empty())
        return;
    sequence.erase(sequence.begin() + clampedIndex(index, qsizetype(sequence.size())));
}

PlistValue TVKKeySequenceAction::archiveKeySequence(const TVKKeystrokeList& sequence)
{
    PlistValue list = PlistValue::makeArray(qsizetype(sequence.size()));
    for (const TVKKeystrokeElement& element : sequence) {
        PlistValue dict = PlistValue::makeDict(3);
        element.writeTo(dict);
        list.append(std::move(dict));
    }
    return list;
}

TVKKeystrokeList TVKKeySequenceAction::unarchiveKeySequence(const PlistValue& archive)
{
    TVKKeystrokeList sequence;
    // A damaged file may hold something other than a list here; it gives no keystrokes rather
    // than blank ones the service would post.
    if (!archive.isArray())
        return sequence;
    sequence.reserve(size_t(archive.size()));
    for (qsizetype i = 0; i < archive.size(); ++i)
        sequence.emplace_back(archive.at(i));
    return sequence;
}

corvane::FourCharCode TVKKeySequenceAction::editorTabID() const
{
    return corvane::fourCC("KEYS");
}

void TVKKeySequenceAction::writeTo(PlistValue& dict) const
{
    TVKAction::writeTo(dict);
    dict.insert(key::Delay, PlistValue(double(m_delay)));
    dict.insert(key::Rpt, PlistValue(m_repeat ? 1 : 0));
}

// ---- button

TVKButtonKeySequenceAction::TVKButtonKeySequenceAction(TVKControl* control, unsigned delay,
                                                       bool repeat)
    : TVKKeySequenceAction(control, delay, repeat)
{
    m_sequence.reserve(1);
}

TVKButtonKeySequenceAction::TVKButtonKeySequenceAction(const PlistValue& archive,
                                                       TVKControl* control)
    : TVKKeySequenceAction(archive, control),
      m_sequence(unarchiveKeySequence(archive.value(key::KeySeq)))
{}

std::unique_ptr<TVKAction> TVKButtonKeySequenceAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKButtonKeySequenceAction(*this));
}

QString TVKButtonKeySequenceAction::actionDescriptor() const
{
    QString text = QStringLiteral("Key Sequence") + QStringLiteral(": ");
    for (const TVKKeystrokeElement& element : m_sequence)
        text += corvane::objectText(element.character()) + QLatin1Char(' ');
    return text;
}

void TVKButtonKeySequenceAction::writeTo(PlistValue& dict) const
{
    TVKKeySequenceAction::writeTo(dict);
    dict.insert(key::KeySeq, archiveKeySequence(m_sequence));
}

// ---- per-direction

int TVKMultipleKeySequenceAction::numberOfDirections() const
{
    corvane::log(QStringLiteral(
        "TVKMultipleKeySequenceAction subclasses must override numberOfDirections:"));
    return 0;
}

QString TVKMultipleKeySequenceAction::descriptorForAxis(int) const
{
    corvane::log(
        QStringLiteral("TVKMultipleKeySequenceAction subclasses must override descriptorForAxis"));
    return QLatin1String("");
}

QString TVKMultipleKeySequenceAction::axisName(const QStringList& names, int axis) const
{
    if (axis < 0 || axis >= numberOfDirections() || axis >= names.size())
        return QStringLiteral("none");
    return names.at(axis);
}

void TVKMultipleKeySequenceAction::createEmptySequences()
{
    m_sequences.clear();
    m_sequences.reserve(4);
    for (int direction = 0; direction < numberOfDirections(); ++direction)
        m_sequences.emplace_back();
}

void TVKMultipleKeySequenceAction::restoreSequences(const PlistValue& archive)
{
    // An older file may hold fewer lists than the control has directions; the action then keeps
    // fewer slots, exactly as read.
    m_sequences.clear();
    const PlistValue& lists = archive.value(key::SMultSeq);
    if (!lists.isArray())
        return;
    for (qsizetype i = 0; i < lists.size() && i < numberOfDirections(); ++i)
        m_sequences.push_back(unarchiveKeySequence(lists.at(i)));
}

TVKKeystrokeList* TVKMultipleKeySequenceAction::sequenceForDirection(int direction)
{
    if (direction < 0 || direction >= numberOfDirections() ||
        size_t(direction) >= m_sequences.size())
        return nullptr;
    return &m_sequences[size_t(direction)];
}

const TVKKeystrokeList* TVKMultipleKeySequenceAction::sequenceForDirection(int direction) const
{
    return const_cast<TVKMultipleKeySequenceAction*>(this)->sequenceForDirection(direction);
}

void TVKMultipleKeySequenceAction::setSequence(const TVKKeystrokeList& sequence, int direction)
{
    if (direction < 0 || direction >= numberOfDirections())
        return;
    const size_t slot = size_t(direction);
    if (slot < m_sequences.size()) {
        if (&m_sequences[slot] == &sequence)
            return;
        m_sequences[slot] = sequence;
    } else if (slot == m_sequences.size()) {
        m_sequences.push_back(sequence);
    }
}

std::vector<int> TVKMultipleKeySequenceAction::descriptorOrder() const
{
    std::vector<int> order;
    for (int direction = 0; direction < numberOfDirections(); ++direction)
        order.push_back(direction);
    return order;
}

QString TVKMultipleKeySequenceAction::actionDescriptor() const
{
    QString text = QStringLiteral("Key Sequence") + QStringLiteral(": ");
    for (int direction : descriptorOrder()) {
        text += QLatin1Char(' ') + descriptorForAxis(direction) + QStringLiteral(" - ");
        const TVKKeystrokeList* sequence = sequenceForDirection(direction);
        if (!sequence || sequence->empty()) {
            if (describesEmptyDirection())
                text += QStringLiteral("none ");
            continue;
        }
        for (const TVKKeystrokeElement& element : *sequence)
            text += corvane::objectText(element.character()) + QLatin1Char(' ');
    }
    return text;
}

void TVKMultipleKeySequenceAction::writeTo(PlistValue& dict) const
{
    TVKKeySequenceAction::writeTo(dict);
    PlistValue lists = PlistValue::makeArray(qsizetype(m_sequences.size()));
    for (const TVKKeystrokeList& sequence : m_sequences)
        lists.append(archiveKeySequence(sequence));
    dict.insert(key::SMultSeq, std::move(lists));
}

// ---- concrete per-direction classes

#define CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS(Class)                                                 \
    Class::Class(TVKControl* control, unsigned delay, bool repeat)                                 \
        : TVKMultipleKeySequenceAction(control, delay, repeat)                                     \
    {                                                                                              \
        createEmptySequences();                                                                    \
    }                                                                                              \
    Class::Class(const PlistValue& archive, TVKControl* control)                                   \
        : TVKMultipleKeySequenceAction(archive, control)                                           \
    {                                                                                              \
        restoreSequences(archive);                                                                 \
    }                                                                                              \
    std::unique_ptr<TVKAction> Class::copyWithZone() const                                         \
    {                                                                                              \
        return std::unique_ptr<TVKAction>(new Class(*this));                                       \
    }

CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS(TVK4WayKeySequenceAction)
CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS(TVKEncoderKeySequenceAction)
CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS(TVKJogKeySequenceAction)
CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS(TVKShuttleKeySequenceAction)

#undef CORVANE_MULTIPLE_KEY_SEQUENCE_CLASS

QString TVK4WayKeySequenceAction::descriptorForAxis(int axis) const
{
    if (fourWayAxisDescriptors.isEmpty())
        fourWayAxisDescriptors = {QStringLiteral("Left"), QStringLiteral("Right"),
                                  QStringLiteral("Up"), QStringLiteral("Down")};
    return axisName(fourWayAxisDescriptors, axis);
}

QString TVKEncoderKeySequenceAction::descriptorForAxis(int axis) const
{
    if (encoderAxisDescriptors.isEmpty())
        encoderAxisDescriptors = {QStringLiteral("Counter Clockwise"), QStringLiteral("Clockwise")};
    return axisName(encoderAxisDescriptors, axis);
}

QString TVKJogKeySequenceAction::descriptorForAxis(int axis) const
{
    if (jogAxisDescriptors.isEmpty())
        jogAxisDescriptors = {QStringLiteral("Counter Clockwise"), QStringLiteral("Clockwise")};
    return axisName(jogAxisDescriptors, axis);
}

QString TVKShuttleKeySequenceAction::descriptorForAxis(int axis) const
{
    if (shuttleAxisDescriptors.isEmpty())
        shuttleAxisDescriptors = {QStringLiteral("Counter Clockwise"), QStringLiteral("Clockwise"),
                                  QStringLiteral("Stopped")};
    return axisName(shuttleAxisDescriptors, axis);
}
