#pragma once

#include <QDialog>
#include <array>

class CorvaneController;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class TVKAddressField;

// The preference sheet: the surface's network address and port, the standalone expanders (at
// most one, the others disabled while one is chosen) and the finish of the pictures. Shown
// window-modal over the main window; OK and Cancel go to the controller, which validates,
// applies and ends the sheet.
class TVKPreferencesSheet : public QDialog
{
    Q_OBJECT
public:
    TVKPreferencesSheet(CorvaneController& controller, QWidget* parent);

    // Shows the controller's fields.
    void refresh();
    QLineEdit* addressField(int part) const;
    TVKAddressField* address() const { return m_address; }
    QLineEdit* portField() const { return m_port; }
    QCheckBox* standaloneBox(int expander) const { return m_standalone[size_t(expander)]; }
    QRadioButton* finishButton(int style) const { return m_finish[size_t(style)]; }

private:
    void writeBack();
    void reject() override;

    CorvaneController& m_controller;
    TVKAddressField* m_address = nullptr;
    QLineEdit* m_port = nullptr;
    std::array<QCheckBox*, 4> m_standalone{};
    std::array<QRadioButton*, 2> m_finish{};
};

// The application-port sheet of a keyset: connect over the network on a port, or not.
class TVKAppPortSheet : public QDialog
{
    Q_OBJECT
public:
    TVKAppPortSheet(CorvaneController& controller, QWidget* parent);

    void refresh();
    QLineEdit* portField() const { return m_port; }

private:
    void writeBack();
    void reject() override;

    CorvaneController& m_controller;
    std::array<QRadioButton*, 2> m_cells{};
    QLineEdit* m_port = nullptr;
};
