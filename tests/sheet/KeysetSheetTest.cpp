#include "sheet/KeysetSheet.h"

#include "ConfigGenerator.h"
#include "ModelFixture.h"
#include "QtPrinters.h"
#include "SheetTestSupport.h"
#include "actions/ActionDescription.h"
#include "actions/TVKSpecialAction.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"
#include "sheet/SheetSurface.h"

#include <QBuffer>
#include <QFile>
#include <QPdfWriter>
#include <QTemporaryDir>
#include <map>
#include <set>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

using corvane::KeysetSheet;
using corvane::SheetPage;
using corvane::SheetPaper;
using corvane::SheetRow;
using corvane::sheetUnits;

class KeysetSheetTest : public ModelTest
{
protected:
    void SetUp() override
    {
        corvane::test::ensureGuiApplication();
        ModelTest::SetUp();
        ASSERT_TRUE(dir.isValid());
    }

    // A PDF writer on a buffer, laid out as the sheet's files are.
    struct Device
    {
        explicit Device(SheetPaper paper) : writer(&buffer)
        {
            buffer.open(QIODevice::WriteOnly);
            writer.setPageLayout(KeysetSheet::pageLayout(paper));
        }
        QBuffer buffer;
        QPdfWriter writer;
    };

    // Every control of every group and every display of the model's tables, in that order.
    static std::vector<std::tuple<bool, int, int>> everyPlace(const TVKLayer& layer)
    {
        std::vector<std::tuple<bool, int, int>> places;
        for (int g = 0; g < int(layer.groups().size()); ++g) {
            for (int i = 0; i < constants().numberOfControlsInGroup(g); ++i)
                places.emplace_back(false, g, i);
        }
        for (int g = 0; g < int(layer.displayGroups().size()); ++g) {
            for (int i = 0; i < constants().numberOfDisplaysInGroup(g); ++i)
                places.emplace_back(true, g, i);
        }
        return places;
    }
    static const TVK_Constant_Server& constants()
    {
        return *TVK_Constant_Server::defaultConstantServer();
    }
    static TVKControl* controlAt(const TVKLayer& layer, bool display, int group, int index)
    {
        const auto& groups = display ? layer.displayGroups() : layer.groups();
        if (group >= int(groups.size()) || index >= int(groups[size_t(group)].size()))
            return nullptr;
        return groups[size_t(group)][size_t(index)].get();
    }

    // A keyset with every control and display given an action, then a third of them cleared
    // again, and a name on some without an action.
    std::unique_ptr<CorvaneModelData> fullKeyset()
    {
        corvane::ConfigGenerator generator;
        auto model = generator.generateConfiguration(1);
        TVKKeyset* keyset = model->keysetAtIndex(0);
        int n = 0;
        for (const auto& layer : keyset->layers()) {
            for (const auto& [display, group, index] : everyPlace(*layer)) {
                TVKControl* control = controlAt(*layer, display, group, index);
                if (!control || ++n % 3 != 0)
                    continue;
                control->adoptAction(nullptr);
                control->setUserName(n % 2 ? QStringLiteral("Named %1").arg(n) : QString());
            }
        }
        return model;
    }

    QTemporaryDir dir;
};

TEST_F(KeysetSheetTest, EveryAssignedControlIsInItsLayersTableOnceWithItsFullDescription)
{
    auto model = fullKeyset();
    const TVKKeyset& keyset = *model->keysetAtIndex(0);
    const KeysetSheet sheet(keyset);
    for (int l = 0; l < 4; ++l) {
        const TVKLayer& layer = *keyset.layerAtIndex(l);
        const std::vector<SheetRow>& rows = sheet.rows(l);
        std::map<std::tuple<bool, int, int>, int> seen;
        for (const SheetRow& row : rows)
            ++seen[{row.display, row.group, row.index}];
        size_t expected = 0;
        size_t position = 0;
        for (const auto& place : everyPlace(layer)) {
            const auto& [display, group, index] = place;
            const TVKControl* control = controlAt(layer, display, group, index);
            ASSERT_NE(control, nullptr);
            const bool assigned =
                corvane::isAssigned(control->action()) || !control->userName().trimmed().isEmpty();
            SCOPED_TRACE(testing::Message() << "layer " << l + 1 << (display ? " display " : " ")
                                            << "group " << group << " index " << index);
            EXPECT_EQ(seen[place], assigned ? 1 : 0);
            if (!assigned)
                continue;
            ++expected;
            // In the surface's order: the rows run through the tables as the test does.
            while (position < rows.size() &&
                   std::make_tuple(rows[position].display, rows[position].group,
                                   rows[position].index) != place)
                ++position;
            ASSERT_LT(position, rows.size()) << "out of order";
            const SheetRow& row = rows[position];
            EXPECT_EQ(row.controlName, control->name());
            EXPECT_EQ(row.userName, control->userName().trimmed());
            if (corvane::isAssigned(control->action()))
                EXPECT_EQ(row.description,
                          corvane::describeAction(*control->action(), corvane::Detail::Full));
            else
                EXPECT_FALSE(row.description.isEmpty());
            EXPECT_EQ(row.label, corvane::assignmentLabel(*control));
        }
        EXPECT_EQ(rows.size(), expected);
    }

    // Every row is on the pages of its layer once, the pages of a layer following each other.
    for (const SheetPaper paper : {SheetPaper::A4, SheetPaper::Letter}) {
        Device device(paper);
        const std::vector<SheetPage> pages = sheet.layout(device.writer);
        std::array<int, 4> next{};
        int layer = 0;
        for (const SheetPage& page : pages) {
            ASSERT_GE(page.layer, layer) << "layers out of order";
            layer = page.layer;
            EXPECT_EQ(page.firstRow, page.rowCount ? next[size_t(layer)] : page.firstRow);
            next[size_t(layer)] += page.rowCount;
        }
        for (int l = 0; l < 4; ++l)
            EXPECT_EQ(next[size_t(l)], int(sheet.rows(l).size())) << "layer " << l + 1;
    }
}

