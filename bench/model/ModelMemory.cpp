// Peak memory of loading a whole configuration, and the size of the loaded model. Each
// measurement runs in a fresh child process, so that nothing else the program did inflates the
// high-water mark.
//
//   bench_model_memory [--keysets N]   generate N keysets (default 50), measure, report
//   bench_model_memory --load FILE     the child: load FILE and print the figures

#include "ConfigGenerator.h"
#include "core/PlistCodec.h"
#include "model/CorvaneModelData.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <malloc.h>

namespace {

constexpr double kMiB = 1024.0 * 1024.0;

// A /proc/self/status field in KiB.
qint64 statusKiB(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(field) + ':';
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

int load(const QString& path)
{
    Corvane_Constant_Server constants;
    const size_t before = heapInUse();
    std::unique_ptr<CorvaneModelData> model;
    {
        corvane::PlistReadResult read = corvane::PlistCodec::readFile(path);
        if (!read.ok) {
            std::fprintf(stderr, "cannot read %s: %s\n", qPrintable(path),
                         qPrintable(read.error.toString()));
            return 2;
        }
        model = std::make_unique<CorvaneModelData>(read.value);
    }
    malloc_trim(0);
    const size_t modelBytes = heapInUse() - before;
    std::printf("%lld %zu %d\n", statusKiB("VmHWM"), modelBytes, model->numberOfKeysets());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 3 && args.at(1) == u"--load")
        return load(args.at(2));

    int keysets = 50;
    if (args.size() == 3 && args.at(1) == u"--keysets")
        keysets = args.at(2).toInt();
    if (keysets <= 0) {
        std::fprintf(stderr, "usage: bench_model_memory [--keysets N]\n");
        return 64;
    }

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("config.plist"));
    {
        Corvane_Constant_Server constants;
        corvane::ConfigGenerator generator;
        auto model = generator.generateConfiguration(keysets);
        corvane::PlistValue tree = corvane::PlistValue::makeDict();
        model->writeTo(tree);
        QString error;
        if (!corvane::PlistCodec::writeFile(path, tree, corvane::PlistFormat::Xml, &error)) {
            std::fprintf(stderr, "cannot write %s: %s\n", qPrintable(path), qPrintable(error));
            return 1;
        }
    }

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--load"), path});
    if (!child.waitForFinished(-1) || child.exitCode() != 0) {
        std::fprintf(stderr, "%s", child.readAllStandardError().constData());
        return 1;
    }
    const QList<QByteArray> figures = child.readAllStandardOutput().trimmed().split(' ');
    const double peak = figures.value(0).toLongLong() * 1024.0 / kMiB;
    const double model = figures.value(1).toULongLong() / kMiB;
    std::printf("configuration: %d keysets, XML file %.1f MiB\n", keysets,
                QFile(path).size() / kMiB);
    std::printf("peak memory while loading the XML (VmHWM): %.1f MiB (target 250 MiB)\n", peak);
    std::printf("the loaded model alone: %.1f MiB (target 150 MiB)\n", model);
    return 0;
}
