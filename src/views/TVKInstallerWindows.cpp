#include "views/TVKInstallerWindows.h"

#include "app/TVKUninstallerController.h"
#include "views/TVKSetupViewControllers.h"

#include <QApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyle>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>

// TVKInstallerDialog

TVKInstallerDialog::TVKInstallerDialog(Kind kind, corvane::TVKUserDefaults& defaults,
                                       CorvaneModelData* model, QWidget* parent)
    : QDialog(parent), m_kind(kind), m_defaults(defaults), m_model(model), m_parentWind(parent)
{
    setObjectName(kind == Kind::Install ? QStringLiteral("installWindow")
                                        : QStringLiteral("uninstallWindow"));
    setWindowTitle(kind == Kind::Install ? tr("Install Corvane Components")
                                         : tr("Uninstall Corvane Components"));
    setModal(true);

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(20, 20, 20, 16);
    outer->setSpacing(12);

    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    auto* icon = new QLabel(this);
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(QApplication::windowIcon().isNull()
                        ? style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(iconSize)
                        : QApplication::windowIcon().pixmap(iconSize));
    icon->setAlignment(Qt::AlignTop);
    top->addWidget(icon);

    m_containerView = new QVBoxLayout;
    m_messageView = new QWidget(this);
    auto* messageLayout = new QVBoxLayout(m_messageView);
    messageLayout->setContentsMargins(0, 0, 0, 0);
    m_messageField = new QTextBrowser(m_messageView);
    m_messageField->setFrameShape(QFrame::NoFrame);
    m_messageField->viewport()->setAutoFillBackground(false);
    m_messageField->document()->setDocumentMargin(0);
    m_messageField->setMinimumSize(460, 150);
    m_messageField->setAccessibleName(tr("Installation messages"));
    messageLayout->addWidget(m_messageField);
    m_containerView->addWidget(m_messageView, 1);
    top->addLayout(m_containerView, 1);
    outer->addLayout(top, 1);

    m_quitMIDIWarningField = new QLabel(
        kind == Kind::Install
            ? tr("Please quit every application that uses MIDI before you continue: the MIDI "
                 "driver is replaced and the MIDI server restarts.")
            : tr("Please quit every application that uses MIDI before you continue: the MIDI "
                 "driver is removed and the MIDI server restarts."),
        this);
    m_quitMIDIWarningField->setWordWrap(true);
    QFont bold = m_quitMIDIWarningField->font();
    bold.setBold(true);
    m_quitMIDIWarningField->setFont(bold);
    // The warning and the progress line belong to the text beside the icon, and line up with it.
    m_containerView->addWidget(m_quitMIDIWarningField);

    auto* status = new QHBoxLayout;
    m_restartMIDILable = new QLabel(tr("Waiting for the MIDI server to restart…"), this);
    status->addWidget(m_restartMIDILable, 1);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setMaximumWidth(160);
    status->addWidget(m_progress);
    m_containerView->addLayout(status);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    m_cancelButton = new QPushButton(tr("Cancel"), this);
    m_continueButton = new QPushButton(this);
    m_continueButton->setDefault(true);
    m_continueButton->setAutoDefault(true);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_continueButton);
    outer->addLayout(buttons);
    connect(m_continueButton, &QPushButton::clicked, this, [this] {
        if (onProceed)
            onProceed();
    });
    connect(m_cancelButton, &QPushButton::clicked, this, [this] {
        if (onCancel)
            onCancel();
    });
}

TVKInstallerDialog::~TVKInstallerDialog() = default;

