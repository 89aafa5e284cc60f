// The keyset sheet of a keyset whose every control and display of all four layers has an action
// (the generator's keysets, about 3,100 table rows and every unit in use): from the keyset to
// the finished PDF file, and the same with the sheet already made from the model.
#include "ConfigGenerator.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "sheet/KeysetSheet.h"
#include "surface/Corvane_Constant_Server.h"

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

struct Workload
{
    Workload()
    {
        model = corvane::ConfigGenerator().generateConfiguration(1);
        keyset = model->keysetAtIndex(0);
    }
    Corvane_Constant_Server constants;
    std::unique_ptr<CorvaneModelData> model;
    TVKKeyset* keyset = nullptr;
    QTemporaryDir dir;
};

Workload& workload()
{
    static Workload w;
    return w;
}

void countPages(benchmark::State& state, const corvane::KeysetSheet& sheet,
                corvane::SheetPaper paper)
{
    int rows = 0;
    for (int l = 0; l < 4; ++l)
        rows += int(sheet.rows(l).size());
    state.counters["rows"] = rows;
    QFile probe(workload().dir.filePath(QStringLiteral("probe.pdf")));
    sheet.writePdf(probe.fileName(), paper);
    probe.open(QIODevice::ReadOnly);
    const QByteArray pdf = probe.readAll();
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    double pages = 0;
    for (auto it = page.globalMatch(QString::fromLatin1(pdf)); it.hasNext(); it.next())
        ++pages;
    state.counters["pages"] = pages;
    state.counters["kB"] = double(pdf.size()) / 1024;
}

void BM_SheetFromKeysetToPdf(benchmark::State& state)
{
    Workload& w = workload();
    const auto paper = corvane::SheetPaper(state.range(0));
    const QString path = w.dir.filePath(QStringLiteral("sheet.pdf"));
    for (auto _ : state) {
        const corvane::KeysetSheet sheet(*w.keyset);
        benchmark::DoNotOptimize(sheet.writePdf(path, paper));
    }
    countPages(state, corvane::KeysetSheet(*w.keyset), paper);
}
BENCHMARK(BM_SheetFromKeysetToPdf)
    ->Arg(int(corvane::SheetPaper::A4))
    ->Arg(int(corvane::SheetPaper::Letter))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

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
