// What lies under a point of an X11 desktop: a real X server with a window manager and real
// clients, and the query's rules on a service that answers as told.
#include "platform/X11Accessibility.h"

#include "QtPrinters.h"
#include "TestConfig.h"
#include "core/Log.h"
#include "platform/TVKAXUtilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRect>
#include <QTemporaryDir>
#include <QThread>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <xcb/xcb.h>

namespace {

constexpr corvane::FourCharCode kUnknown = 0x3F3F3F3F;

void writeFile(const QString& path, const QByteArray& text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

// A desktop session on the X server of $DISPLAY: openbox, an xterm and an xeyes with desktop
// entries of our own, the simulated service's virtual surface, and a bare window of the test's.
class X11Desktop
{
public:
    X11Desktop()
    {
        // The clients keep the session's folders (openbox needs its themes); only this process
        // reads the desktop entries of the test's own.
        m_session = QProcessEnvironment::systemEnvironment();
        qputenv("XDG_DATA_HOME", (m_home.path() + QStringLiteral("/data")).toLocal8Bit());
        qputenv("XDG_DATA_DIRS", (m_home.path() + QStringLiteral("/system")).toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", (m_home.path() + QStringLiteral("/config")).toLocal8Bit());
        qputenv("TVK_PORT_DIR", (m_home.path() + QStringLiteral("/ports")).toLocal8Bit());
        const QString apps = m_home.path() + QStringLiteral("/data/applications/");
        writeFile(apps + QStringLiteral("org.example.Terminal.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Example Terminal\nExec=xterm\n"
                  "StartupWMClass=XTerm\n");
        writeFile(apps + QStringLiteral("org.example.SurfaceSim.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Surface Simulator\n"
                  "Exec=corvane-service-sim --window\nStartupWMClass=corvane-service-sim\n"
                  "NoDisplay=true\n");

        c = xcb_connect(nullptr, nullptr);
        root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
        start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
        waitFor([&] { return hasProperty(root, atom("_NET_SUPPORTING_WM_CHECK")); });

        start(QStringLiteral("xterm"),
              {QStringLiteral("-T"), QStringLiteral("Corvane test terminal"), QStringLiteral("-fa"),
               QStringLiteral("Monospace"), QStringLiteral("-geometry"),
               QStringLiteral("60x12+100+120")});
        start(QStringLiteral("xeyes"),
              {QStringLiteral("-geometry"), QStringLiteral("160x120+800+100")});
        writeFile(
            m_home.path() + QStringLiteral("/empty.plist"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict/></plist>\n");
        QProcessEnvironment env = m_session;
        env.insert(QStringLiteral("TVK_PORT_DIR"), m_home.path() + QStringLiteral("/ports"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        start(QStringLiteral(CORVANE_BINARY_DIR "/tools/service-sim/corvane-service-sim"),
              {QStringLiteral("-geometry"), QStringLiteral("+1300+700"), QStringLiteral("--window"),
               QStringLiteral("--background"), QStringLiteral("--quiet"),
               QStringLiteral("--config"), m_home.path() + QStringLiteral("/empty.plist")},
              env);

        // A window of the test's own with no title, no class and no process id: the X server
        // has to say whose it is. It declares a shadow margin, as client-decorated windows do.
        bare = xcb_generate_id(c);
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        xcb_create_window(c, XCB_COPY_FROM_PARENT, bare, root, 700, 500, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        const uint32_t shadow[4] = {10, 20, 5, 15};
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, bare, atom("_GTK_FRAME_EXTENTS"),
                            XCB_ATOM_CARDINAL, 32, 4, shadow);
        xcb_map_window(c, bare);
        xcb_flush(c);

        waitFor([&] { return clients().size() >= 4; });
    }

    ~X11Desktop()
    {
        for (auto& process : m_processes) {
            process->terminate();
            if (!process->waitForFinished(2000))
                process->kill();
            process->waitForFinished(1000);
        }
        xcb_disconnect(c);
    }

    xcb_atom_t atom(const char* name) const
    {
        auto* reply =
            xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(qstrlen(name)), name), nullptr);
        const xcb_atom_t found = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
        free(reply);
        return found;
    }

    QByteArray property(xcb_window_t window, const char* name) const
    {
        auto* reply = xcb_get_property_reply(
            c, xcb_get_property(c, 0, window, atom(name), XCB_ATOM_ANY, 0, 1024), nullptr);
        QByteArray bytes;
        if (reply && reply->type != XCB_ATOM_NONE)
            bytes = QByteArray(static_cast<const char*>(xcb_get_property_value(reply)),
                               xcb_get_property_value_length(reply));
        free(reply);
        return bytes;
    }

    bool hasProperty(xcb_window_t window, xcb_atom_t name) const
    {
        auto* reply = xcb_get_property_reply(
            c, xcb_get_property(c, 0, window, name, XCB_ATOM_ANY, 0, 0), nullptr);
        const bool has = reply && reply->type != XCB_ATOM_NONE;
        free(reply);
        return has;
    }

    std::vector<xcb_window_t> clients() const
    {
        const QByteArray list = property(root, "_NET_CLIENT_LIST");
        std::vector<xcb_window_t> windows(size_t(list.size()) / 4);
        if (!windows.empty())
            memcpy(windows.data(), list.constData(), windows.size() * 4);
        return windows;
    }

    // The managed client whose WM_CLASS class is the one given.
    xcb_window_t clientOfClass(const QByteArray& className) const
    {
        for (xcb_window_t window : clients()) {
            if (property(window, "WM_CLASS").split('\0').value(1) == className)
                return window;
        }
        return XCB_WINDOW_NONE;
    }

    QRect clientArea(xcb_window_t window) const
    {
        auto* origin = xcb_translate_coordinates_reply(
            c, xcb_translate_coordinates(c, window, root, 0, 0), nullptr);
        auto* geometry = xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr);
        const QRect area(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
        free(origin);
        free(geometry);
        return area;
    }

    // Where the window manager put the frame: the client area less the frame's extents.
    QPoint frameOrigin(xcb_window_t window) const
    {
        xcb_window_t top = window;
        for (;;) {
            auto* tree = xcb_query_tree_reply(c, xcb_query_tree(c, top), nullptr);
            const xcb_window_t parent = tree->parent;
            free(tree);
            if (parent == root)
                break;
            top = parent;
        }
        auto* geometry = xcb_get_geometry_reply(c, xcb_get_geometry(c, top), nullptr);
        const QPoint origin(geometry->x, geometry->y);
        free(geometry);
        return origin;
    }

    xcb_connection_t* c = nullptr;
    xcb_window_t root = XCB_WINDOW_NONE;
    xcb_window_t bare = XCB_WINDOW_NONE;

private:
    void start(const QString& program, const QStringList& arguments,
               std::optional<QProcessEnvironment> env = std::nullopt)
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(env.value_or(m_session));
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(program, arguments);
        ASSERT_TRUE(process->waitForStarted(5000)) << qPrintable(program);
        m_processes.push_back(std::move(process));
    }

    template <typename Condition>
    static void waitFor(Condition condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition() && clock.elapsed() < 15000)
            QThread::msleep(50);
        ASSERT_TRUE(condition());
    }

    QProcessEnvironment m_session;
    QTemporaryDir m_home;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

class X11AccessibilityTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            return;
        s_desktop = new X11Desktop;
    }
    static void TearDownTestSuite()
    {
        delete s_desktop;
        s_desktop = nullptr;
    }
    void SetUp() override
    {
        if (!s_desktop)
            GTEST_SKIP() << "needs an X server";
    }

    static QPoint middleOf(const QRect& area) { return area.center(); }

    static X11Desktop* s_desktop;
    corvane::X11Accessibility service;
};

X11Desktop* X11AccessibilityTest::s_desktop = nullptr;

TEST_F(X11AccessibilityTest, AFramedTerminalGivesAllSixFieldsFromItsDesktopEntry)
{
    X11Desktop& desktop = *s_desktop;
    const xcb_window_t xterm = desktop.clientOfClass("XTerm");
    ASSERT_NE(xterm, XCB_WINDOW_NONE);
    const QRect area = desktop.clientArea(xterm);
    const QByteArray extents = desktop.property(xterm, "_NET_FRAME_EXTENTS");
    ASSERT_EQ(extents.size(), 16) << "openbox frames its windows";
    // Left, right, top, bottom, copied out of the bytes, which need not be aligned for them.
    std::array<uint32_t, 4> frame{};
    std::memcpy(frame.data(), extents.constData(), sizeof frame);

    TVKAXObjectInfo info;
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(service, info, middleOf(area)));
    EXPECT_EQ(info.appName, QStringLiteral("Example Terminal"));
    EXPECT_EQ(info.appSignature, kUnknown);
    EXPECT_EQ(info.appID, QStringLiteral("org.example.Terminal"));
    EXPECT_EQ(info.windowName, QStringLiteral("Corvane test terminal"));
    // The client area: the frame's place corrected by the frame's extents.
    const QPoint frameOrigin = desktop.frameOrigin(xterm);
    EXPECT_EQ(info.windowPos,
              QPointF(frameOrigin.x() + int(frame[0]), frameOrigin.y() + int(frame[2])));
    EXPECT_EQ(info.windowPos, QPointF(area.topLeft()));
    EXPECT_EQ(info.windowSize, QSizeF(area.size()));

    // The title bar is the frame's, and still the same window.
    TVKAXObjectInfo onTitleBar;
    ASSERT_GT(frame[2], 2u);
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(
        service, onTitleBar, QPointF(area.center().x(), area.top() - int(frame[2]) / 2)));
    EXPECT_EQ(onTitleBar.windowName, info.windowName);
    EXPECT_EQ(onTitleBar.windowPos, info.windowPos);
}

TEST_F(X11AccessibilityTest, WindowsWithoutEntriesTitlesOrProcessIdsAreStillFound)
{
    X11Desktop& desktop = *s_desktop;
    // xeyes has no desktop entry here: its class names it, and it has no identifier.
    const xcb_window_t xeyes = desktop.clientOfClass("XEyes");
    ASSERT_NE(xeyes, XCB_WINDOW_NONE);
    TVKAXObjectInfo eyes;
    // xeyes is shaped: between the eyes lies the desktop, so ask in the middle of the left eye.
    const QRect eyesArea = desktop.clientArea(xeyes);
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(
        service, eyes, QPointF(eyesArea.x() + eyesArea.width() / 4, eyesArea.center().y())));
    EXPECT_EQ(eyes.appName, QStringLiteral("XEyes"));
    EXPECT_FALSE(eyes.appID.has_value());
    EXPECT_EQ(eyes.appSignature, kUnknown);

    // The bare window: no title, no class, no _NET_WM_PID; the X server names its process, the
    // process name names the application, and the shadow margin is not part of the window.
    const QRect bare = desktop.clientArea(desktop.bare);
    TVKAXObjectInfo info;
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(service, info, middleOf(bare)));
    EXPECT_FALSE(info.windowName.has_value());
    EXPECT_FALSE(info.appID.has_value());
    QFile comm(QStringLiteral("/proc/self/comm"));
    ASSERT_TRUE(comm.open(QIODevice::ReadOnly));
    EXPECT_EQ(info.appName, QString::fromUtf8(comm.readAll()).trimmed());
    EXPECT_EQ(info.windowPos, QPointF(bare.x() + 10, bare.y() + 5));
    EXPECT_EQ(info.windowSize, QSizeF(bare.width() - 30, bare.height() - 20));
    qint64 pid = 0;
    EXPECT_EQ(service.getPid({TVKAXElement::Kind::Window, desktop.bare}, pid), kAXErrorSuccess);
    EXPECT_EQ(pid, QCoreApplication::applicationPid());
}

