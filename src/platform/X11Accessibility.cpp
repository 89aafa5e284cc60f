#include "platform/X11Accessibility.h"

#include "platform/DesktopEntries.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <vector>
#include <xcb/res.h>
#include <xcb/xcb.h>

namespace corvane {

namespace {

template <typename Reply>
struct Freed
{
    Reply* reply;
    explicit Freed(Reply* r) : reply(r) {}
    ~Freed() { std::free(reply); }
    Freed(const Freed&) = delete;
    Freed& operator=(const Freed&) = delete;
    Reply* operator->() const { return reply; }
    explicit operator bool() const { return reply != nullptr; }
};

// How a window names its application: WM_CLASS's two halves.
struct WindowClass
{
    QString instance;
    QString className;
};

} // namespace

struct X11Accessibility::Connection
{
    xcb_connection_t* c = nullptr;
    xcb_window_t root = XCB_WINDOW_NONE;
    QSizeF screen;
    bool hasResources = false;
    xcb_atom_t wmState = XCB_ATOM_NONE;
    xcb_atom_t netWmName = XCB_ATOM_NONE;
    xcb_atom_t utf8String = XCB_ATOM_NONE;
    xcb_atom_t netWmPid = XCB_ATOM_NONE;
    xcb_atom_t gtkFrameExtents = XCB_ATOM_NONE;
    xcb_atom_t gtkApplicationId = XCB_ATOM_NONE;
    xcb_atom_t netWmWindowType = XCB_ATOM_NONE;
    xcb_atom_t netWmWindowTypeDesktop = XCB_ATOM_NONE;

    // The desktop entries, read again only when an applications folder changed.
    std::vector<DesktopApplication> applications;
    QStringList folders;
    std::vector<QDateTime> folderTimes;
    bool applicationsRead = false;

    ~Connection()
    {
        if (c)
            xcb_disconnect(c);
    }

