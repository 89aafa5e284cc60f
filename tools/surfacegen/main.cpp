#include "SurfaceGenerator.h"

#include <QCommandLineParser>
#include <QFontDatabase>
#include <QGuiApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    // The pictures are drawn off screen; no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-surfacegen"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Draws the Corvane surfaces from their layout sources: panel pictures in "
                       "both finishes at 1x and 2x, the picture buttons' descriptions and hit "
                       "outlines, the placement table, group icons and connection images."));
    parser.addHelpOption();
    const QCommandLineOption outOption(
        QStringLiteral("out"), QStringLiteral("Folder to write into."), QStringLiteral("folder"));
    const QCommandLineOption fontOption(
        QStringLiteral("font"), QStringLiteral("The silkscreen typeface (DejaVu Sans Bold)."),
        QStringLiteral("file"),
        QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"));
    parser.addOptions({outOption, fontOption});
    parser.addPositionalArgument(QStringLiteral("layouts"), QStringLiteral("Layout sources."),
                                 QStringLiteral("layout.json..."));
    parser.process(app);
    if (!parser.isSet(outOption) || parser.positionalArguments().isEmpty())
        parser.showHelp(2);
    // The same typeface everywhere, so that the pictures come out the same on every machine.
    if (QFontDatabase::addApplicationFont(parser.value(fontOption)) < 0) {
        std::fprintf(stderr, "corvane-surfacegen: cannot load the typeface %s\n",
                     qPrintable(parser.value(fontOption)));
        return 1;
    }
    surfacegen::Options options{parser.positionalArguments(), parser.value(outOption)};
    QString error;
    if (!surfacegen::generate(options, error)) {
        std::fprintf(stderr, "corvane-surfacegen: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
