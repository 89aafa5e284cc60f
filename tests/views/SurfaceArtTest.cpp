// The shipped surface descriptions and pictures: complete, and exactly what the layouts give.
#include "TestConfig.h"
#include "core/PlistCodec.h"
#include "views/TVKBundle.h"
#include "views/TVKMultiStateButton.h"
#include "views/cpkr_ColorPicker.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using corvane::PlistCodec;
using corvane::PlistValue;

namespace {

QApplication& application()
{
    static int argc = 1;
    static char name[] = "surface_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app =
        qobject_cast<QApplication*>(QCoreApplication::instance()) ?: new QApplication(argc, argv);
    return *app;
}

// Every picture name has both finishes at both scales; whether each control has its outline is
// tried by a click on every control of the model (SurfaceControlsTest).
void checkDescription(const QString& key, const PlistValue& description)
{
    TVKBundle& bundle = TVKBundle::mainBundle();
    const PlistValue& images = description.value(u"ImageList");
    const PlistValue& paths = description.value(u"PathList");
    ASSERT_GT(images.size(), 0) << key.toStdString();
    const bool sets = images.at(0).isArray();
    const qsizetype states = sets ? images.at(0).size() : images.size();
    ASSERT_GE(states, 2) << key.toStdString();
    EXPECT_EQ(paths.size(), states) << key.toStdString();
    for (qsizetype s = 0; s < (sets ? images.size() : 1); ++s) {
        const PlistValue& names = sets ? images.at(s) : images;
        EXPECT_EQ(names.size(), states) << key.toStdString();
        for (qsizetype k = 0; k < names.size(); ++k) {
            const QString name = names.at(k).toString();
            for (const QString& finish : {name, name + QStringLiteral("_Mid")}) {
                for (const qreal ratio : {1.0, 2.0}) {
                    const QPixmap picture = bundle.imageNamed(finish, ratio);
                    EXPECT_FALSE(picture.isNull()) << finish.toStdString();
                    EXPECT_EQ(picture.devicePixelRatio(), ratio) << finish.toStdString();
                }
            }
        }
    }
    EXPECT_EQ(description.contains(u"ControlTag"), !sets) << key.toStdString();
}

} // namespace

