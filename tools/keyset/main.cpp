#include "KeysetTool.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>
#include <cstdio>
#include <cstring>
#include <memory>

int main(int argc, char** argv)
{
    // The sheet draws text, which takes the GUI library's fonts but never a display.
    std::unique_ptr<QCoreApplication> app;
    if (argc > 1 && std::strcmp(argv[1], "sheet") == 0) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QTextStream out(stdout);
    QTextStream err(stderr);
    return corvane::KeysetTool::run(QCoreApplication::arguments().mid(1), out, err);
}
