#include "actions/TVKBuiltInAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

using corvane::PlistValue;

TVKBuiltInAction::TVKBuiltInAction(TVKControl* control) : TVKKeySequenceAction(control, 0, false) {}

TVKBuiltInAction::TVKBuiltInAction(TVKControl* control, unsigned delay, bool repeat,
                                   int commandGroup, int command, const QString& commandGroupName,
                                   const QString& commandName, int mode, int procedure,
                                   quint32 keyCode, quint64 modifiers)
    : TVKKeySequenceAction(control, delay, repeat), m_commandGroupIndex(commandGroup),
      m_commandIndex(command), m_commandGroupName(commandGroupName), m_commandName(commandName),
      m_mode(mode), m_procedure(procedure)
{
    // Procedure commands carry a zero keystroke too, so the sequence always has one element.
    addKeystroke(QString(), keyCode, modifiers, m_sequence);
}

TVKBuiltInAction::TVKBuiltInAction(const PlistValue& archive, TVKControl* control)
    : TVKKeySequenceAction(archive, control),
      m_sequence(unarchiveKeySequence(archive.value(key::KeySeq)))
{
    m_commandGroupIndex = qint32(archive.value(key::CmdGrpIdx).toInteger());
    m_commandIndex = qint32(archive.value(key::CmdIdx).toInteger());
    m_commandGroupName = archive.value(key::CommandGroupName).toString();
    m_commandName = archive.value(key::CommandName).toString();
    m_mode = qint32(archive.value(key::CommandMode).toInteger());
    m_procedure = qint32(archive.value(key::CommandProc).toInteger());
}

QString TVKBuiltInAction::actionDescriptor() const
{
    return QStringLiteral("Built In- ") + corvane::objectText(m_commandGroupName) +
           QStringLiteral(": ") + corvane::objectText(m_commandName);
}

corvane::FourCharCode TVKBuiltInAction::editorTabID() const
{
    return corvane::fourCC("BILT");
}

void TVKBuiltInAction::writeTo(PlistValue& dict) const
{
    TVKKeySequenceAction::writeTo(dict);
    dict.insert(key::KeySeq, archiveKeySequence(m_sequence));
    dict.insert(key::CmdGrpIdx, PlistValue(m_commandGroupIndex));
    dict.insert(key::CmdIdx, PlistValue(m_commandIndex));
    // The catalogue's own keys, without the prefix.
    if (!m_commandGroupName.isNull())
        dict.insert(key::CommandGroupName, PlistValue(m_commandGroupName));
    if (!m_commandName.isNull())
        dict.insert(key::CommandName, PlistValue(m_commandName));
    dict.insert(key::CommandMode, PlistValue(m_mode));
    dict.insert(key::CommandProc, PlistValue(m_procedure));
}

std::unique_ptr<TVKAction> TVKBuiltInLCDDisplayAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKBuiltInLCDDisplayAction(*this));
}

QString TVKBuiltInLCDDisplayAction::text() const
{
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    int width = 0;
    if (const TVKControl* control = owningControl())
        width = constants.widthOfDisplay(control->index(), constants.lcdDisplayGroupID());
    // A display narrower than the sample shows it unpadded.
    const int padding = width > 19 ? width - 19 : 0;
    return QStringLiteral("Selected Clip: ----") + QString(padding, QLatin1Char(' '));
}

std::unique_ptr<TVKAction> TVKBuiltInTimecodeDisplayAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKBuiltInTimecodeDisplayAction(*this));
}