TEST_F(X11AccessibilityTest, OurOwnQtWindowBelongsToItsEntryByStartupWMClass)
{
    X11Desktop& desktop = *s_desktop;
    const xcb_window_t sim = desktop.clientOfClass("corvane-service-sim");
    ASSERT_NE(sim, XCB_WINDOW_NONE)
        << desktop.property(desktop.clients().back(), "WM_CLASS").data();
    TVKAXObjectInfo info;
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(service, info, middleOf(desktop.clientArea(sim))));
    EXPECT_EQ(info.appID, QStringLiteral("org.example.SurfaceSim"));
    EXPECT_EQ(info.appName, QStringLiteral("Surface Simulator"));
    EXPECT_TRUE(info.windowName.has_value());
}

TEST_F(X11AccessibilityTest, TheBackgroundAndAMissingServerLeaveTheRecordAlone)
{
    X11Desktop& desktop = *s_desktop;
    const TVKAXObjectInfo before{QStringLiteral("before"),
                                 1,
                                 QStringLiteral("id"),
                                 QStringLiteral("window"),
                                 QPointF(1, 2),
                                 QSizeF(3, 4)};
    TVKAXObjectInfo info = before;
    // Below every window: the bottom right corner of the screen.
    const QSizeF screen = *service.screenSize();
    EXPECT_FALSE(TVKAXUtilities::getAXObjects(service, info,
                                              QPointF(screen.width() - 2, screen.height() - 2)));
    EXPECT_EQ(info.appName, before.appName);
    EXPECT_EQ(info.windowPos, before.windowPos);

    corvane::X11Accessibility nowhere(QStringLiteral(":4711"));
    EXPECT_FALSE(nowhere.isConnected());
    EXPECT_FALSE(TVKAXUtilities::getAXObjects(nowhere, info, QPointF(200, 200)));
    EXPECT_FALSE(nowhere.pointer().has_value());
    EXPECT_EQ(info.appID, before.appID);

    // The pointer is the X server's.
    xcb_warp_pointer(desktop.c, XCB_WINDOW_NONE, desktop.root, 0, 0, 0, 0, 321, 234);
    xcb_flush(desktop.c);
    QThread::msleep(50);
    EXPECT_EQ(service.pointer(), QPointF(321, 234));
}

