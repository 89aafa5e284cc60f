#include "platform/TVKAXUtilities.h"

#include "core/Log.h"

#include <exception>

namespace {

const QString kRole = QStringLiteral("AXRole");
const QString kParent = QStringLiteral("AXParent");
const QString kTitle = QStringLiteral("AXTitle");

// "????": what an application that declares no signature has.
constexpr corvane::FourCharCode kUnknownSignature = 0x3F3F3F3F;

std::optional<TVKAXElement> elementWithRole(TVKAXService& service, TVKAXElement element,
                                            const QString& wanted)
{
    // The chain ends at the application element, which has no parent; no depth limit is needed
    // beyond that, but a service that made a loop must not hang the program.
    for (int depth = 0; depth < 4096; ++depth) {
        TVKAXValue role;
        if (service.copyAttributeValue(element, kRole, role) != kAXErrorSuccess)
            return std::nullopt;
        const QString* text = std::get_if<QString>(&role);
        if (!text)
            return std::nullopt;
        if (*text == wanted)
            return element;
        TVKAXValue parent;
        if (service.copyAttributeValue(element, kParent, parent) != kAXErrorSuccess)
            return std::nullopt;
        const TVKAXElement* next = std::get_if<TVKAXElement>(&parent);
        if (!next)
            return std::nullopt;
        element = *next;
    }
    return std::nullopt;
}

} // namespace

bool TVKAXUtilities::getAXObjects(TVKAXService& service, TVKAXObjectInfo& info, QPointF point)
{
    try {
        TVKAXElement element;
        if (service.copyElementAtPosition(point, element) != kAXErrorSuccess)
            return false;
        const std::optional<TVKAXElement> window = getAXWindowElementFor(service, element);
        if (!window)
            return false;
        // A window without a title is still a window: the name stays absent.
        TVKAXValue windowTitle;
        service.copyAttributeValue(*window, kTitle, windowTitle);
        std::optional<QString> windowName;
        if (const QString* text = std::get_if<QString>(&windowTitle))
            windowName = *text;

        const std::optional<TVKAXElement> application =
            getAXApplicationElementFor(service, *window);
        if (!application)
            return false;
        TVKAXValue appTitle;
        if (service.copyAttributeValue(*application, kTitle, appTitle) != kAXErrorSuccess)
            return false;
        const QString* appName = std::get_if<QString>(&appTitle);

        corvane::FourCharCode signature = 0;
        std::optional<QString> bundleID;
        if (!getSignature(service, signature, bundleID, *application))
            return false;

        TVKAXValue position;
        if (service.copyAttributeValue(*window, QStringLiteral("AXPosition"), position) !=
            kAXErrorSuccess)
            return false;
        const QPointF* pos = std::get_if<QPointF>(&position);
        if (!pos)
            return false;
        TVKAXValue size;
        if (service.copyAttributeValue(*window, QStringLiteral("AXSize"), size) != kAXErrorSuccess)
            return false;
        const QSizeF* extent = std::get_if<QSizeF>(&size);
        if (!extent)
            return false;

        info.appName = appName ? *appName : QString();
        info.appSignature = signature;
        info.appID = bundleID;
        info.windowName = windowName;
        info.windowPos = *pos;
        info.windowSize = *extent;
        return true;
    } catch (...) {
        corvane::log(QStringLiteral("caught exception in getAXObjects:underMousePtr:"));
        return false;
    }
}

std::optional<TVKAXElement> TVKAXUtilities::getAXWindowElementFor(TVKAXService& service,
                                                                  const TVKAXElement& element)
{
    try {
        return elementWithRole(service, element, QStringLiteral("AXWindow"));
    } catch (...) {
        corvane::log(QStringLiteral("caught exception in getAXWindowElementFor:"));
        return std::nullopt;
    }
}

std::optional<TVKAXElement> TVKAXUtilities::getAXApplicationElementFor(TVKAXService& service,
                                                                       const TVKAXElement& element)
{
    try {
        return elementWithRole(service, element, QStringLiteral("AXApplication"));
    } catch (...) {
        corvane::log(QStringLiteral("caught exception in getAXApplicationElementFor:"));
        return std::nullopt;
    }
}

bool TVKAXUtilities::getSignature(TVKAXService& service, corvane::FourCharCode& signature,
                                  std::optional<QString>& bundleID, const TVKAXElement& application)
{
    try {
        qint64 pid = 0;
        if (service.getPid(application, pid) != kAXErrorSuccess)
            return false;
        const std::optional<TVKAXService::RunningApplication> running =
            service.runningApplication(pid, application);
        bundleID = running ? running->bundleIdentifier : std::nullopt;
        signature = running && running->signature
                        ? corvane::fourCharCodeFromString(*running->signature)
                        : kUnknownSignature;
        return true;
    } catch (...) {
        corvane::log(QStringLiteral("caught exception in getSignature:andID:forAXApplication:"));
        return false;
    }
}
