#include "model/KeysetFiles.h"

#include "core/PlistCodec.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QSet>

namespace corvane {

namespace {

// File names are at most 255 bytes; this leaves room for " 999" and ".CvKs".
constexpr qsizetype kMaxNameBytes = 200;

// Characters the common file systems refuse in a name: the folder separators everywhere, and
// the ones FAT, exFAT and SMB shares refuse, so that an export copied to a stick stays whole.
bool refused(QChar c)
{
    switch (c.unicode()) {
    case u'/':
    case u'\\':
    case u':':
    case u'*':
    case u'?':
    case u'"':
    case u'<':
    case u'>':
    case u'|':
        return true;
    default:
        return c.unicode() < 0x20 || c.unicode() == 0x7F;
    }
}

// Cuts the name to whole characters within the byte limit.
QString withinLimit(const QString& name)
{
    if (name.toUtf8().size() <= kMaxNameBytes)
        return name;
    QString cut;
    qsizetype bytes = 0;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const qsizetype length = name.at(i).isHighSurrogate() && i + 1 < name.size() ? 2 : 1;
        const qsizetype size = name.mid(i, length).toUtf8().size();
        if (bytes + size > kMaxNameBytes)
            break;
        cut += name.mid(i, length);
        bytes += size;
        i += length - 1;
    }
    return cut;
}

} // namespace

QString keysetFileType()
{
    return QStringLiteral("CvKs");
}

PlistValue keysetFileArchive(const TVKKeyset& keyset)
{
    PlistValue dict = PlistValue::makeDict(6);
    keyset.writeTo(dict);
    return dict;
}

bool writeKeysetFile(const TVKKeyset& keyset, const QString& path, QString* errorMessage)
{
    return PlistCodec::writeFile(path, keysetFileArchive(keyset), PlistFormat::Xml, errorMessage);
}

QString safeFileName(const QString& name)
{
    QString safe;
    safe.reserve(name.size());
    for (const QChar c : name)
        safe += refused(c) ? QLatin1Char('_') : c;
    safe = withinLimit(safe.simplified());
    // Names with a leading dot are hidden, and "." and ".." are not files at all; a trailing
    // dot or blank is dropped by some file systems, making two names one.
    for (qsizetype i = 0; i < safe.size() && safe.at(i) == QLatin1Char('.'); ++i)
        safe[i] = QLatin1Char('_');
    while (safe.endsWith(QLatin1Char('.')) || safe.endsWith(QLatin1Char(' ')))
        safe.chop(1);
    return safe.isEmpty() ? QStringLiteral("Keyset") : safe;
}

std::vector<KeysetFileName> exportFileNames(const TVKModelData& model)
{
    std::vector<KeysetFileName> names;
    // Compared without case: a folder on a stick or a share does not tell "Vim" from "vim".
    QSet<QString> taken;
    const QString extension = QLatin1Char('.') + keysetFileType();
    for (int k = 1; k < model.numberOfKeysets(); ++k) {
        const TVKKeyset* keyset = model.keysetAtIndex(k);
        if (!keyset)
            continue;
        const QString base = safeFileName(keyset->name());
        QString fileName = base + extension;
        for (int n = 2; taken.contains(fileName.toCaseFolded()); ++n)
            fileName = QStringLiteral("%1 %2%3").arg(base).arg(n).arg(extension);
        taken.insert(fileName.toCaseFolded());
        names.push_back({k, fileName});
    }
    return names;
}

} // namespace corvane
