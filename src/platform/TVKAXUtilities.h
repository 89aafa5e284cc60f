#pragma once

#include "core/FourCharCode.h"

#include <QPointF>
#include <QSizeF>
#include <QString>
#include <optional>
#include <variant>

// What lies under a point of the screen: the application and its window, filled only when the
// whole query succeeded.
struct TVKAXObjectInfo
{
    QString appName;
    corvane::FourCharCode appSignature = 0;
    std::optional<QString> appID;      // the application's identifier; may be absent
    std::optional<QString> windowName; // absent for a window without a title
    QPointF windowPos;                 // top-left corner, global, origin at the top left
    QSizeF windowSize;
};

// One element of the desktop's user interface (a window, a part of one, an application), opaque
// to everything but the service that handed it out.
struct TVKAXElement
{
    enum class Kind
    {
        Window,
        Application
    };
    Kind kind = Kind::Window;
    quint64 handle = 0;
    bool operator==(const TVKAXElement&) const = default;
};

// The error codes of the accessibility service; 0 is success.
enum TVKAXError : int
{
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorCannotComplete = -25204,
    kAXErrorAttributeUnsupported = -25205,
    kAXErrorAPIDisabled = -25211,
    kAXErrorNoValue = -25212,
};

// An attribute's value: a text, another element, a point or a size.
using TVKAXValue = std::variant<std::monostate, QString, TVKAXElement, QPointF, QSizeF>;

// The desktop's accessibility service: what the utilities below need of it, so that each desktop
// supplies its own (X11 in this program).
class TVKAXService
{
public:
    virtual ~TVKAXService() = default;

    // The deepest element at a global point (top-left origin).
    virtual int copyElementAtPosition(QPointF point, TVKAXElement& element) = 0;
    // "AXRole", "AXParent", "AXTitle", "AXPosition" or "AXSize" of an element.
    virtual int copyAttributeValue(const TVKAXElement& element, const QString& attribute,
                                   TVKAXValue& value) = 0;
    // The process that owns the element.
    virtual int getPid(const TVKAXElement& element, qint64& pid) = 0;

    // The running application of a process, as its application element shows it: its identifier
    // (none when it has none) and the signature its bundle declares (none: it declares none).
    struct RunningApplication
    {
        std::optional<QString> bundleIdentifier;
        std::optional<QString> signature;
    };
    virtual std::optional<RunningApplication> runningApplication(qint64 pid,
                                                                 const TVKAXElement& element) = 0;
};

// Finds the application and the window under a point of the screen. Class operations only; the
// service to ask is handed to each.
class TVKAXUtilities
{
public:
    TVKAXUtilities() = delete;

    // Fills all six fields and answers true, or answers false and leaves the record as it was.
    static bool getAXObjects(TVKAXService& service, TVKAXObjectInfo& info, QPointF point);
    // The nearest element, itself included, whose role is "AXWindow".
    static std::optional<TVKAXElement> getAXWindowElementFor(TVKAXService& service,
                                                             const TVKAXElement& element);
    // The nearest element, itself included, whose role is "AXApplication".
    static std::optional<TVKAXElement> getAXApplicationElementFor(TVKAXService& service,
                                                                  const TVKAXElement& element);
    // The signature ("????" when none is declared) and the identifier of the application.
    static bool getSignature(TVKAXService& service, corvane::FourCharCode& signature,
                             std::optional<QString>& bundleID, const TVKAXElement& application);
};
