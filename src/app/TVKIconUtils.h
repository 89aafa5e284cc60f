#pragma once

#include "platform/DesktopEntries.h"

#include <QByteArray>

// Application icons as keysets keep them: the application's theme icon (or its icon file)
// rendered at a given size, as PNG bytes.
class TVKIconUtils
{
public:
    static TVKIconUtils& defaultIconUtils();

    // Empty when the application has no icon the desktop can find.
    QByteArray iconForBundle(const corvane::DesktopApplication& application, int width,
                             int height) const;
};
