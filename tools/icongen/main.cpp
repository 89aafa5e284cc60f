// Draws the application's icon and the keyset file's icon from one list of shapes: the
// scalable SVG for the icon theme and the PNGs at the theme's fixed sizes.
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cstdio>
#include <vector>

namespace {

// A shape on a 256 x 256 canvas, filled with a vertical gradient (top to bottom) and outlined.
struct Shape
{
    enum Kind
    {
        RoundRect,
        Circle,
        Page
    } kind;
    QRectF box;
    double radius = 0;
    QColor top;
    QColor bottom;
    QColor stroke = Qt::transparent;
    double strokeWidth = 0;
};

std::vector<Shape> panel(const QRectF& area)
{
    const double s = area.width() / 200.0;
    const auto at = [&](double x, double y, double w, double h) {
        return QRectF(area.x() + x * s, area.y() + y * s, w * s, h * s);
    };
    std::vector<Shape> shapes;
    // The anodised panel with a bevel.
    shapes.push_back({Shape::RoundRect, at(0, 0, 200, 200), 30 * s, QColor(0x4a, 0x50, 0x5a),
                      QColor(0x17, 0x1a, 0x1f), QColor(0x0b, 0x0c, 0x0e), 3 * s});
    shapes.push_back({Shape::RoundRect, at(8, 8, 184, 184), 24 * s, QColor(0x30, 0x35, 0x3d),
                      QColor(0x20, 0x23, 0x29)});
    // Three backlit keys: record red, play green, select blue.
    const QColor keys[3][2] = {{QColor(0xff, 0x6b, 0x5a), QColor(0xc0, 0x22, 0x1a)},
                               {QColor(0x7d, 0xf0, 0x8a), QColor(0x1f, 0x9a, 0x3a)},
                               {QColor(0x7c, 0xc4, 0xff), QColor(0x1f, 0x6f, 0xd0)}};
    for (int i = 0; i < 3; ++i)
        shapes.push_back({Shape::RoundRect, at(24 + i * 54, 24, 44, 26), 6 * s, keys[i][0],
                          keys[i][1], QColor(0x0b, 0x0c, 0x0e), 2 * s});
    // The jog wheel: a machined rim, the wheel and its finger dimple.
    shapes.push_back({Shape::Circle, at(40, 64, 120, 120), 0, QColor(0xe6, 0xe9, 0xee),
                      QColor(0x6d, 0x74, 0x7e), QColor(0x0b, 0x0c, 0x0e), 3 * s});
    shapes.push_back(
        {Shape::Circle, at(52, 76, 96, 96), 0, QColor(0x3b, 0x40, 0x48), QColor(0x17, 0x19, 0x1d)});
    shapes.push_back({Shape::Circle, at(110, 92, 22, 22), 0, QColor(0x12, 0x14, 0x17),
                      QColor(0x4a, 0x50, 0x58)});
    return shapes;
}

std::vector<Shape> applicationIcon()
{
    return panel(QRectF(28, 28, 200, 200));
}

std::vector<Shape> keysetIcon()
{
    std::vector<Shape> shapes;
    shapes.push_back({Shape::Page, QRectF(40, 12, 176, 232), 40, QColor(0xfb, 0xfb, 0xfc),
                      QColor(0xe3, 0xe6, 0xea), QColor(0x8a, 0x90, 0x99), 4});
    const std::vector<Shape> small = panel(QRectF(68, 92, 120, 120));
    shapes.insert(shapes.end(), small.begin(), small.end());
    return shapes;
}

QPainterPath pathOf(const Shape& shape)
{
    QPainterPath path;
    switch (shape.kind) {
    case Shape::RoundRect:
        path.addRoundedRect(shape.box, shape.radius, shape.radius);
        break;
    case Shape::Circle:
        path.addEllipse(shape.box);
        break;
    case Shape::Page: {
        const QRectF& b = shape.box;
        path.moveTo(b.left(), b.top());
        path.lineTo(b.right() - shape.radius, b.top());
        path.lineTo(b.right(), b.top() + shape.radius);
        path.lineTo(b.right(), b.bottom());
        path.lineTo(b.left(), b.bottom());
        path.closeSubpath();
        break;
    }
    }
    return path;
}

QImage render(const std::vector<Shape>& shapes, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 256.0, size / 256.0);
    for (const Shape& shape : shapes) {
        QLinearGradient fill(shape.box.topLeft(), shape.box.bottomLeft());
        fill.setColorAt(0, shape.top);
        fill.setColorAt(1, shape.bottom);
        painter.setBrush(fill);
        painter.setPen(shape.strokeWidth > 0 ? QPen(shape.stroke, shape.strokeWidth) : Qt::NoPen);
        painter.drawPath(pathOf(shape));
    }
    return image;
}

