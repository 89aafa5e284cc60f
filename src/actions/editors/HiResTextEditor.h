#pragma once

#include "actions/editors/EditorLogic.h"

#include <QString>
#include <QStringList>

class TVKActionContainer;

namespace corvane {

// The high-resolution LCD button text editor: a line-count choice (0 to 4) and four line fields.
// The line count fixes how many characters each line holds; the stored text is the lines cut to
// that length and joined.
class HiResTextEditor : public EditorLogic
{
public:
    explicit HiResTextEditor(TVKActionContainer& container);

    // "Up to %ld characters per line allowed", or the empty label for a line count of 0.
    static QString lineLengthLabel(unsigned lineCount);

    // The line-count radios and the line fields. Each puts a new text action made from the
    // fields into the container; true when that changed what is held.
    bool setLineCount(unsigned lineCount);
    bool setLine(int index, const QString& text);
    unsigned lineCount() const { return m_lineCount; }
    const QStringList& lines() const { return m_lines; }
    const QString& label() const { return m_label; }

    // Shows the held text action: its line count, and its text split back into the fields.
    void updateForNewAction();

private:
    // Puts a new text action made from the fields into the container, unless the held one
    // already stores that text with that line count.
    bool apply();

    TVKActionContainer& m_container;
    unsigned m_lineCount = 0;
    QStringList m_lines = {QString(), QString(), QString(), QString()};
    QString m_label;
};

} // namespace corvane