    xcb_atom_t atom(const char* name) const
    {
        Freed reply(xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(qstrlen(name)), name),
                                          nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    // A property's bytes and type; none when the window is gone or lacks it.
    std::optional<QByteArray> property(xcb_window_t window, xcb_atom_t name,
                                       xcb_atom_t* type = nullptr, uint32_t longs = 1u << 16) const
    {
        Freed reply(xcb_get_property_reply(
            c, xcb_get_property(c, 0, window, name, XCB_ATOM_ANY, 0, longs), nullptr));
        if (!reply || reply->type == XCB_ATOM_NONE)
            return std::nullopt;
        if (type)
            *type = reply->type;
        const int length = xcb_get_property_value_length(reply.reply);
        return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.reply)), length);
    }

    bool hasProperty(xcb_window_t window, xcb_atom_t name) const
    {
        return property(window, name, nullptr, 0).has_value();
    }

    std::optional<std::vector<uint32_t>> cardinals(xcb_window_t window, xcb_atom_t name) const
    {
        const std::optional<QByteArray> bytes = property(window, name);
        if (!bytes)
            return std::nullopt;
        std::vector<uint32_t> values(size_t(bytes->size()) / sizeof(uint32_t));
        if (!values.empty())
            std::memcpy(values.data(), bytes->constData(), values.size() * sizeof(uint32_t));
        return values;
    }

    struct Translated
    {
        int x = 0;
        int y = 0;
        xcb_window_t child = XCB_WINDOW_NONE;
    };
    std::optional<Translated> translate(xcb_window_t from, xcb_window_t to, int x, int y) const
    {
        Freed reply(xcb_translate_coordinates_reply(
            c, xcb_translate_coordinates(c, from, to, int16_t(x), int16_t(y)), nullptr));
        if (!reply)
            return std::nullopt;
        return Translated{reply->dst_x, reply->dst_y, reply->child};
    }

    std::optional<xcb_window_t> parent(xcb_window_t window) const
    {
        Freed reply(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
        if (!reply)
            return std::nullopt;
        return reply->parent;
    }

    bool isDesktop(xcb_window_t window) const
    {
        const std::optional<std::vector<uint32_t>> types = cardinals(window, netWmWindowType);
        return types &&
               std::find(types->begin(), types->end(), netWmWindowTypeDesktop) != types->end();
    }

    // A client window: one the window manager manages (WM_STATE), other than the desktop's own
    // background window, which counts as no window at all.
    bool isClient(xcb_window_t window) const
    {
        return window != root && hasProperty(window, wmState) && !isDesktop(window);
    }

    // The client window inside a top-level window (a frame of the window manager, or the client
    // itself when nobody frames it), searched breadth first as window managers nest it.
    xcb_window_t clientInside(xcb_window_t top) const
    {
        std::deque<xcb_window_t> queue{top};
        for (int visited = 0; !queue.empty() && visited < 512; ++visited) {
            const xcb_window_t window = queue.front();
            queue.pop_front();
            if (hasProperty(window, wmState))
                return isDesktop(window) ? xcb_window_t(XCB_WINDOW_NONE) : window;
            Freed tree(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
            if (!tree)
                continue;
            const xcb_window_t* children = xcb_query_tree_children(tree.reply);
            // Topmost first: the last child is stacked highest.
            for (int i = xcb_query_tree_children_length(tree.reply) - 1; i >= 0; --i)
                queue.push_back(children[i]);
        }
        return XCB_WINDOW_NONE;
    }

    std::optional<QString> windowTitle(xcb_window_t window) const
    {
        if (const std::optional<QByteArray> name = property(window, netWmName))
            return QString::fromUtf8(*name);
        xcb_atom_t type = XCB_ATOM_NONE;
        if (const std::optional<QByteArray> name = property(window, XCB_ATOM_WM_NAME, &type))
            return type == utf8String ? QString::fromUtf8(*name) : QString::fromLatin1(*name);
        return std::nullopt;
    }

    std::optional<WindowClass> windowClass(xcb_window_t window) const
    {
        const std::optional<QByteArray> bytes = property(window, XCB_ATOM_WM_CLASS);
        if (!bytes)
            return std::nullopt;
        const QList<QByteArray> parts = bytes->split('\0');
        return WindowClass{QString::fromLocal8Bit(parts.value(0)),
                           QString::fromLocal8Bit(parts.value(1))};
    }

    // Left, right, top, bottom: the invisible margin a client-side decorated window keeps for
    // its shadow.
    std::vector<uint32_t> shadowExtents(xcb_window_t window) const
    {
        std::vector<uint32_t> extents =
            cardinals(window, gtkFrameExtents).value_or(std::vector<uint32_t>{});
        extents.resize(4, 0);
        return extents;
    }

    std::optional<qint64> pid(xcb_window_t window) const
    {
        if (const std::optional<std::vector<uint32_t>> pid = cardinals(window, netWmPid);
            pid && !pid->empty() && pid->front() != 0)
            return qint64(pid->front());
        if (!hasResources)
            return std::nullopt;
        xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        Freed reply(
            xcb_res_query_client_ids_reply(c, xcb_res_query_client_ids(c, 1, &spec), nullptr));
        if (!reply)
            return std::nullopt;
        for (xcb_res_client_id_value_iterator_t it =
                 xcb_res_query_client_ids_ids_iterator(reply.reply);
             it.rem; xcb_res_client_id_value_next(&it)) {
            if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) &&
                xcb_res_client_id_value_value_length(it.data) >= 1)
                return qint64(*xcb_res_client_id_value_value(it.data));
        }
        return std::nullopt;
    }

    const std::vector<DesktopApplication>& desktopApplications()
    {
        const QStringList now = DesktopEntries::applicationFolders();
        std::vector<QDateTime> times;
        for (const QString& folder : now)
            times.push_back(QFileInfo(folder).lastModified());
        if (!applicationsRead || now != folders || times != folderTimes) {
            applications =
                DesktopEntries::installedApplications(now, DesktopEntries::userLanguage(), true);
            folders = now;
            folderTimes = times;
            applicationsRead = true;
        }
        return applications;
    }

    // The desktop file id a window belongs to: the id it declares, the sandbox's application id,
    // else the entry that its WM_CLASS matches.
    std::optional<QString> applicationID(xcb_window_t window, std::optional<qint64> pid)
    {
        if (const std::optional<QByteArray> id = property(window, gtkApplicationId);
            id && !id->isEmpty())
            return QString::fromUtf8(*id);
        if (pid) {
            QFile flatpak(QStringLiteral("/proc/%1/root/.flatpak-info").arg(*pid));
            if (flatpak.open(QIODevice::ReadOnly)) {
                const QString text = QString::fromUtf8(flatpak.read(1 << 16));
                static const QRegularExpression name(QStringLiteral("^name=(.+)$"),
                                                     QRegularExpression::MultilineOption);
                if (const QRegularExpressionMatch m = name.match(text); m.hasMatch())
                    return m.captured(1).trimmed();
            }
            QFile cgroup(QStringLiteral("/proc/%1/cgroup").arg(*pid));
            if (cgroup.open(QIODevice::ReadOnly)) {
                // A snap's processes run in "snap.<snap>.<app>…" scopes; its entries are
                // exported as "<snap>_<app>.desktop".
                static const QRegularExpression snap(QStringLiteral("snap\\.([^./]+)\\.([^./-]+)"));
                if (const QRegularExpressionMatch m =
                        snap.match(QString::fromUtf8(cgroup.read(1 << 16)));
                    m.hasMatch())
                    return m.captured(1) + u'_' + m.captured(2);
            }
        }
        if (const std::optional<WindowClass> wmClass = windowClass(window)) {
            if (const DesktopApplication* app = DesktopEntries::matchWindowClass(
                    desktopApplications(), wmClass->instance, wmClass->className))
                return app->id;
        }
        return std::nullopt;
    }

    std::optional<QString> applicationName(xcb_window_t window)
    {
        const std::optional<qint64> owner = pid(window);
        if (const std::optional<QString> id = applicationID(window, owner)) {
            for (const DesktopApplication& app : desktopApplications()) {
                if (app.id == *id)
                    return app.name;
            }
        }
        if (const std::optional<WindowClass> wmClass = windowClass(window);
            wmClass && !wmClass->className.isEmpty())
            return wmClass->className;
        if (owner) {
            QFile comm(QStringLiteral("/proc/%1/comm").arg(*owner));
            if (comm.open(QIODevice::ReadOnly))
                return QString::fromUtf8(comm.readAll()).trimmed();
        }
        return std::nullopt;
    }
};

