#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

// corvane-keyset sheet FILE|--store [--keyset NAME|INDEX] [--page a4|letter] -o OUT.pdf
// Writes the printable sheet of one keyset of the file as a PDF. Needs a QGuiApplication (the
// sheet draws text); the exit codes are KeysetTool's.
int runSheetCommand(const QStringList& arguments, QTextStream& out, QTextStream& err);

QString sheetUsage();

} // namespace corvane
