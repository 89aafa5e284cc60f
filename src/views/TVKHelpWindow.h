#pragma once

#include <QWidget>

class QTextBrowser;

// The short manual that comes with the program, shown from its resources: it needs no network
// and no browser.
class TVKHelpWindow : public QWidget
{
    Q_OBJECT
public:
    explicit TVKHelpWindow(QWidget* parent = nullptr);

    // Shows the manual from its beginning, or at one of its sections ("keysets", "expanders" …).
    void showSection(const QString& section = QString());
    QTextBrowser* browser() const { return m_browser; }

    static QUrl manualUrl();

private:
    QTextBrowser* m_browser = nullptr;
};
