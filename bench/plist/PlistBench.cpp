#include "core/PlistCodec.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>

using corvane::PlistCodec;
using corvane::PlistFormat;
using corvane::PlistValue;

namespace {

constexpr int kKeysets = 50;
constexpr int kLayers = 4;
constexpr int kControls = 1077;

const char* const kControlNames[] = {"Fader Touch",  "Encoder Push", "Button",     "Jog Wheel",
                                     "Shuttle Ring", "Fader",        "LCD Button", "Joystick"};

// A configuration as large as the biggest ones users keep: 50 keysets of four layers, every
// control a small dictionary with an action dictionary, names repeating across keysets.
PlistValue makeConfiguration()
{
    PlistValue keysets = PlistValue::makeArray(kKeysets);
    for (int k = 0; k < kKeysets; ++k) {
        PlistValue layers = PlistValue::makeArray(kLayers);
        for (int l = 0; l < kLayers; ++l) {
            PlistValue controls = PlistValue::makeArray(kControls);
            for (int c = 0; c < kControls; ++c) {
                PlistValue action = PlistValue::makeDict(4);
                action.insert(QStringLiteral("TVKActionType"), PlistValue(0x300 + c % 7));
                action.insert(QStringLiteral("TVKMIDIChannel"), PlistValue(c % 16));
                action.insert(QStringLiteral("TVKMIDIValue"), PlistValue((c * 37 + k) % 128));
                if (c % 3 == 0)
                    action.insert(QStringLiteral("TVKKeyChars"),
                                  PlistValue(QString(QChar(u'a' + c % 26))));
                PlistValue control = PlistValue::makeDict(6);
                control.insert(QStringLiteral("TVKName"),
                               PlistValue(QStringLiteral("%1 %2").arg(
                                   QLatin1String(kControlNames[c % 8]), QString::number(c % 64))));
                control.insert(QStringLiteral("TVKType"), PlistValue(c % 12));
                control.insert(QStringLiteral("TVKColor"), PlistValue((c * 5) % 64));
                control.insert(QStringLiteral("TVKLatch"), PlistValue(c % 5 == 0));
                control.insert(QStringLiteral("TVKSensitivity"), PlistValue(0.5 + (c % 10) * 0.05));
                control.insert(QStringLiteral("TVKAction"), action);
                controls.append(control);
            }
            PlistValue layer = PlistValue::makeDict();
            layer.insert(QStringLiteral("TVKLayerIndex"), PlistValue(l));
            layer.insert(QStringLiteral("TVKControls"), controls);
            layers.append(layer);
        }
        PlistValue keyset = PlistValue::makeDict();
        keyset.insert(QStringLiteral("TVKName"),
                      PlistValue(QStringLiteral("Application %1").arg(k)));
        keyset.insert(QStringLiteral("TVKSig"),
                      PlistValue(QStringLiteral("Ap%1").arg(k % 100, 2, 10, QLatin1Char('0'))));
        keyset.insert(QStringLiteral("TVKBundleID"),
                      PlistValue(QStringLiteral("com.example.application%1").arg(k)));
        keyset.insert(QStringLiteral("TVKLayers"), layers);
        keysets.append(keyset);
    }
    PlistValue root = PlistValue::makeDict();
    root.insert(QStringLiteral("TVKKeysets"), keysets);
    root.insert(QStringLiteral("TVKVersion"), PlistValue(3));
    return root;
}

// Values, and dictionary keys when asked.
qsizetype countNodes(const PlistValue& v, bool keys)
{
    qsizetype n = 1;
    for (qsizetype i = 0; i < v.size(); ++i)
        n += countNodes(v.isArray() ? v.at(i) : v.valueAt(i), keys) + (keys && v.isDict() ? 1 : 0);
    return n;
}

struct Fixture
{
    Fixture()
    {
        tree = makeConfiguration();
        nodes = countNodes(tree, false);
        nodesWithKeys = countNodes(tree, true);
        xmlPath = dir.filePath(QStringLiteral("config.plist"));
        binaryPath = dir.filePath(QStringLiteral("config.bplist"));
        PlistCodec::writeFile(xmlPath, tree, PlistFormat::Xml);
        PlistCodec::writeFile(binaryPath, tree, PlistFormat::Binary);
    }
    QTemporaryDir dir;
    PlistValue tree;
    qsizetype nodes = 0;
    qsizetype nodesWithKeys = 0;
    QString xmlPath;
    QString binaryPath;
};

Fixture& fixture()
{
    static Fixture f;
    return f;
}

void readFile(benchmark::State& state, const QString& path)
{
    const qint64 size = QFile(path).size();
    for (auto _ : state) {
        auto result = PlistCodec::readFile(path);
        if (!result.ok)
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(result.value);
        // Freeing the tree is the model's business, not the reader's.
        state.PauseTiming();
        result = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * size);
    state.counters["nodes"] = double(fixture().nodes);
    state.counters["nodes_with_keys"] = double(fixture().nodesWithKeys);
    state.counters["file_MB"] = double(size) / 1e6;
}

void BM_XmlFileToTree(benchmark::State& state)
{
    readFile(state, fixture().xmlPath);
}
BENCHMARK(BM_XmlFileToTree)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_BinaryFileToTree(benchmark::State& state)
{
    readFile(state, fixture().binaryPath);
}
BENCHMARK(BM_BinaryFileToTree)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void write(benchmark::State& state, PlistFormat format)
{
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray out = PlistCodec::write(fixture().tree, format);
        bytes = out.size();
        benchmark::DoNotOptimize(out.constData());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}

void BM_TreeToXml(benchmark::State& state)
{
    write(state, PlistFormat::Xml);
}
BENCHMARK(BM_TreeToXml)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_TreeToBinary(benchmark::State& state)
{
    write(state, PlistFormat::Binary);
}
BENCHMARK(BM_TreeToBinary)->Unit(benchmark::kMillisecond)->MinTime(2.0);

long statusKiB(const char* field)
{
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f)
        return -1;
    char line[256];
    long value = -1;
    const std::size_t n = std::strlen(field);
    while (std::fgets(line, sizeof line, f)) {
        if (std::strncmp(line, field, n) == 0 && line[n] == ':')
            value = std::atol(line + n + 1);
    }
    std::fclose(f);
    return value;
}

