#pragma once

#include "core/PlistValue.h"

#include <QString>
#include <memory>

class QMimeData;
class TVKAction;

namespace corvane {

// One control's action on the clipboard. It travels as its archive dictionary (what a keyset file
// keeps under "TVKAction" and the service receives under "TVActionObject"), written as an XML
// property list under a type of its own, and as the plain text of its full description for every
// other program. docs/file-formats.md describes the form.
namespace ActionClipboard {

QString mimeType();

// Both forms of the action, ready for the clipboard.
std::unique_ptr<QMimeData> mimeData(const TVKAction& action);

// What the clipboard holds for a paste: an action's archive and its type code, or why there is
// none to paste.
struct Content
{
    PlistValue archive; // a dictionary when problem is empty
    qint32 actionType = 0;
    QString problem;
    bool ok() const { return problem.isEmpty(); }
};

// Reads the clipboard's action. Other programs' data, a damaged property list, a dictionary that
// is no action and an action this version cannot restore are refused with the reason.
Content read(const QMimeData* data);

} // namespace ActionClipboard

} // namespace corvane