X11Accessibility::X11Accessibility(const QString& displayName) : d(std::make_unique<Connection>())
{
    // Without X11 at all (a Wayland session without XWayland) there is nothing to connect to.
    if (displayName.isEmpty() && qEnvironmentVariableIsEmpty("DISPLAY"))
        return;
    int screenNumber = 0;
    const QByteArray name = displayName.toLocal8Bit();
    xcb_connection_t* c = xcb_connect(name.isEmpty() ? nullptr : name.constData(), &screenNumber);
    if (xcb_connection_has_error(c)) {
        xcb_disconnect(c);
        return;
    }
    d->c = c;
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (int i = 0; i < screenNumber && it.rem; ++i)
        xcb_screen_next(&it);
    d->root = it.data->root;
    d->screen = QSizeF(it.data->width_in_pixels, it.data->height_in_pixels);
    const xcb_query_extension_reply_t* resources = xcb_get_extension_data(c, &xcb_res_id);
    d->hasResources = resources && resources->present;
    d->wmState = d->atom("WM_STATE");
    d->netWmName = d->atom("_NET_WM_NAME");
    d->utf8String = d->atom("UTF8_STRING");
    d->netWmPid = d->atom("_NET_WM_PID");
    d->gtkFrameExtents = d->atom("_GTK_FRAME_EXTENTS");
    d->gtkApplicationId = d->atom("_GTK_APPLICATION_ID");
    d->netWmWindowType = d->atom("_NET_WM_WINDOW_TYPE");
    d->netWmWindowTypeDesktop = d->atom("_NET_WM_WINDOW_TYPE_DESKTOP");
}

X11Accessibility::~X11Accessibility() = default;

bool X11Accessibility::isConnected() const
{
    return d->c && !xcb_connection_has_error(d->c);
}

std::optional<QPointF> X11Accessibility::pointer() const
{
    if (!isConnected())
        return std::nullopt;
    Freed reply(xcb_query_pointer_reply(d->c, xcb_query_pointer(d->c, d->root), nullptr));
    if (!reply || !reply->same_screen)
        return std::nullopt;
    return QPointF(reply->root_x, reply->root_y);
}

std::optional<QSizeF> X11Accessibility::screenSize() const
{
    if (!isConnected())
        return std::nullopt;
    return d->screen;
}

