// The start-up installation check and the window-under-pointer query.
#include "app/TVKInstallerController.h"
#include "platform/InstallPlatform.h"
#include "platform/X11Accessibility.h"

#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <xcb/xcb.h>

namespace {

// Everything installed: the check finds the driver current, the support folder and the service
// in the process list, and so shows no window. Target: at most 30 ms.
void BM_ValidInstallation(benchmark::State& state)
{
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
    const QString driver = QStringLiteral("CorvaneEthernetMIDIDriver.plugin");
    QDir().mkpath(home.path() + QStringLiteral("/MIDI Drivers"));
    QDir().mkpath(home.path() + QStringLiteral("/Tavrik"));
    corvane::InstallPlatform::copyItem(QStringLiteral(CORVANE_BUNDLE "/Contents/Helpers/") + driver,
                                       home.path() + QStringLiteral("/MIDI Drivers/") + driver);
    struct NoWindow : TVKInstallerWindow
    {
        void refresh(const TVKInstallerFace&) override {}
        int runModal() override { return 0; }
        void stopModal(int) override {}
        void closeWindow() override {}
        void showSetupPage(const QString&) override {}
        bool finishSetup() override { return false; }
    } window;
    TVKInstallEnvironment environment = TVKInstallEnvironment::system();
    environment.bundlePath = QStringLiteral(CORVANE_BUNDLE);
    TVKInstallerController installer(window, environment,
                                     {QStringLiteral("corvaneEthernet"), driver,
                                      QStringLiteral("com.tavrik.CorvaneRS.background.app"),
                                      QStringLiteral("com.tavrik.CorvaneRS.background"), QString(),
                                      QString(), QString()},
                                     true);
    for (auto _ : state) {
        const bool valid = installer.validInstallation();
        if (!valid)
            state.SkipWithError("the installation was not found valid");
        benchmark::DoNotOptimize(valid);
    }
}
BENCHMARK(BM_ValidInstallation)->Unit(benchmark::kMillisecond)->UseRealTime();

// Fifty top-level windows on the X server, the query in the middle of the topmost. Target: at
// most 10 ms.
void BM_WindowUnderPointer(benchmark::State& state)
{
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        state.SkipWithError("no X server");
        xcb_disconnect(c);
        return;
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    xcb_window_t window = XCB_WINDOW_NONE;
    for (int i = 0; i < 50; ++i) {
        window = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, int16_t(20 + 10 * i),
                          int16_t(20 + 8 * i), 400, 300, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen->root_visual, 0, nullptr);
        const QByteArray title = "Window " + QByteArray::number(i);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            uint32_t(title.size()), title.constData());
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            12, "bench\0Bench\0");
        xcb_map_window(c, window);
    }
    xcb_flush(c);
    corvane::X11Accessibility service;
    TVKAXObjectInfo info;
    // Let the window manager frame and place the windows, then ask in the middle of the last,
    // which it raised above the others.
    QPointF point;
    for (int tries = 0; tries < 100; ++tries) {
        usleep(50000);
        auto* origin = xcb_translate_coordinates_reply(
            c, xcb_translate_coordinates(c, window, screen->root, 0, 0), nullptr);
        if (origin) {
            point = QPointF(origin->dst_x + 200, origin->dst_y + 150);
            std::free(origin);
        }
        if (TVKAXUtilities::getAXObjects(service, info, point))
            break;
    }
    for (auto _ : state) {
        const bool found = TVKAXUtilities::getAXObjects(service, info, point);
        if (!found)
            state.SkipWithError("no window under the pointer (is a window manager running?)");
        benchmark::DoNotOptimize(found);
    }
    xcb_disconnect(c);
}
BENCHMARK(BM_WindowUnderPointer)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
