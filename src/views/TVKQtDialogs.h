#pragma once

#include "app/TVKViewInterfaces.h"

class QWidget;

// The controller's modal dialogs, as the desktop's standard ones: file dialogs with the keyset
// file type, message boxes with the alert's buttons (the first is the default), an application
// chooser listing the installed desktop applications, a text prompt, a folder chooser and a
// progress dialog.
class TVKQtDialogs : public TVKDialogs
{
public:
    // Dialogs are centred on the parent's window (the main window once it exists).
    void setParentWindow(QWidget* parent) { m_parent = parent; }

    QString runOpenPanel(const QStringList& fileTypes) override;
    QString runSavePanel(const QString& fileType, const QString& proposedName) override;
    int runAlert(const TVKAlert& alert) override;
    std::optional<corvane::DesktopApplication>
    chooseApplication(const std::vector<corvane::DesktopApplication>& applications) override;
    QString runDocumentSavePanel(const TVKDocumentPanel& panel) override;
    bool runPrintPanel(const TVKPrintJob& job) override;
    std::optional<QString> runTextInput(const QString& title, const QString& label,
                                        const QString& text) override;
    QString runFolderPanel(const QString& title) override;
    // A progress dialog, modal to the application, shown once the work has taken half a second.
    std::unique_ptr<TVKProgress> beginProgress(const QString& title, int total) override;

private:
    QWidget* m_parent = nullptr;
};
