#include "views/TVKQtDialogs.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

QString filterFor(const QStringList& fileTypes)
{
    QStringList patterns;
    for (const QString& type : fileTypes)
        patterns << QStringLiteral("*.%1").arg(type);
    return QObject::tr("Corvane keysets (%1)").arg(patterns.join(QLatin1Char(' ')));
}

// An application without an icon the desktop can find gets a tile with its initial, so that
// every name in the list starts at the same place.
QIcon initialTile(const QString& name, const QPalette& palette)
{
    constexpr int side = 64;
    QPixmap tile(side, side);
    tile.fill(Qt::transparent);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.color(QPalette::Mid));
    painter.drawRoundedRect(QRectF(4, 4, side - 8, side - 8), 12, 12);
    QFont font = painter.font();
    font.setPixelSize(side / 2);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::Light));
    const QString initial = name.trimmed().left(1).toUpper();
    painter.drawText(QRect(0, 0, side, side), Qt::AlignCenter, initial);
    return QIcon(tile);
}

QIcon applicationIcon(const corvane::DesktopApplication& application, const QPalette& palette)
{
    QIcon icon;
    if (application.iconName.startsWith(QLatin1Char('/'))) {
        if (QFileInfo::exists(application.iconName))
            icon = QIcon(application.iconName);
    } else if (!application.iconName.isEmpty()) {
        icon = QIcon::fromTheme(application.iconName);
    }
    // An icon file in a format this desktop cannot read draws nothing: treat it as missing.
    const auto draws = [](const QIcon& candidate) {
        return !candidate.isNull() && !candidate.pixmap(24, 24).isNull();
    };
    if (!draws(icon))
        icon = QIcon::fromTheme(QStringLiteral("application-x-executable"));
    return draws(icon) ? icon : initialTile(application.name, palette);
}

} // namespace

QString TVKQtDialogs::runOpenPanel(const QStringList& fileTypes)
{
    return QFileDialog::getOpenFileName(
        m_parent, QObject::tr("Import Keyset"),
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), filterFor(fileTypes));
}