TEST(SurfaceArt, EveryShippedDescriptionHasItsPicturesInBothFinishes)
{
    application();
    QFile file(QStringLiteral(":/surface/Info.plist"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const corvane::PlistReadResult info = PlistCodec::read(file.readAll());
    ASSERT_TRUE(info.ok);
    for (const QString& key : info.value.keys())
        checkDescription(key, info.value.value(key));

    // Every picture button placed on a unit has its description, and the four special keys
    // are among them.
    QFile placement(QStringLiteral(":/surface/Surfaces.plist"));
    ASSERT_TRUE(placement.open(QIODevice::ReadOnly));
    const PlistValue units = PlistCodec::read(placement.readAll()).value;
    EXPECT_EQ(units.keys().size(), 6);
    for (const QString& unit : units.keys()) {
        const PlistValue& buttons = units.value(unit).value(u"Buttons");
        for (qsizetype i = 0; i < buttons.size(); ++i)
            EXPECT_TRUE(info.value.contains(buttons.at(i).value(u"InfoKey").toString()));
        for (const QString& picture : {units.value(unit).value(u"Picture").toString(),
                                       units.value(unit).value(u"MidnightPicture").toString()})
            EXPECT_FALSE(TVKBundle::mainBundle().sheet(picture, 2).isNull());
    }
    for (const char16_t* key :
         {u"JogShuttleControlInfo", u"VStickControlInfo", u"TrackballRingControlInfo"})
        EXPECT_TRUE(info.value.contains(QString::fromUtf16(key)));
}

TEST(SurfaceArt, TheCommittedFilesAreWhatTheLayoutsGive)
{
    application();
    QTemporaryDir out;
    ASSERT_TRUE(out.isValid());
    const QDir layouts(QStringLiteral(CORVANE_SOURCE_DIR "/resources/layout"));
    QStringList arguments{QStringLiteral("--out"), out.path()};
    for (const QString& name : layouts.entryList({QStringLiteral("*.json")}, QDir::Files))
        arguments << layouts.filePath(name);
    QProcess generator;
    generator.start(QStringLiteral(CORVANE_BINARY_DIR "/tools/surfacegen/corvane-surfacegen"),
                    arguments);
    ASSERT_TRUE(generator.waitForFinished(120000));
    ASSERT_EQ(generator.exitCode(), 0) << generator.readAllStandardError().toStdString();

    const QDir committed(QStringLiteral(CORVANE_SOURCE_DIR "/resources/surface"));
    const QDir fresh(out.path());
    QStringList files = fresh.entryList(QDir::Files);
    for (const QString& icon : QDir(fresh.filePath(QStringLiteral("icons"))).entryList(QDir::Files))
        files << QStringLiteral("icons/") + icon;
    QStringList shipped = committed.entryList(QDir::Files);
    for (const QString& icon :
         QDir(committed.filePath(QStringLiteral("icons"))).entryList(QDir::Files))
        shipped << QStringLiteral("icons/") + icon;
    files.sort();
    shipped.sort();
    ASSERT_EQ(files, shipped) << "regenerate with: cmake --build <build> --target surface-art";
    for (const QString& name : files) {
        if (name.endsWith(QStringLiteral(".plist"))) {
            QFile a(fresh.filePath(name));
            QFile b(committed.filePath(name));
            ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
            EXPECT_EQ(a.readAll(), b.readAll()) << name.toStdString() << " is stale";
            continue;
        }
        // Pictures: the same within what another build of the font rasteriser may change.
        const QImage a = QImage(fresh.filePath(name)).convertToFormat(QImage::Format_ARGB32);
        const QImage b = QImage(committed.filePath(name)).convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(a.size(), b.size()) << name.toStdString();
        qint64 difference = 0;
        for (int y = 0; y < a.height(); ++y) {
            const QRgb* pa = reinterpret_cast<const QRgb*>(a.constScanLine(y));
            const QRgb* pb = reinterpret_cast<const QRgb*>(b.constScanLine(y));
            for (int x = 0; x < a.width(); ++x) {
                difference +=
                    std::abs(qRed(pa[x]) - qRed(pb[x])) + std::abs(qGreen(pa[x]) - qGreen(pb[x])) +
                    std::abs(qBlue(pa[x]) - qBlue(pb[x])) + std::abs(qAlpha(pa[x]) - qAlpha(pb[x]));
            }
        }
        EXPECT_LT(double(difference) / (double(a.width()) * a.height()), 0.5)
            << name.toStdString() << " is stale";
    }
}

TEST(ColorPicker, TheGridTheSliderAndTheOutsideAgree)
{
    application();
    cpkr_ColorPickerController picker;
    std::vector<quint8> told;
    picker.setDelegate([&](cpkr_ColorPickerController&, quint8 value) { told.push_back(value); });

    // Set from outside: no delegate call. Value 3 (blue level 3) sits at position 51.
    picker.updateColor(3);
    EXPECT_EQ(picker.colorIndex(), 51);
    EXPECT_EQ(picker.slider()->value(), 51);
    EXPECT_EQ(picker.colorPickerView()->selectedRow(), 3);
    EXPECT_EQ(picker.colorPickerView()->selectedColumn(), 3);
    EXPECT_TRUE(told.empty());

    // A click on the top row's first cell: position 0, the brightest red (48).
    const int cell = cpkr_ColorPickerView::kCell;
    QTest::mouseClick(picker.colorPickerView(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(cell / 2, cell / 2));
    EXPECT_EQ(picker.sixBitColor(), 48);
    EXPECT_EQ(picker.slider()->value(), 0);
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told.back(), 48);
    EXPECT_EQ(picker.swatchView()->color(), picker.color());

    // The slider to 15: all channels at level 3 (63), and the grid follows.
    picker.slider()->setValue(15);
    EXPECT_EQ(picker.sixBitColor(), 63);
    EXPECT_EQ(picker.colorPickerView()->selectedColumn(), 15);
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told.back(), 63);
}

namespace {

PlistValue op(const QString& name, std::initializer_list<std::pair<const char16_t*, double>> args)
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(QStringLiteral("Operation"), PlistValue(name));
    for (const auto& [key, value] : args)
        dict.insert(QString::fromUtf16(key), PlistValue(value));
    return dict;
}

PlistValue path(std::initializer_list<PlistValue> operations)
{
    PlistValue list = PlistValue::makeArray();
    for (const PlistValue& each : operations)
        list.append(each);
    return list;
}

} // namespace

