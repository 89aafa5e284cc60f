#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSizeF>
#include <vector>

namespace corvane::test {

// The sheet draws text: it needs the GUI library (headless in the tests).
inline void ensureGuiApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "sheet_tests";
    static char* argv[] = {name, nullptr};
    static QGuiApplication* app = new QGuiApplication(argc, argv);
    (void)app;
}

// What a PDF file says of its pages, read from its objects: the page objects and their media
// boxes, in points.
struct PdfPages
{
    int count = 0;
    std::vector<QSizeF> sizes;
};

inline PdfPages pdfPages(const QByteArray& pdf)
{
    PdfPages pages;
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    static const QRegularExpression box(QStringLiteral(
        "/MediaBox\\s*\\[\\s*([-\\d.]+)\\s+([-\\d.]+)\\s+([-\\d.]+)\\s+([-\\d.]+)\\s*\\]"));
    const QString text = QString::fromLatin1(pdf);
    for (auto it = page.globalMatch(text); it.hasNext(); it.next())
        ++pages.count;
    for (auto it = box.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        pages.sizes.push_back(QSizeF(m.captured(3).toDouble() - m.captured(1).toDouble(),
                                     m.captured(4).toDouble() - m.captured(2).toDouble()));
    }
    return pages;
}

} // namespace corvane::test