QString svgOf(const std::vector<Shape>& shapes)
{
    QString defs;
    QString body;
    int index = 0;
    for (const Shape& shape : shapes) {
        const QString id = QStringLiteral("g%1").arg(index++);
        defs +=
            QStringLiteral("    <linearGradient id=\"%1\" x1=\"0\" y1=\"%2\" x2=\"0\" y2=\"%3\" "
                           "gradientUnits=\"userSpaceOnUse\"><stop offset=\"0\" "
                           "stop-color=\"%4\"/><stop offset=\"1\" stop-color=\"%5\"/>"
                           "</linearGradient>\n")
                .arg(id)
                .arg(shape.box.top())
                .arg(shape.box.bottom())
                .arg(shape.top.name(), shape.bottom.name());
        const QString stroke = shape.strokeWidth > 0
                                   ? QStringLiteral(" stroke=\"%1\" stroke-width=\"%2\"")
                                         .arg(shape.stroke.name())
                                         .arg(shape.strokeWidth)
                                   : QString();
        const QRectF& b = shape.box;
        switch (shape.kind) {
        case Shape::RoundRect:
            body += QStringLiteral("  <rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\" "
                                   "fill=\"url(#%6)\"%7/>\n")
                        .arg(b.x())
                        .arg(b.y())
                        .arg(b.width())
                        .arg(b.height())
                        .arg(shape.radius)
                        .arg(id, stroke);
            break;
        case Shape::Circle:
            body += QStringLiteral("  <circle cx=\"%1\" cy=\"%2\" r=\"%3\" fill=\"url(#%4)\"%5/>\n")
                        .arg(b.center().x())
                        .arg(b.center().y())
                        .arg(b.width() / 2)
                        .arg(id, stroke);
            break;
        case Shape::Page:
            body +=
                QStringLiteral("  <path d=\"M%1 %2 H%3 L%4 %5 V%6 H%1 Z\" fill=\"url(#%7)\"%8/>\n")
                    .arg(b.left())
                    .arg(b.top())
                    .arg(b.right() - shape.radius)
                    .arg(b.right())
                    .arg(b.top() + shape.radius)
                    .arg(b.bottom())
                    .arg(id, stroke);
            break;
        }
    }
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"256\" height=\"256\" "
                          "viewBox=\"0 0 256 256\">\n  <defs>\n%1  </defs>\n%2</svg>\n")
        .arg(defs, body);
}

bool write(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Draws the Corvane application icon and the keyset file icon into "
        "<out>/hicolor/<size>x<size>/{apps,mimetypes}/ and <out>/hicolor/scalable/."));
    parser.addHelpOption();
    const QCommandLineOption outOption(
        QStringLiteral("out"), QStringLiteral("Folder to write into."), QStringLiteral("folder"));
    parser.addOption(outOption);
    parser.process(app);
    if (!parser.isSet(outOption))
        parser.showHelp(2);
    const QString out = parser.value(outOption) + QStringLiteral("/hicolor/");
    const struct
    {
        const char* folder;
        const char* name;
        std::vector<Shape> shapes;
    } icons[] = {{"apps", "corvane", applicationIcon()},
                 {"mimetypes", "application-x-corvane-keyset", keysetIcon()}};
    for (const auto& icon : icons) {
        const QString name = QString::fromLatin1(icon.name);
        const QString folder = QString::fromLatin1(icon.folder);
        if (!write(out + QStringLiteral("scalable/%1/%2.svg").arg(folder, name),
                   svgOf(icon.shapes).toUtf8())) {
            std::fprintf(stderr, "corvane-icongen: cannot write into %s\n", qPrintable(out));
            return 1;
        }
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
            const QString path =
                out + QStringLiteral("%1x%1/%2/%3.png").arg(size).arg(folder, name);
            QDir().mkpath(QFileInfo(path).path());
            if (!render(icon.shapes, size).save(path)) {
                std::fprintf(stderr, "corvane-icongen: cannot write %s\n", qPrintable(path));
                return 1;
            }
        }
    }
    return 0;
}
