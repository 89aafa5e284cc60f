#include "ControllerFixture.h"
#include "actions/TVKSpecialAction.h"
#include "core/FourCharCode.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"

#include <QAction>
#include <QFile>
#include <QRegularExpression>

using namespace corvane;
using namespace corvane::test;

namespace {

int pdfPageCount(const QByteArray& pdf)
{
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    int count = 0;
    for (auto it = page.globalMatch(QString::fromLatin1(pdf)); it.hasNext(); it.next())
        ++count;
    return count;
}

class SheetCommandsTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"));
        TVKKeyset* editor = model.keysetAtIndex(1);
        for (int layer = 0; layer < 4; ++layer) {
            TVKControl* control = editor->controlForLayer(layer, 1, layer);
            control->adoptAction(std::make_unique<TVKButtonSpecialAction>(control, 4 + layer));
        }
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
        controller->setSelectedKeyset(1);
    }

    QAction* item(TVKMenuCommand command)
    {
        controller->validateMenuItems();
        return controller->menuItem(command);
    }
};

} // namespace

TEST_F(SheetCommandsTest, ExportKeysetSheetAsPdfWritesThePagesWhereTheUserSays)
{
    QAction* exportItem = item(TVKMenuCommand::HandleExportKeysetSheet);
    ASSERT_NE(exportItem, nullptr);
    EXPECT_EQ(exportItem->text(), QStringLiteral("Export Keyset Sheet as PDF…"));
    EXPECT_TRUE(exportItem->isEnabled());

    // Cancelled: nothing is written.
    exportItem->trigger();
    ASSERT_EQ(views.documentPanels.size(), 1u);
    EXPECT_EQ(views.documentPanels[0].fileType, QStringLiteral("pdf"));
    EXPECT_EQ(views.documentPanels[0].proposedName, QStringLiteral("Editor Keyset Sheet.pdf"));
    EXPECT_TRUE(views.alerts.empty());

    const QString file = home.path() + QStringLiteral("/Editor.pdf");
    views.savePanelAnswers.push_back(file);
    exportItem->trigger();
    QFile pdf(file);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const int pages = pdfPageCount(pdf.readAll());
    // One RS picture and a table of one row fit a page: a page a layer.
    EXPECT_EQ(pages, 4);
    EXPECT_TRUE(views.alerts.empty());

    // Where it cannot be written, the alert says so and why.
    views.savePanelAnswers.push_back(home.path() + QStringLiteral("/no/such/folder/x.pdf"));
    exportItem->trigger();
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts[0].message, QStringLiteral("The Keyset Sheet Could Not Be Exported"));
    EXPECT_TRUE(views.alerts[0].informativeText.contains(QStringLiteral("x.pdf")));
}

TEST_F(SheetCommandsTest, PrintKeysetHandsTheSamePagesToThePrintDialog)
{
    QAction* printItem = item(TVKMenuCommand::HandlePrintKeyset);
    ASSERT_NE(printItem, nullptr);
    EXPECT_EQ(printItem->text(), QStringLiteral("Print Keyset…"));
    EXPECT_EQ(printItem->shortcut(), QKeySequence(QKeySequence::Print));
    printItem->trigger();
    ASSERT_EQ(views.printJobs.size(), 1u);
    EXPECT_EQ(views.printJobs[0].title, QStringLiteral("Editor — Keyset Sheet"));
    EXPECT_EQ(views.printJobs[0].pageLayout.orientation(), QPageLayout::Landscape);
    EXPECT_EQ(pdfPageCount(views.printed[0]), 4);

    // The pages are the keyset as it was when the command was chosen: the preview paints them
    // again after the model has moved on.
    controller->setSelectedKeyset(0);
    QBuffer again;
    again.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&again);
        writer.setPageLayout(views.printJobs[0].pageLayout);
        EXPECT_EQ(views.printJobs[0].paint(writer), 4);
    }
    EXPECT_EQ(pdfPageCount(again.data()), 4);
}