QString TVKQtDialogs::runSavePanel(const QString& fileType, const QString& proposedName)
{
    QFileDialog dialog(m_parent, QObject::tr("Export Keyset"),
                       QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                       filterFor({fileType}));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(fileType);
    dialog.selectFile(proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().constFirst();
}

int TVKQtDialogs::runAlert(const TVKAlert& alert)
{
    QMessageBox box(m_parent);
    box.setIcon(QMessageBox::Warning);
    box.setText(alert.message);
    box.setInformativeText(alert.informativeText);
    // The question reads as a headline over its explanation, and the explanation on lines of a
    // readable length rather than folded into a column as narrow as the headline.
    if (auto* headline = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = headline->font();
        bold.setBold(true);
        headline->setFont(bold);
    }
    if (auto* explanation = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        explanation->setMinimumWidth(explanation->fontMetrics().averageCharWidth() * 48);
    std::vector<QAbstractButton*> buttons;
    const QStringList titles =
        alert.buttons.isEmpty() ? QStringList{QObject::tr("OK")} : alert.buttons;
    for (qsizetype i = 0; i < titles.size(); ++i) {
        // The first button is the default; a second one is the way out with Escape.
        const QMessageBox::ButtonRole role = i == 0   ? QMessageBox::AcceptRole
                                             : i == 1 ? QMessageBox::RejectRole
                                                      : QMessageBox::DestructiveRole;
        QPushButton* button = box.addButton(titles.at(i), role);
        if (i == 0)
            box.setDefaultButton(button);
        buttons.push_back(button);
    }
    box.exec();
    for (size_t i = 0; i < buttons.size(); ++i) {
        if (box.clickedButton() == buttons[i])
            return int(i);
    }
    // Closed from the window frame: as the way out, or the only button.
    return buttons.size() > 1 ? 1 : 0;
}

std::optional<corvane::DesktopApplication>
TVKQtDialogs::chooseApplication(const std::vector<corvane::DesktopApplication>& applications)
{
    QDialog dialog(m_parent);
    dialog.setWindowTitle(QObject::tr("New Keyset for Application"));
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(
        new QLabel(QObject::tr("Choose the application the new keyset controls:"), &dialog));
    auto* filter = new QLineEdit(&dialog);
    filter->setPlaceholderText(QObject::tr("Search applications"));
    filter->setClearButtonEnabled(true);
    layout->addWidget(filter);
    auto* list = new QListWidget(&dialog);
    list->setIconSize(QSize(24, 24));
    list->setMinimumSize(360, 360);
    for (size_t i = 0; i < applications.size(); ++i) {
        if (applications[i].noDisplay)
            continue;
        auto* item = new QListWidgetItem(applicationIcon(applications[i], list->palette()),
                                         applications[i].name, list);
        item->setData(Qt::UserRole, qulonglong(i));
        item->setToolTip(applications[i].id);
    }
    list->sortItems();
    if (list->count() > 0)
        list->setCurrentRow(0);
    layout->addWidget(list, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(QObject::tr("Make Keyset"));
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    QObject::connect(filter, &QLineEdit::textChanged, list, [list](const QString& text) {
        QListWidgetItem* first = nullptr;
        for (int row = 0; row < list->count(); ++row) {
            QListWidgetItem* item = list->item(row);
            const bool shown = item->text().contains(text, Qt::CaseInsensitive) ||
                               item->toolTip().contains(text, Qt::CaseInsensitive);
            item->setHidden(!shown);
            if (shown && !first)
                first = item;
        }
        list->setCurrentItem(first);
    });
    if (dialog.exec() != QDialog::Accepted || !list->currentItem())
        return std::nullopt;
    return applications[size_t(list->currentItem()->data(Qt::UserRole).toULongLong())];
}

QString TVKQtDialogs::runDocumentSavePanel(const TVKDocumentPanel& panel)
{
    QFileDialog dialog(m_parent, panel.title,
                       QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                       QStringLiteral("%1 (*.%2)").arg(panel.typeName, panel.fileType));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(panel.fileType);
    dialog.selectFile(panel.proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().constFirst();
}

bool TVKQtDialogs::runPrintPanel(const TVKPrintJob& job)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(job.title);
    printer.setPageLayout(job.pageLayout);
    QPrintPreviewDialog preview(&printer, m_parent);
    preview.setWindowTitle(job.title);
    QObject::connect(&preview, &QPrintPreviewDialog::paintRequested, &preview,
                     [&job](QPrinter* device) { job.paint(*device); });
    return preview.exec() == QDialog::Accepted;
}

std::optional<QString> TVKQtDialogs::runTextInput(const QString& title, const QString& label,
                                                  const QString& text)
{
    bool ok = false;
    const QString answer =
        QInputDialog::getText(m_parent, title, label, QLineEdit::Normal, text, &ok);
    if (!ok)
        return std::nullopt;
    return answer;
}

QString TVKQtDialogs::runFolderPanel(const QString& title)
{
    return QFileDialog::getExistingDirectory(
        m_parent, title, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

namespace {

class QtProgress final : public TVKProgress
{
public:
    QtProgress(QWidget* parent, const QString& title, int total)
        : m_dialog(title, QObject::tr("Cancel"), 0, total, parent)
    {
        m_dialog.setWindowTitle(title);
        // Nothing else is edited while the command runs: the keysets stay as they were asked
        // about.
        m_dialog.setWindowModality(Qt::ApplicationModal);
        m_dialog.setMinimumDuration(500);
        m_dialog.setAutoClose(true);
        m_dialog.setValue(0);
    }
    void setProgress(int done, const QString& step) override
    {
        if (!step.isEmpty())
            m_dialog.setLabelText(step);
        // The dialog runs the event loop here, so that Cancel is seen and the window redraws.
        m_dialog.setValue(done);
    }
    bool wasCancelled() const override { return m_dialog.wasCanceled(); }

private:
    QProgressDialog m_dialog;
};

} // namespace

std::unique_ptr<TVKProgress> TVKQtDialogs::beginProgress(const QString& title, int total)
{
    return std::make_unique<QtProgress>(m_parent, title, total);
}
