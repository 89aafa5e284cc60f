#include "ConfigGenerator.h"
#include "core/PlistCodec.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>

namespace {

// Gives the allocator's clean-up of what the previous iteration freed back before the clock
// runs again; otherwise the next large allocation pays for consolidating it.
void settleHeap()
{
    malloc_trim(0);
}

using corvane::PlistCodec;
using corvane::PlistFormat;
using corvane::PlistValue;

constexpr int kKeysets = 50;

// The configuration and its files are made once; every benchmark reads or writes them.
struct Fixture
{
    Corvane_Constant_Server constants;
    QTemporaryDir dir;
    std::unique_ptr<CorvaneModelData> model;
    QString xmlPath;
    QString binaryPath;
    QString keysetPath;
    PlistValue tree;

    Fixture()
    {
        corvane::ConfigGenerator generator;
        model = generator.generateConfiguration(kKeysets);
        tree = PlistValue::makeDict();
        model->writeTo(tree);
        xmlPath = dir.filePath(QStringLiteral("config.plist"));
        binaryPath = dir.filePath(QStringLiteral("config.bplist"));
        keysetPath = dir.filePath(QStringLiteral("keyset.cvks"));
        QString error;
        if (!PlistCodec::writeFile(xmlPath, tree, PlistFormat::Xml, &error) ||
            !PlistCodec::writeFile(binaryPath, tree, PlistFormat::Binary, &error)) {
            std::fprintf(stderr, "cannot write the benchmark files: %s\n", qPrintable(error));
            std::exit(1);
        }
        PlistValue keyset = PlistValue::makeDict(6);
        model->keysetAtIndex(0)->writeTo(keyset);
        PlistCodec::writeFile(keysetPath, keyset, PlistFormat::Xml, &error);
        std::fprintf(stderr,
                     "configuration: %d keysets, XML %lld bytes, binary %lld bytes, "
                     "one keyset %lld bytes\n",
                     kKeysets, QFile(xmlPath).size(), QFile(binaryPath).size(),
                     QFile(keysetPath).size());
    }
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

void readIntoModel(benchmark::State& state, const QString& path)
{
    for (auto _ : state) {
        auto read = PlistCodec::readFile(path);
        auto model = std::make_unique<CorvaneModelData>(read.value);
        benchmark::DoNotOptimize(model.get());
        // Tearing the model down is not part of loading it; the run's target IDs start afresh
        // as they do in a new run of the program.
        state.PauseTiming();
        read = {};
        model.reset();
        TVKKeyset::resetTargetIDs();
        settleHeap();
        state.ResumeTiming();
    }
}

void BM_XmlFileIntoModel(benchmark::State& state)
{
    readIntoModel(state, fixture().xmlPath);
}

void BM_BinaryFileIntoModel(benchmark::State& state)
{
    readIntoModel(state, fixture().binaryPath);
}

void writeModel(benchmark::State& state, PlistFormat format, const QString& name)
{
    const QString path = fixture().dir.filePath(name);
    for (auto _ : state) {
        PlistValue tree = PlistValue::makeDict();
        fixture().model->writeTo(tree);
        QString error;
        if (!PlistCodec::writeFile(path, tree, format, &error))
            state.SkipWithError(qPrintable(error));
        state.PauseTiming();
        tree = PlistValue();
        settleHeap();
        state.ResumeTiming();
    }
}

void BM_ModelToXmlFile(benchmark::State& state)
{
    writeModel(state, PlistFormat::Xml, QStringLiteral("out.plist"));
}

void BM_ModelToBinaryFile(benchmark::State& state)
{
    writeModel(state, PlistFormat::Binary, QStringLiteral("out.bplist"));
}

// Writing without the file: tree and encoding in memory, no disk and no sync.
void encodeModel(benchmark::State& state, PlistFormat format)
{
    for (auto _ : state) {
        PlistValue tree = PlistValue::makeDict();
        fixture().model->writeTo(tree);
        QByteArray bytes = PlistCodec::write(tree, format);
        benchmark::DoNotOptimize(bytes.data());
        state.PauseTiming();
        tree = PlistValue();
        bytes = QByteArray();
        settleHeap();
        state.ResumeTiming();
    }
}

void BM_ModelToXmlBytes(benchmark::State& state)
{
    encodeModel(state, PlistFormat::Xml);
}

void BM_ModelToBinaryBytes(benchmark::State& state)
{
    encodeModel(state, PlistFormat::Binary);
}

// The model's half of writing: building the property-list tree, without encoding it.
void BM_ModelToTree(benchmark::State& state)
{
    for (auto _ : state) {
        PlistValue tree = PlistValue::makeDict();
        fixture().model->writeTo(tree);
        benchmark::DoNotOptimize(tree);
        state.PauseTiming();
        tree = PlistValue();
        settleHeap();
        state.ResumeTiming();
    }
}

void BM_KeysetFileIntoKeyset(benchmark::State& state)
{
    CorvaneModelData model;
    for (auto _ : state) {
        auto read = PlistCodec::readFile(fixture().keysetPath);
        auto keyset = model.createKeysetFromArchive(read.value);
        benchmark::DoNotOptimize(keyset.get());
        state.PauseTiming();
        keyset.reset();
        read = {};
        settleHeap();
        state.ResumeTiming();
    }
}

// The model's half of reading: an already parsed tree into the model.
void BM_TreeIntoModel(benchmark::State& state)
{
    for (auto _ : state) {
        auto model = std::make_unique<CorvaneModelData>(fixture().tree);
        benchmark::DoNotOptimize(model.get());
        state.PauseTiming();
        model.reset();
        TVKKeyset::resetTargetIDs();
        settleHeap();
        state.ResumeTiming();
    }
}

// The whole-keyset operations behind New Keyset and the emulation-free copy of the keyset
// commands.
void BM_NewKeyset(benchmark::State& state)
{
    CorvaneModelData& model = *fixture().model;
    for (auto _ : state) {
        auto keyset = model.createKeysetWithName(QStringLiteral("New"), corvane::fourCC("NEWK"));
        benchmark::DoNotOptimize(keyset.get());
        state.PauseTiming();
        keyset.reset();
        TVKKeyset::resetTargetIDs();
        state.ResumeTiming();
    }
}

void BM_CopyKeysetWithoutEmulation(benchmark::State& state)
{
    const TVKKeyset& source = *fixture().model->keysetAtIndex(0);
    for (auto _ : state) {
        auto copy = source.copyWithoutEmulation();
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        copy.reset();
        TVKKeyset::resetTargetIDs();
        state.ResumeTiming();
    }
}

BENCHMARK(BM_XmlFileIntoModel)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_BinaryFileIntoModel)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelToXmlFile)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelToBinaryFile)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelToXmlBytes)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelToBinaryBytes)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_ModelToTree)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_KeysetFileIntoKeyset)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_TreeIntoModel)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(BM_NewKeyset)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_CopyKeysetWithoutEmulation)->Unit(benchmark::kMillisecond)->MinTime(1.0);

} // namespace

BENCHMARK_MAIN();