// A service that answers as the test says: a window inside an application.
class ScriptedService : public TVKAXService
{
public:
    std::map<QString, int> errors;
    bool throwOnPid = false;
    std::optional<QString> signature;

    int copyElementAtPosition(QPointF, TVKAXElement& element) override
    {
        element = {TVKAXElement::Kind::Window, 2};
        return kAXErrorSuccess;
    }
    int copyAttributeValue(const TVKAXElement& element, const QString& attribute,
                           TVKAXValue& value) override
    {
        if (errors.count(attribute))
            return errors[attribute];
        const bool app = element.kind == TVKAXElement::Kind::Application;
        if (attribute == u"AXRole")
            value = app                   ? QStringLiteral("AXApplication")
                    : element.handle == 2 ? QStringLiteral("AXButton")
                                          : QStringLiteral("AXWindow");
        else if (attribute == u"AXParent")
            value = element.handle == 2 ? TVKAXElement{TVKAXElement::Kind::Window, 1}
                                        : TVKAXElement{TVKAXElement::Kind::Application, 1};
        else if (attribute == u"AXTitle")
            value = app ? QStringLiteral("Editor") : QStringLiteral("Untitled");
        else if (attribute == u"AXPosition")
            value = QPointF(10, 20);
        else if (attribute == u"AXSize")
            value = QSizeF(640, 480);
        return kAXErrorSuccess;
    }
    int getPid(const TVKAXElement&, qint64& pid) override
    {
        if (throwOnPid)
            throw std::runtime_error("gone");
        pid = 42;
        return kAXErrorSuccess;
    }
    std::optional<RunningApplication> runningApplication(qint64, const TVKAXElement&) override
    {
        return RunningApplication{QStringLiteral("org.example.Editor"), signature};
    }
};

