#pragma once

#include "core/PlistValue.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

class QIODevice;

namespace corvane {

enum class PlistFormat
{
    Xml,
    Binary
};

// Why a document could not be read: the byte offset where reading stopped and the reason.
struct PlistError
{
    qint64 offset = -1;
    QString reason;
    // "offset N: reason", or the reason alone when no position applies.
    QString toString() const;
};

struct PlistReadResult
{
    bool ok = false;
    PlistValue value; // null unless ok: a partial tree is never handed on
    PlistFormat format = PlistFormat::Xml;
    PlistError error;
};

// The program's one property-list codec: the standard XML form and the binary "bplist00" form.
// Readers detect the form from the content.
class PlistCodec
{
public:
    static PlistReadResult read(QByteArrayView bytes);
    // Reads a file without holding it twice in memory; large configurations stay within bounds.
    static PlistReadResult readFile(const QString& path);

    static QByteArray write(const PlistValue& value, PlistFormat format = PlistFormat::Xml);
    // Writes the whole document to the device; false (with the reason) when the device fails.
    static bool write(QIODevice& device, const PlistValue& value, PlistFormat format,
                      QString* errorMessage = nullptr);
    // Atomic replacement through QSaveFile: a failed write leaves the old file as it was.
    static bool writeFile(const QString& path, const PlistValue& value,
                          PlistFormat format = PlistFormat::Xml, QString* errorMessage = nullptr);
};

} // namespace corvane
