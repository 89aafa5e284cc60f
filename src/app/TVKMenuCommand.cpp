#include "app/TVKMenuCommand.h"

#include <QAction>

namespace {

const char* const kCommand = "tvkCommand";
const char* const kTag = "tvkTag";

} // namespace

void TVKMenuItems::setCommand(QAction* item, TVKMenuCommand command, qint64 tag)
{
    item->setProperty(kCommand, int(command));
    item->setProperty(kTag, tag);
}

TVKMenuCommand TVKMenuItems::command(const QAction* item)
{
    return item ? TVKMenuCommand(item->property(kCommand).toInt()) : TVKMenuCommand::None;
}

qint64 TVKMenuItems::tag(const QAction* item)
{
    return item ? item->property(kTag).toLongLong() : 0;
}

void TVKMenuItems::setTag(QAction* item, qint64 tag)
{
    item->setProperty(kTag, tag);
}
