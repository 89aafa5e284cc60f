#pragma once

#include <QWidget>
#include <array>
#include <memory>

class CorvaneModelData;
class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QLineEdit;
class QTextBrowser;
class TVKAddressField;
namespace corvane {
class TVKUserDefaults;
}

// The first-run setup page shown inside the installer window: numbered help pages beside the
// fields, and read, validate, collect and write of what the fields hold. What it writes goes to
// the preference store and into the configuration dictionary kept there.
class TVKSetupViewController : public QWidget
{
    Q_OBJECT
public:
    // The page of the class named "<controller>SetupViewController", or none.
    static std::unique_ptr<TVKSetupViewController>
    make(const QString& className, const QString& nibName, const QString& controllerName,
         corvane::TVKUserDefaults& defaults, CorvaneModelData* model);

    TVKSetupViewController(const QString& nibName, const QString& controllerName,
                           corvane::TVKUserDefaults& defaults, QWidget* parent = nullptr);

    // Reads the preferences into the page, fills the fields and shows the first help page.
    void awakeFromNib();
    void showCurrentHelpPage();
    void handleHelpIndex(int page);
    // False, and nothing stored, when a field is invalid.
    bool finishSetup();

    int currentHelpPage() const { return m_currentHelpPage; }
    QTextBrowser* helpDisplay() const { return m_helpDisplay; }

protected:
    virtual void readSetupPrefs() {}
    virtual void populate() {}
    virtual void collectSetupPrefs() {}
    virtual bool validate() { return true; }
    virtual void writeSetupPrefs() {}

    // The area beside the help where a page puts its fields.
    QWidget* fieldArea() const { return m_fields; }
    void addHelpPage(int tag, const QString& title);

    corvane::TVKUserDefaults& m_defaults;

private:
    QString m_nibName;
    QString m_controller;
    int m_currentHelpPage = 0;
    QTextBrowser* m_helpDisplay = nullptr;
    QButtonGroup* m_helpIndex = nullptr;
    QWidget* m_helpButtons = nullptr;
    QWidget* m_fields = nullptr;
};

// The surface's network address (four numbers) and port.
class TVKEthernetSetupViewController : public TVKSetupViewController
{
    Q_OBJECT
public:
    TVKEthernetSetupViewController(const QString& nibName, const QString& controllerName,
                                   corvane::TVKUserDefaults& defaults, QWidget* parent = nullptr);

    bool validateIPField(const QLineEdit* field) const;
    bool validatePortField() const;

    QLineEdit* ipField(int index) const { return m_ipFields[size_t(index)]; }
    TVKAddressField* addressField() const { return m_address; }
    QLineEdit* portField() const { return m_portField; }
    const QString& ip() const { return m_ip; }
    uint port() const { return m_port; }

protected:
    void readSetupPrefs() override;
    void populate() override;
    void collectSetupPrefs() override;
    bool validate() override;
    void writeSetupPrefs() override;

    TVKAddressField* m_address = nullptr;
    std::array<QLineEdit*, 4> m_ipFields{}; // the address's four parts
    QLineEdit* m_portField = nullptr;
    QString m_ip;
    uint m_port = 0;
};

// This family's page: the finish of the surface pictures and the four standalone expanders.
class corvaneEthernetSetupViewController : public TVKEthernetSetupViewController
{
    Q_OBJECT
public:
    corvaneEthernetSetupViewController(const QString& nibName, const QString& controllerName,
                                       corvane::TVKUserDefaults& defaults, CorvaneModelData* model,
                                       QWidget* parent = nullptr);

    void handleStandaloneTLSACheckBox();
    void handleStandaloneTLWCheckBox();
    void handleTLW2CheckBox();
    void handleStandaloneNVCheckBox();
    // Each box is enabled only while none of the other three is on.
    void handleStandaloneCheckBoxEnablingForTL(bool tl, bool tlw, bool tlw2, bool nv);

    QCheckBox* tlsaCheck() const { return m_checks[0]; }
    QCheckBox* tlwsaCheck() const { return m_checks[1]; }
    QCheckBox* tlw2Check() const { return m_checks[2]; }
    QCheckBox* cnvsaCheck() const { return m_checks[3]; }
    QButtonGroup* themeRadioGroup() const { return m_themeRadioGroup; }

protected:
    void readSetupPrefs() override;
    void populate() override;
    void collectSetupPrefs() override;
    void writeSetupPrefs() override;

private:
    void readCheckBoxes();

    CorvaneModelData* m_model;
    QButtonGroup* m_themeRadioGroup = nullptr;
    std::array<QCheckBox*, 4> m_checks{};
    int m_theme = 0;
    bool m_tlsa = false;
    bool m_tlwsa = false;
    bool m_tlw2 = false;
    bool m_cnvsa = false;
};
