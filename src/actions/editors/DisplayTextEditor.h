#pragma once

#include "actions/editors/EditorLogic.h"

#include <QString>

class TVKActionContainer;
class TVKControl;

namespace corvane {

// The custom text editor of a character display: one line, as long as the display is wide. An
// empty text means no function.
class DisplayTextEditor : public EditorLogic
{
public:
    // The width offered when the display's own is unknown.
    static constexpr int kFallbackWidth = 40;

    explicit DisplayTextEditor(TVKActionContainer& container);

    // Shows the held text action of the display (its text, or none) and the display's width.
    void updateForNewAction(const TVKControl* display);
    // The text field was edited. True when the container changed: a new text action for the
    // display, the held one changed in place, or the action removed for an empty text.
    bool setText(const QString& text, TVKControl* display);

    const QString& text() const { return m_text; }
    int width() const { return m_width; }

private:
    TVKActionContainer& m_container;
    QString m_text;
    int m_width = kFallbackWidth;
};

} // namespace corvane