TEST_F(KeysetSheetTest, EveryAssignedControlOfAUnitInUseIsLabelledOnItsPictureWithoutOverlap)
{
    auto model = fullKeyset();
    const TVKKeyset& keyset = *model->keysetAtIndex(0);
    const KeysetSheet sheet(keyset);
    const std::set<int> used(sheet.units().begin(), sheet.units().end());
    for (const SheetPaper paper : {SheetPaper::A4, SheetPaper::Letter}) {
        Device device(paper);
        const std::vector<SheetPage> pages = sheet.layout(device.writer);
        const QRectF paintRect(
            device.writer.pageLayout().paintRectPixels(device.writer.resolution()));
        // (layer, unit) -> rows labelled on that unit's pictures.
        std::map<std::pair<int, int>, std::multiset<int>> labelled;
        std::map<std::pair<int, int>, size_t> pictures;
        for (const SheetPage& page : pages) {
            for (const auto& picture : page.pictures) {
                EXPECT_TRUE(used.count(picture.unit));
                ++pictures[{page.layer, picture.unit}];
                EXPECT_LE(picture.rect.right(), paintRect.width() + 0.5);
                EXPECT_LE(picture.rect.bottom(), paintRect.height() + 0.5);
                for (size_t i = 0; i < picture.labels.size(); ++i) {
                    const auto& label = picture.labels[i];
                    EXPECT_FALSE(label.text.isEmpty());
                    EXPECT_GT(label.rect.width(), 0);
                    EXPECT_GT(label.rect.height(), 0);
                    EXPECT_TRUE(picture.rect.adjusted(-0.5, -0.5, 0.5, 0.5).contains(label.rect))
                        << qPrintable(label.text);
                    for (size_t j = i + 1; j < picture.labels.size(); ++j)
                        EXPECT_FALSE(label.rect.intersects(picture.labels[j].rect))
                            << qPrintable(label.text) << " / "
                            << qPrintable(picture.labels[j].text);
                    labelled[{page.layer, picture.unit}].insert(label.row);
                }
            }
        }
        // Each assigned control a used unit draws has its label on each picture of that unit,
        // or, for the NV's banked keys, on those that show its bank.
        for (int u : used) {
            const corvane::SheetUnit& unit = sheetUnits()[size_t(u)];
            for (int l = 0; l < 4; ++l) {
                const size_t shown = pictures[{l, u}];
                EXPECT_GE(shown, 1u);
                const std::vector<SheetRow>& rows = sheet.rows(l);
                for (int r = 0; r < int(rows.size()); ++r) {
                    const SheetRow& row = rows[size_t(r)];
                    const corvane::SheetPlace* place =
                        unit.place(row.display, row.group, row.index);
                    if (!place)
                        continue;
                    // A banked key is on the pictures that show its bank (the parameter keys
                    // of a function key on each of its parameters' pictures).
                    const size_t count = labelled[{l, u}].count(r);
                    const bool banked = place->bankKind != corvane::SheetBank::None;
                    EXPECT_TRUE(banked ? count >= 1 && count <= shown : count == shown)
                        << count << " of " << shown << " pictures of " << qPrintable(unit.name)
                        << " layer " << l + 1 << " " << qPrintable(row.groupName) << " "
                        << qPrintable(row.controlName);
                }
            }
        }
    }
}

