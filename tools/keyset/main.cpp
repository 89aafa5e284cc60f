#include "KeysetTool.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return corvane::KeysetTool::run(QCoreApplication::arguments().mid(1), out, err);
}
