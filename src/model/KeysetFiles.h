#pragma once

#include "core/PlistValue.h"

#include <QString>
#include <vector>

class TVKKeyset;
class TVKModelData;

// Keyset files: one keyset's dictionary as a property-list file. The application's Export
// Keyset and Export All Keysets and the keyset tool write them through these, so that every
// keyset file is written one way.
namespace corvane {

// The type and extension of a keyset file.
QString keysetFileType();

// The keyset's dictionary as a keyset file holds it.
PlistValue keysetFileArchive(const TVKKeyset& keyset);
// Writes the keyset file atomically (XML): the file is the whole keyset or left as it was.
bool writeKeysetFile(const TVKKeyset& keyset, const QString& path, QString* errorMessage);

// A keyset name made into a file name (without extension) that every common file system takes:
// no folder separators, no characters FAT or SMB refuse, no control characters, not hidden,
// not empty, and short enough for the extension and a counter.
QString safeFileName(const QString& name);

// The file one keyset of an export of all keysets goes to.
struct KeysetFileName
{
    int keyset;       // its index in the keyset list
    QString fileName; // "Name.CvKs", unique in the export whatever the case
};

// The files of every keyset that can be exported (all but keyset 0, which never is), in list
// order. Keysets of the same name get "Name 2.CvKs", "Name 3.CvKs"…
std::vector<KeysetFileName> exportFileNames(const TVKModelData& model);

} // namespace corvane