TEST(TVKAXUtilities, ClimbsToWindowAndApplicationAndWritesNothingUnlessAllIsRead)
{
    ScriptedService service;
    TVKAXObjectInfo info;
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(service, info, QPointF(5, 5)));
    EXPECT_EQ(info.appName, QStringLiteral("Editor"));
    EXPECT_EQ(info.appSignature, kUnknown);
    EXPECT_EQ(info.appID, QStringLiteral("org.example.Editor"));
    EXPECT_EQ(info.windowName, QStringLiteral("Untitled"));
    EXPECT_EQ(info.windowSize, QSizeF(640, 480));

    service.signature = QStringLiteral("EdtR");
    ASSERT_TRUE(TVKAXUtilities::getAXObjects(service, info, QPointF(5, 5)));
    EXPECT_EQ(info.appSignature, corvane::fourCharCodeFromString(QStringLiteral("EdtR")));

    // A window whose title cannot be read still counts; its name is then absent.
    service.errors[QStringLiteral("AXTitle")] = kAXErrorNoValue;
    EXPECT_FALSE(TVKAXUtilities::getAXObjects(service, info, QPointF(5, 5)))
        << "the application's title is required";
    EXPECT_EQ(info.windowName, QStringLiteral("Untitled"));

    service.errors.clear();
    service.errors[QStringLiteral("AXSize")] = kAXErrorCannotComplete;
    const TVKAXObjectInfo before = info;
    EXPECT_FALSE(TVKAXUtilities::getAXObjects(service, info, QPointF(5, 5)));
    EXPECT_EQ(info.appSignature, before.appSignature);
    EXPECT_EQ(info.windowPos, before.windowPos);

    service.errors.clear();
    service.throwOnPid = true;
    corvane::LogCapture log;
    EXPECT_FALSE(TVKAXUtilities::getAXObjects(service, info, QPointF(5, 5)));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral(
                               "caught exception in getSignature:andID:forAXApplication:")});
}

} // namespace
