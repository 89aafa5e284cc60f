#include "actions/ActionClipboard.h"

#include "actions/ActionDescription.h"
#include "actions/ActionFit.h"
#include "actions/TVKAction.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"

#include <QCoreApplication>
#include <QMimeData>

namespace corvane::ActionClipboard {

namespace {

// An action's archive is a few hundred bytes; a long key sequence a few kilobytes. Anything near
// this is not an action, and is not parsed.
constexpr qsizetype kLargestArchive = 256 * 1024;

QString tr(const char* text)
{
    return QCoreApplication::translate("ActionClipboard", text);
}

} // namespace

QString mimeType()
{
    return QStringLiteral("application/x-corvane-action+plist");
}

std::unique_ptr<QMimeData> mimeData(const TVKAction& action)
{
    PlistValue archive = PlistValue::makeDict();
    action.writeTo(archive);
    auto data = std::make_unique<QMimeData>();
    data->setData(mimeType(), PlistCodec::write(archive, PlistFormat::Xml));
    data->setText(describeAction(action, Detail::Full));
    return data;
}

Content read(const QMimeData* data)
{
    Content content;
    if (!data || !data->hasFormat(mimeType())) {
        content.problem = tr("The clipboard holds no action. Copy a control’s action first.");
        return content;
    }
    const QByteArray bytes = data->data(mimeType());
    if (bytes.size() > kLargestArchive) {
        content.problem = tr("The clipboard’s action cannot be read: it is too large to be one.");
        return content;
    }
    const PlistReadResult read = PlistCodec::read(bytes);
    if (!read.ok) {
        content.problem =
            tr("The clipboard’s action cannot be read: %1").arg(read.error.toString());
        return content;
    }
    const PlistValue& type = read.value.value(key::ActnType);
    if (!read.value.isDict() || !type.isInteger()) {
        content.problem =
            tr("The clipboard’s action cannot be read: it holds no action’s property list.");
        return content;
    }
    const qint64 code = type.toInteger();
    if (code != qint64(qint32(code)) || !isKnownActionType(qint32(code))) {
        content.problem =
            tr("The clipboard holds an action of a kind this version does not know (type %1).")
                .arg(code);
        return content;
    }
    content.archive = read.value;
    content.actionType = qint32(code);
    return content;
}

} // namespace corvane::ActionClipboard
