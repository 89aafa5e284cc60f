#include "views/TVKHelpWindow.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QScrollBar>
#include <QStyle>
#include <QTextBrowser>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

TVKHelpWindow::TVKHelpWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("CorvaneHelp"));
    setWindowTitle(tr("Corvane Help"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 4);
    const auto button = [this, bar](QStyle::StandardPixmap icon, const QString& text,
                                    const QKeySequence& key) {
        auto* b = new QToolButton(this);
        b->setIcon(style()->standardIcon(icon));
        b->setToolTip(key.isEmpty() ? text
                                    : QStringLiteral("%1 (%2)").arg(
                                          text, key.toString(QKeySequence::NativeText)));
        b->setText(text);
        b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        b->setShortcut(key);
        b->setAutoRaise(true);
        bar->addWidget(b);
        return b;
    };
    QToolButton* back = button(QStyle::SP_ArrowBack, tr("Back"), QKeySequence::Back);
    QToolButton* forward = button(QStyle::SP_ArrowForward, tr("Forward"), QKeySequence::Forward);
    QToolButton* home = button(QStyle::SP_FileDialogContentsView, tr("Contents"), QKeySequence());
    bar->addStretch(1);
    layout->addLayout(bar);

    m_browser = new QTextBrowser(this);
    m_browser->setOpenExternalLinks(true);
    m_browser->setFrameShape(QFrame::NoFrame);
    m_browser->document()->setDocumentMargin(16);
    layout->addWidget(m_browser, 1);

    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QToolButton::clicked, m_browser, &QTextBrowser::backward);
    connect(forward, &QToolButton::clicked, m_browser, &QTextBrowser::forward);
    connect(home, &QToolButton::clicked, this, [this] { showSection(); });
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QToolButton::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QToolButton::setEnabled);

    auto* close = new QAction(this);
    close->setShortcuts({QKeySequence::Close, QKeySequence(Qt::Key_Escape)});
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);

    resize(620, 680);
    m_browser->setSource(manualUrl());
}

QUrl TVKHelpWindow::manualUrl()
{
    return QUrl(QStringLiteral("qrc:/help/corvane-help.html"));
}

void TVKHelpWindow::showSection(const QString& section)
{
    QUrl url = manualUrl();
    if (!section.isEmpty())
        url.setFragment(section);
    m_browser->setSource(url);
    if (section.isEmpty())
        m_browser->verticalScrollBar()->setValue(0);
}