TEST(PictureButton, OutlinesFollowTheirOperationsAndTheLowerNumberWins)
{
    application();
    TVKMultiStateButton button(QStringLiteral("NoSuchDescription"));
    // 1: a square; 2: an oval overlapping it; 3: a ring from two arcs, the hole left out.
    button.parsePath(path({op(QStringLiteral("MoveTo"), {{u"X", 0}, {u"Y", 0}}),
                           op(QStringLiteral("LineTo"), {{u"X", 20}, {u"Y", 0}}),
                           op(QStringLiteral("Bezier"), {{u"X", 99}, {u"Y", 99}}),
                           op(QStringLiteral("LineTo"), {{u"X", 20}, {u"Y", 20}}),
                           op(QStringLiteral("LineTo"), {{u"X", 0}, {u"Y", 20}})}),
                     1);
    button.parsePath(path({op(QStringLiteral("Oval"),
                              {{u"Left", 10}, {u"Top", 10}, {u"Width", 20}, {u"Height", 20}})}),
                     2);
    button.parsePath(path({op(QStringLiteral("MoveTo"), {{u"X", 140}, {u"Y", 100}}),
                           op(QStringLiteral("Arc"), {{u"CenterX", 100},
                                                      {u"CenterY", 100},
                                                      {u"Radius", 40},
                                                      {u"StartAngle", 0},
                                                      {u"EndAngle", 360}}),
                           op(QStringLiteral("MoveTo"), {{u"X", 120}, {u"Y", 100}}),
                           op(QStringLiteral("ClockwiseArc"), {{u"CenterX", 100},
                                                               {u"CenterY", 100},
                                                               {u"Radius", 20},
                                                               {u"StartAngle", 360},
                                                               {u"EndAngle", 0}})}),
                     3);
    // An empty list stores nothing, but the list is padded up to its index.
    button.parsePath(PlistValue::makeArray(), 5);
    ASSERT_EQ(button.hitTestPaths().size(), 5u);
    EXPECT_EQ(button.hitTestPath(0), nullptr);
    EXPECT_EQ(button.hitTestPath(4), nullptr);
    TVKMultiStateButtonCell& cell = button.cell();
    cell.setImageCount(6, &button.images(), &button.hitTestPaths());

    cell.startTrackingAt(QPointF(15, 15)); // in the square and the oval
    EXPECT_EQ(cell.imageIndex(), 1u);
    EXPECT_EQ(cell.state(), 1);
    cell.startTrackingAt(QPointF(25, 25));
    EXPECT_EQ(cell.imageIndex(), 2u);
    cell.startTrackingAt(QPointF(100, 70)); // the ring's band
    EXPECT_EQ(cell.imageIndex(), 3u);
    cell.startTrackingAt(QPointF(100, 100)); // its hole: nothing there, the choice stays
    EXPECT_EQ(cell.imageIndex(), 3u);
    cell.stopTracking(QPointF(300, 300), true);
    EXPECT_EQ(cell.imageIndex(), 3u);
    EXPECT_EQ(cell.state(), 1);
}