void TVKInstallerDialog::refresh(const TVKInstallerFace& face)
{
    if (m_shownMessage != face.message) {
        m_shownMessage = face.message;
        m_messageField->setHtml(messageHtml(face.message));
        m_messageField->moveCursor(QTextCursor::End);
        m_messageField->ensureCursorVisible();
    }
    m_cancelButton->setText(face.cancel.title);
    m_cancelButton->setVisible(face.cancel.shown);
    m_cancelButton->setEnabled(face.cancel.enabled);
    m_continueButton->setText(face.proceed.title);
    m_continueButton->setVisible(face.proceed.shown);
    m_continueButton->setEnabled(face.proceed.enabled);
    if (face.proceed.shown && face.proceed.enabled)
        m_continueButton->setFocus();
    m_quitMIDIWarningField->setVisible(face.quitMIDIWarningShown);
    if (!face.restartLabel.isEmpty())
        m_restartMIDILable->setText(face.restartLabel);
    m_restartMIDILable->setVisible(face.restartLabelShown);
    m_progress->setVisible(face.progressShown && face.progressRunning);
    // The copy steps run one after another in one go; show each as it is reached.
    if (isVisible())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

QString TVKInstallerDialog::messageHtml(const QString& message)
{
    // The steps' log separates them with a line of underscores; in the window that line is a
    // rule across the text rather than underscores.
    static const QRegularExpression ruler(QStringLiteral("^_{3,}$"));
    QString html;
    QStringList block;
    const auto flush = [&] {
        if (!block.isEmpty())
            html += QStringLiteral("<p style=\"white-space: pre-wrap; margin: 0\">%1</p>")
                        .arg(block.join(u'\n').toHtmlEscaped());
        block.clear();
    };
    for (const QString& line : message.split(u'\n')) {
        if (ruler.match(line).hasMatch()) {
            flush();
            html += QStringLiteral("<hr/>");
        } else {
            block.append(line);
        }
    }
    flush();
    return html;
}

int TVKInstallerDialog::runModal()
{
    adjustSize();
    if (m_parentWind) {
        const QRect parent = m_parentWind->window()->frameGeometry();
        move(parent.center() - rect().center());
    }
    show();
    raise();
    activateWindow();
    QEventLoop loop;
    m_modalLoop = &loop;
    const int code = loop.exec();
    m_modalLoop = nullptr;
    return code;
}

void TVKInstallerDialog::stopModal(int code)
{
    if (m_modalLoop)
        m_modalLoop->exit(code);
}

void TVKInstallerDialog::closeWindow()
{
    hide();
}

void TVKInstallerDialog::bringMainWindowToFront()
{
    if (m_parentWind) {
        m_parentWind->window()->raise();
        m_parentWind->window()->activateWindow();
    }
}

void TVKInstallerDialog::reject()
{
    // Escape and the close button are the cancel button, while it can be pressed.
    if (m_cancelButton->isVisible() && m_cancelButton->isEnabled())
        m_cancelButton->click();
}

void TVKInstallerDialog::showSetupPage(const QString& controllerName)
{
    m_setupView =
        TVKSetupViewController::make(QStringLiteral("%1SetupViewController").arg(controllerName),
                                     QStringLiteral("%1_Initial_Setup").arg(controllerName),
                                     controllerName, m_defaults, m_model);
    if (!m_setupView)
        return;
    // The page takes the message's place; the window grows or shrinks by the difference.
    const int before = m_messageView->height();
    m_messageView->hide();
    m_setupView->setParent(this);
    m_containerView->addWidget(m_setupView.get());
    m_setupView->show();
    const int delta = m_setupView->sizeHint().height() - before;
    resize(std::max(width(), sizeHint().width()), height() + delta);
    adjustSize();
    if (QWidget* first = m_setupView->nextInFocusChain())
        first->setFocus();
}

bool TVKInstallerDialog::finishSetup()
{
    return m_setupView && m_setupView->finishSetup();
}

// TVKConsoleInstaller

void TVKConsoleInstaller::refresh(const TVKInstallerFace& face)
{
    m_face = face;
    if (face.message != m_printed) {
        const QString text = face.message.startsWith(m_printed) && !m_printed.isEmpty()
                                 ? face.message.mid(m_printed.size())
                                 : face.message;
        // Plain progress lines: the window's separators go, and so do its prompts to press a
        // button, which the console presses itself.
        for (const QString& line : text.split(u'\n')) {
            const QString trimmed = line.trimmed();
            if (trimmed.isEmpty() || trimmed.startsWith(QStringLiteral("____")) ||
                (trimmed.startsWith(QStringLiteral("***")) &&
                 trimmed.endsWith(QStringLiteral("***"))))
                continue;
            std::fprintf(m_out, "%s\n", qPrintable(trimmed));
        }
        std::fflush(m_out);
        m_printed = face.message;
    }
    pressWhenReady();
}

void TVKConsoleInstaller::pressWhenReady()
{
    if (m_pressScheduled || !m_loop)
        return;
    m_pressScheduled = true;
    QTimer::singleShot(0, [this] {
        m_pressScheduled = false;
        if (!m_loop)
            return;
        if (m_face.proceed.title == u"Apply") {
            // The setup page needs a person: it waits for the next start.
            if (m_face.cancel.shown && m_face.cancel.enabled && onCancel)
                onCancel();
            return;
        }
        if (m_face.proceed.shown && m_face.proceed.enabled && onProceed)
            onProceed();
    });
}

int TVKConsoleInstaller::runModal()
{
    QEventLoop loop;
    m_loop = &loop;
    pressWhenReady();
    m_code = loop.exec();
    m_loop = nullptr;
    return m_code;
}

void TVKConsoleInstaller::stopModal(int code)
{
    if (m_loop)
        m_loop->exit(code);
}

int TVKConsoleInstaller::run(bool uninstall, const TVKInstallationNames& names, bool needsSetup,
                             const TVKInstallEnvironment& environment, std::FILE* out)
{
    const TVKInstallParameters parameters{
        names.controllerName,  names.driverName,    names.backgroundAppName, names.backgroundAppID,
        names.launcherAppName, names.launcherAppID, names.uninstallerName};
    TVKConsoleInstaller console(out);
    if (uninstall) {
        console.onProceed = [] { TVKUninstallerController::current()->okayUninstall(); };
        console.onCancel = [] { TVKUninstallerController::current()->cancelUninstall(); };
        const int stage = TVKUninstallerController::startUninstallForController(
            console, environment, names.applicationName, parameters);
        return stage == 1 ? 0 : 1;
    }
    console.onProceed = [] { TVKInstallerController::current()->initiateInstall(); };
    console.onCancel = [] { TVKInstallerController::current()->cancelInstall(); };
    const std::optional<int> code = TVKInstallerController::startInstallForController(
        console, environment, parameters, needsSetup);
    const auto say = [out](const char* text) {
        std::fprintf(out, "%s\n",
                     qPrintable(QCoreApplication::translate("TVKConsoleInstaller", text)));
        std::fflush(out);
    };
    if (!code) {
        say("The background components are installed and current.");
        return 0;
    }
    if (*code != TVKInstallerController::Finished)
        return 1;
    say("The background components are installed; the service starts now and at every login.");
    return 0;
}
