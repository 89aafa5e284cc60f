#pragma once

#include "app/TVKController.h"
#include "app/TVKViewInterfaces.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QString>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <vector>

class TVKController;

// The windows of the application played by a script: panels and alerts answer from queues
// (cancel, or the first button, when nothing is queued), windows are flags, and every call is
// recorded for the tests to read.
class ScriptedViews final : public TVKDialogs,
                            public TVKWindows,
                            public TVKSheets,
                            public TVKInstallation
{
public:
    TVKController::Views interfaces() { return {this, this, this, this}; }

    // Dialogs.
    std::deque<QString> openPanelAnswers;
    std::deque<QString> savePanelAnswers;
    std::deque<int> alertAnswers;
    std::optional<corvane::DesktopApplication> chosenApplication;
    std::vector<TVKAlert> alerts;
    std::vector<QStringList> openPanelTypes;
    std::vector<QString> proposedNames;
    std::vector<corvane::DesktopApplication> offeredApplications;

    QString runOpenPanel(const QStringList& fileTypes) override
    {
        openPanelTypes.push_back(fileTypes);
        return take(openPanelAnswers, QString());
    }
    QString runSavePanel(const QString&, const QString& proposedName) override
    {
        proposedNames.push_back(proposedName);
        return take(savePanelAnswers, QString());
    }
    // Document panels answer from the save panel's queue; a print job is painted into a PDF in
    // memory, as a printer would be.
    std::vector<TVKDocumentPanel> documentPanels;
    QString runDocumentSavePanel(const TVKDocumentPanel& panel) override
    {
        documentPanels.push_back(panel);
        return take(savePanelAnswers, QString());
    }
    std::vector<TVKPrintJob> printJobs;
    std::vector<QByteArray> printed;
    bool runPrintPanel(const TVKPrintJob& job) override
    {
        printJobs.push_back(job);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            QPdfWriter writer(&buffer);
            writer.setPageLayout(job.pageLayout);
            job.paint(writer);
        }
        printed.push_back(buffer.data());
        return true;
    }
    int runAlert(const TVKAlert& alert) override
    {
        alerts.push_back(alert);
        return take(alertAnswers, 0);
    }
    std::optional<corvane::DesktopApplication>
    chooseApplication(const std::vector<corvane::DesktopApplication>& applications) override
    {
        offeredApplications = applications;
        return chosenApplication;
    }
    std::deque<QString> textAnswers;
    std::optional<QString> runTextInput(const QString&, const QString&, const QString&) override
    {
        if (textAnswers.empty())
            return std::nullopt;
        return take(textAnswers, QString());
    }

    std::deque<QString> folderAnswers;
    std::vector<QString> folderTitles;
    QString runFolderPanel(const QString& title) override
    {
        folderTitles.push_back(title);
        return take(folderAnswers, QString());
    }
    // Every progress reported, as (done, total); the progress reads as cancelled once
    // `cancelProgressAt` steps are done.
    std::vector<std::pair<int, int>> progressReports;
    int cancelProgressAt = -1;
    std::unique_ptr<TVKProgress> beginProgress(const QString&, int total) override
    {
        return std::make_unique<Progress>(*this, total);
    }

    // Windows.
    std::set<TVKWindow> existing;
    std::set<TVKWindow> visible;
    std::optional<TVKWindow> key;
    std::vector<TVKWindow> shown;
    std::vector<TVKWindow> closed;
    QString keysetName;
    QImage keysetIcon;
    bool lockButton = false;
    std::vector<QString> hardwareImages;
    bool nvMenuShown = false;
    const TVKAction* editedAction = nullptr;
    bool copyToAllLayers = false;
    CorvaneNVWindowCommands* nvWindow = nullptr;

    bool exists(TVKWindow w) const override { return existing.count(w) != 0; }
    bool isVisible(TVKWindow w) const override { return visible.count(w) != 0; }
    bool isKey(TVKWindow w) const override { return key == w; }
    void show(TVKWindow w) override
    {
        shown.push_back(w);
        existing.insert(w);
        visible.insert(w);
    }
    void makeKeyAndOrderFront(TVKWindow w) override
    {
        if (exists(w))
            key = w;
    }
    void close(TVKWindow w) override
    {
        closed.push_back(w);
        visible.erase(w);
    }
    std::optional<QPointF> mainWindowOrigin() const override
    {
        if (!exists(TVKWindow::Main))
            return std::nullopt;
        return QPointF(100, 50);
    }
    void showKeysetName(const QString& name) override { keysetName = name; }
    void showKeysetIcon(const QImage& icon) override { keysetIcon = icon; }
    void setLockButtonState(bool locked) override { lockButton = locked; }
    void showHardwareImage(const QString& name) override { hardwareImages.push_back(name); }
    void showCorvaneNVMenu(bool on) override { nvMenuShown = on; }
    const TVKAction* inspectorEditedAction() const override { return editedAction; }
    bool inspectorCopiesToAllLayers() const override { return copyToAllLayers; }
    CorvaneNVWindowCommands* corvaneNVWindow() const override { return nvWindow; }

    // Sheets.
    std::vector<TVKSheet> begun;
    std::vector<TVKSheet> ended;
    std::vector<TVKSheetField> selectedFields;
    void beginSheet(TVKSheet sheet) override { begun.push_back(sheet); }
    void endSheet(TVKSheet sheet) override { ended.push_back(sheet); }
    void refreshSheet(TVKSheet) override {}
    void selectFieldText(TVKSheetField field) override { selectedFields.push_back(field); }

    // Installation.
    int installs = 0;
    TVKInstallationNames installNames;
    bool installNeedsSetup = false;
    std::vector<QPointF> axQueries;
    bool startInstallForController(const TVKInstallationNames& names, bool needsSetup) override
    {
        ++installs;
        installNames = names;
        installNeedsSetup = needsSetup;
        return false;
    }
    void startUninstallForController(const TVKInstallationNames&) override {}
    bool getAXObjects(TVKAXObjectInfo&, QPointF point) override
    {
        axQueries.push_back(point);
        return false;
    }

private:
    class Progress final : public TVKProgress
    {
    public:
        Progress(ScriptedViews& views, int total) : m_views(views), m_total(total) {}
        void setProgress(int done, const QString&) override
        {
            m_done = done;
            m_views.progressReports.emplace_back(done, m_total);
        }
        bool wasCancelled() const override
        {
            return m_views.cancelProgressAt >= 0 && m_done >= m_views.cancelProgressAt;
        }

    private:
        ScriptedViews& m_views;
        int m_total;
        int m_done = 0;
    };

    template <typename T>
    static T take(std::deque<T>& queue, T fallback)
    {
        if (queue.empty())
            return fallback;
        T value = queue.front();
        queue.pop_front();
        return value;
    }
};