int X11Accessibility::copyElementAtPosition(QPointF point, TVKAXElement& element)
{
    if (!isConnected())
        return kAXErrorAPIDisabled;
    const int x = int(std::lround(point.x()));
    const int y = int(std::lround(point.y()));
    const std::optional<Connection::Translated> top = d->translate(d->root, d->root, x, y);
    if (!top)
        return kAXErrorCannotComplete;
    if (top->child == XCB_WINDOW_NONE) {
        element = {TVKAXElement::Kind::Window, d->root};
        return kAXErrorSuccess;
    }
    const xcb_window_t client = d->clientInside(top->child);
    if (client == XCB_WINDOW_NONE) {
        element = {TVKAXElement::Kind::Window, top->child};
        return kAXErrorSuccess;
    }
    // Down from the client to the deepest of its windows under the point; on the frame's
    // decorations the client itself.
    xcb_window_t deepest = client;
    for (int depth = 0; depth < 64; ++depth) {
        const std::optional<Connection::Translated> below = d->translate(d->root, deepest, x, y);
        if (!below || below->child == XCB_WINDOW_NONE)
            break;
        deepest = below->child;
    }
    element = {TVKAXElement::Kind::Window, deepest};
    return kAXErrorSuccess;
}

int X11Accessibility::copyAttributeValue(const TVKAXElement& element, const QString& attribute,
                                         TVKAXValue& value)
{
    if (!isConnected())
        return kAXErrorAPIDisabled;
    const xcb_window_t window = xcb_window_t(element.handle);
    if (element.kind == TVKAXElement::Kind::Application) {
        if (attribute == u"AXRole") {
            value = QStringLiteral("AXApplication");
            return kAXErrorSuccess;
        }
        if (attribute == u"AXTitle") {
            const std::optional<QString> name = d->applicationName(window);
            if (!name)
                return kAXErrorNoValue;
            value = *name;
            return kAXErrorSuccess;
        }
        return attribute == u"AXParent" ? kAXErrorNoValue : kAXErrorAttributeUnsupported;
    }

    const bool client = d->isClient(window);
    if (attribute == u"AXRole") {
        // A window that went away meanwhile has no role any more.
        if (!d->parent(window))
            return kAXErrorCannotComplete;
        value = client ? QStringLiteral("AXWindow") : QStringLiteral("AXGroup");
        return kAXErrorSuccess;
    }
    if (attribute == u"AXParent") {
        if (client) {
            value = TVKAXElement{TVKAXElement::Kind::Application, window};
            return kAXErrorSuccess;
        }
        const std::optional<xcb_window_t> parent = d->parent(window);
        if (!parent)
            return kAXErrorCannotComplete;
        if (*parent == XCB_WINDOW_NONE)
            return kAXErrorNoValue;
        value = TVKAXElement{TVKAXElement::Kind::Window, *parent};
        return kAXErrorSuccess;
    }
    if (!client)
        return kAXErrorAttributeUnsupported;
    if (attribute == u"AXTitle") {
        const std::optional<QString> title = d->windowTitle(window);
        if (!title)
            return kAXErrorNoValue;
        value = *title;
        return kAXErrorSuccess;
    }
    // The client area: where the window manager's frame ends, and inside the shadow margin of a
    // window that draws its own decorations.
    const std::vector<uint32_t> shadow = d->shadowExtents(window);
    if (attribute == u"AXPosition") {
        const std::optional<Connection::Translated> origin = d->translate(window, d->root, 0, 0);
        if (!origin)
            return kAXErrorCannotComplete;
        value = QPointF(origin->x + int(shadow[0]), origin->y + int(shadow[2]));
        return kAXErrorSuccess;
    }
    if (attribute == u"AXSize") {
        Freed geometry(xcb_get_geometry_reply(d->c, xcb_get_geometry(d->c, window), nullptr));
        if (!geometry)
            return kAXErrorCannotComplete;
        value = QSizeF(std::max(0, int(geometry->width) - int(shadow[0] + shadow[1])),
                       std::max(0, int(geometry->height) - int(shadow[2] + shadow[3])));
        return kAXErrorSuccess;
    }
    return kAXErrorAttributeUnsupported;
}

int X11Accessibility::getPid(const TVKAXElement& element, qint64& pid)
{
    if (!isConnected())
        return kAXErrorAPIDisabled;
    const std::optional<qint64> owner = d->pid(xcb_window_t(element.handle));
    if (!owner)
        return kAXErrorCannotComplete;
    pid = *owner;
    return kAXErrorSuccess;
}

std::optional<TVKAXService::RunningApplication>
X11Accessibility::runningApplication(qint64 pid, const TVKAXElement& element)
{
    if (!isConnected())
        return std::nullopt;
    // Desktop applications declare no signature.
    return RunningApplication{d->applicationID(xcb_window_t(element.handle), pid), std::nullopt};
}

} // namespace corvane