// Peak resident memory of loading the XML file, measured in a fresh process so that nothing
// the benchmark itself holds is counted.
void BM_XmlLoadPeakMemory(benchmark::State& state)
{
    const QString program = QCoreApplication::applicationFilePath();
    for (auto _ : state) {
        QProcess child;
        child.start(program, {QStringLiteral("--measure-load"), fixture().xmlPath});
        child.waitForFinished(-1);
        const QList<QByteArray> fields = child.readAllStandardOutput().trimmed().split(' ');
        if (fields.size() != 3) {
            state.SkipWithError("measuring process failed");
            return;
        }
        state.counters["baseline_MiB"] = fields[0].toDouble() / 1024.0;
        state.counters["peak_MiB"] = fields[1].toDouble() / 1024.0;
        state.counters["tree_MiB"] = fields[2].toDouble() / 1024.0;
    }
}
BENCHMARK(BM_XmlLoadPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

// Child side: prints the resident KiB before loading, the peak during it, and what the loaded
// tree keeps.
int measureLoad(const char* path)
{
    const long baseline = statusKiB("VmRSS");
    const auto result = PlistCodec::readFile(QString::fromLocal8Bit(path));
    if (!result.ok)
        return 1;
    const long peak = statusKiB("VmHWM");
    const long after = statusKiB("VmRSS");
    std::printf("%ld %ld %ld\n", baseline, peak, after - baseline);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--measure-load") == 0)
        return measureLoad(argv[2]);
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