TEST_F(KeysetSheetTest, TheUnitsInUseAreThoseThatDrawAnAssignedControl)
{
    const auto unitNames = [](const KeysetSheet& sheet) {
        QStringList names;
        for (int u : sheet.units())
            names << sheetUnits()[size_t(u)].name;
        return names;
    };
    struct Case
    {
        std::vector<std::pair<int, int>> assigned; // (model-data group, index) in layer 2
        QStringList units;
    } cases[] = {
        {{}, {}},
        {{{0, 0}}, {u"CorvaneRS"_s}},
        // The F keys are on the RS and the TLWs: the RS shows them.
        {{{5, 3}}, {u"CorvaneRS"_s}},
        {{{16, 31}}, {u"Expander"_s}},
        {{{23, 0}}, {u"CorvaneTLW"_s}},
        // The TLW2 draws all the TLW does, and its encoders.
        {{{23, 0}, {29, 7}}, {u"CorvaneTLW2"_s}},
        {{{30, 0}, {5, 0}}, {u"CorvaneRS"_s, u"CorvaneTLW2"_s}},
        {{{24, 239}, {28, 159}}, {u"CorvaneNV"_s}},
    };
    for (const Case& c : cases) {
        CorvaneModelData model;
        TVKKeyset* keyset = model.keysetAtIndex(0);
        for (const auto& [group, index] : c.assigned) {
            TVKControl* control = keyset->controlForLayer(1, group, index);
            control->adoptAction(std::make_unique<TVKButtonSpecialAction>(control, 4));
        }
        EXPECT_EQ(unitNames(KeysetSheet(*keyset)), c.units) << c.assigned.size();
    }
    // A display alone brings in the unit that shows it: the RS, whose displays the DZ repeats.
    CorvaneModelData model;
    TVKControl* display = model.keysetAtIndex(0)->displayForLayer(3, 1, 0);
    display->setUserName(QStringLiteral("Clock"));
    EXPECT_EQ(unitNames(KeysetSheet(*model.keysetAtIndex(0))), QStringList{u"CorvaneRS"_s});
}

TEST_F(KeysetSheetTest, TheNVIsShownOncePerBankInUseWithItsSelectorKeysMarked)
{
    CorvaneModelData model;
    TVKKeyset* keyset = model.keysetAtIndex(0);
    // LCD buttons in banks 1 and 4, parameters of F3, actions of F3 parameter 2 and F8 parameter 5.
    for (const auto& [group, index] : std::vector<std::pair<int, int>>{{24, 0},
                                                                       {24, 3 * 24 + 5},
                                                                       {27, 2 * 5 + 1},
                                                                       {28, (2 * 5 + 1) * 4 + 3},
                                                                       {28, (7 * 5 + 4) * 4}}) {
        TVKControl* control = keyset->controlForLayer(0, group, index);
        control->adoptAction(std::make_unique<TVKButtonSpecialAction>(control, 4));
    }
    const KeysetSheet sheet(*keyset);
    Device device(SheetPaper::A4);
    QStringList captions;
    for (const SheetPage& page : sheet.layout(device.writer)) {
        for (const auto& picture : page.pictures) {
            if (page.layer == 0) {
                captions << picture.caption;
                EXPECT_EQ(picture.marked.size(), size_t(picture.caption.count(u'·')) + 1)
                    << qPrintable(picture.caption);
            }
        }
    }
    EXPECT_EQ(captions,
              (QStringList{QStringLiteral("Corvane NV — LCD bank 1 · F3 · Parameter 2"),
                           QStringLiteral("Corvane NV — LCD bank 4 · F8 · Parameter 5")}));
}

TEST_F(KeysetSheetTest, ThePdfHasItsPagesInA4AndLetter)
{
    auto model = fullKeyset();
    const KeysetSheet sheet(*model->keysetAtIndex(0));
    CorvaneModelData empty;
    const KeysetSheet blank(*empty.keysetAtIndex(0));
    struct Case
    {
        SheetPaper paper;
        QSizeF points; // landscape
    } cases[] = {{SheetPaper::A4, {841.89, 595.28}}, {SheetPaper::Letter, {792, 612}}};
    for (const Case& c : cases) {
        for (const KeysetSheet* s : {&sheet, &blank}) {
            const QString path = dir.filePath(QStringLiteral("sheet.pdf"));
            QString error;
            ASSERT_TRUE(s->writePdf(path, c.paper, &error)) << qPrintable(error);
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const corvane::test::PdfPages pdf = corvane::test::pdfPages(file.readAll());
            Device device(c.paper);
            const int expected = int(s->layout(device.writer).size());
            EXPECT_EQ(pdf.count, expected);
            ASSERT_EQ(int(pdf.sizes.size()), expected);
            for (const QSizeF& size : pdf.sizes) {
                EXPECT_NEAR(size.width(), c.points.width(), 1.0);
                EXPECT_NEAR(size.height(), c.points.height(), 1.0);
            }
            if (s == &blank) {
                EXPECT_EQ(pdf.count, 4) << "one page a layer when nothing is assigned";
            } else {
                // Every layer starts on a page of its own and ends before the next starts.
                EXPECT_GT(pdf.count, 8);
            }
        }
    }
}

TEST_F(KeysetSheetTest, AFileThatCannotBeWrittenIsReportedAndLeavesNothing)
{
    CorvaneModelData model;
    const KeysetSheet sheet(*model.keysetAtIndex(0));
    QString error;
    const QString path = dir.filePath(QStringLiteral("missing/sheet.pdf"));
    EXPECT_FALSE(sheet.writePdf(path, SheetPaper::A4, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace
