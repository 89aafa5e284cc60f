// What View → Show Assignments costs: the labels of a unit's picture laid out afresh (after an
// edit, an undo, another layer), and the lit label moved (after a touch), on the real pictures
// with a long text on every control.
#include "views/AssignmentLabelLayout.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMultiStateButton.h"

#include <QApplication>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

int g_argc = 1;
char g_name[] = "labels_bench";
char* g_argv[] = {g_name, nullptr};

struct Picture
{
    std::vector<corvane::LabelSpot> spots;
    std::unique_ptr<corvane::AssignmentLabelLayout> layout;
};

Picture pictureOf(const QString& unit)
{
    static QApplication* application = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(g_argc, g_argv);
    }();
    (void)application;
    CorvaneSurfaceView surface(unit);
    Picture picture;
    for (const TVKMultiStateButton* button : surface.buttons())
        for (qint64 k = 1; k < button->numImages(); ++k)
            if (const QPainterPath* outline = button->hitTestPath(k))
                picture.spots.push_back(
                    {outline->translated(button->geometry().topLeft()),
                     QStringLiteral("Ctrl+Shift+%1, Alt+F4 · Track %2 Mute").arg(k).arg(k)});
    std::vector<QRectF> displays;
    for (const TVKDisplayView* display : surface.displays())
        displays.push_back(QRectF(display->geometry()));
    QFont font = surface.font();
    font.setPixelSize(10);
    picture.layout = std::make_unique<corvane::AssignmentLabelLayout>(font, QRectF(surface.rect()),
                                                                      std::move(displays));
    return picture;
}

void layoutOf(benchmark::State& state, const QString& unit)
{
    const Picture picture = pictureOf(unit);
    size_t placed = 0;
    for (auto _ : state)
        placed = picture.layout->layout(picture.spots).size();
    state.counters["controls"] = double(picture.spots.size());
    state.counters["labels"] = double(placed);
}

void litLabelOf(benchmark::State& state, const QString& unit)
{
    const Picture picture = pictureOf(unit);
    const std::vector<corvane::PlacedLabel> base = picture.layout->layout(picture.spots);
    int spot = 0;
    for (auto _ : state) {
        std::vector<corvane::PlacedLabel> shown = base;
        picture.layout->keepOutlineClear(shown, picture.spots, spot);
        spot = (spot + 1) % int(picture.spots.size());
    }
}

void BM_LayoutMainUnit(benchmark::State& state)
{
    layoutOf(state, QStringLiteral("CorvaneRS"));
}
BENCHMARK(BM_LayoutMainUnit)->Unit(benchmark::kMillisecond);

void BM_LayoutTL(benchmark::State& state)
{
    layoutOf(state, QStringLiteral("Expander"));
}
BENCHMARK(BM_LayoutTL)->Unit(benchmark::kMillisecond);

void BM_LayoutNV(benchmark::State& state)
{
    layoutOf(state, QStringLiteral("CorvaneNV"));
}
BENCHMARK(BM_LayoutNV)->Unit(benchmark::kMillisecond);

void BM_LitLabelMovedTL(benchmark::State& state)
{
    litLabelOf(state, QStringLiteral("Expander"));
}
BENCHMARK(BM_LitLabelMovedTL)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
