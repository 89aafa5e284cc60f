#include "views/TVKSheetDialogs.h"

#include "app/CorvaneController.h"
#include "views/TVKNetworkFields.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

TVKPreferencesSheet::TVKPreferencesSheet(CorvaneController& controller, QWidget* parent)
    : QDialog(parent), m_controller(controller)
{
    setWindowTitle(tr("Preferences"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);

    auto* network = new QGroupBox(tr("Surface on the network"), this);
    auto* form = new QFormLayout(network);
    m_address = new TVKAddressField(network);
    m_address->setAccessibleName(tr("Address"));
    auto* addressLabel = new QLabel(tr("&Address:"), network);
    addressLabel->setBuddy(m_address->part(0));
    form->addRow(addressLabel, m_address);
    m_port = new TVKPortField(network);
    m_port->setAccessibleName(tr("Port"));
    form->addRow(tr("&Port:"), m_port);
    layout->addWidget(network);

    auto* expanders = new QGroupBox(tr("Expander used without the RS"), this);
    auto* expanderLayout = new QVBoxLayout(expanders);
    const QString titles[] = {tr("TL"), tr("TLW"), tr("TLW2"), tr("NV")};
    for (int i = 0; i < 4; ++i) {
        auto* box = new QCheckBox(titles[i], expanders);
        expanderLayout->addWidget(box);
        m_standalone[size_t(i)] = box;
        connect(box, &QCheckBox::clicked, this, [this, i](bool on) {
            writeBack();
            switch (i) {
            case 0:
                m_controller.handleStandaloneTLCheckBox(on);
                break;
            case 1:
                m_controller.handleStandaloneTLWCheckBox(on);
                break;
            case 2:
                m_controller.handleStandaloneTLW2CheckBox(on);
                break;
            default:
                m_controller.handleStandaloneNVCheckBox(on);
                break;
            }
        });
    }
    layout->addWidget(expanders);

    auto* finish = new QGroupBox(tr("Finish of the surface pictures"), this);
    auto* finishLayout = new QHBoxLayout(finish);
    auto* finishGroup = new QButtonGroup(this);
    m_finish[0] = new QRadioButton(tr("&Midnight"), finish);
    m_finish[1] = new QRadioButton(tr("&Silver"), finish);
    for (int style = 0; style < 2; ++style) {
        finishGroup->addButton(m_finish[size_t(style)], style);
        finishLayout->addWidget(m_finish[size_t(style)]);
    }
    finishLayout->addStretch(1);
    layout->addWidget(finish);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        writeBack();
        m_controller.okPrefsWindow();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &TVKPreferencesSheet::reject);
}

QLineEdit* TVKPreferencesSheet::addressField(int part) const
{
    return m_address->part(part);
}

void TVKPreferencesSheet::refresh()
{
    const TVKPreferenceFields& f = m_controller.preferenceFields();
    m_address->setParts(f.ipAddress);
    m_port->setText(f.ethernetPort);
    const std::array<bool, 4> on = {f.standaloneTL, f.standaloneTLW, f.standaloneTLW2,
                                    f.standaloneNV};
    const std::array<bool, 4> enabled = {f.standaloneTLEnabled, f.standaloneTLWEnabled,
                                         f.standaloneTLW2Enabled, f.standaloneNVEnabled};
    for (size_t i = 0; i < 4; ++i) {
        m_standalone[i]->setChecked(on[i]);
        m_standalone[i]->setEnabled(enabled[i]);
    }
    m_finish[f.hardwareStyle == 1 ? 1 : 0]->setChecked(true);
}

void TVKPreferencesSheet::writeBack()
{
    TVKPreferenceFields& f = m_controller.preferenceFields();
    f.ipAddress = m_address->parts();
    f.ethernetPort = m_port->text();
    f.standaloneTL = m_standalone[0]->isChecked();
    f.standaloneTLW = m_standalone[1]->isChecked();
    f.standaloneTLW2 = m_standalone[2]->isChecked();
    f.standaloneNV = m_standalone[3]->isChecked();
    f.hardwareStyle = m_finish[1]->isChecked() ? 1 : 0;
}

void TVKPreferencesSheet::reject()
{
    // Escape and the window's close button cancel through the controller, which ends the sheet.
    m_controller.cancelPrefsWindow();
}

TVKAppPortSheet::TVKAppPortSheet(CorvaneController& controller, QWidget* parent)
    : QDialog(parent), m_controller(controller)
{
    setWindowTitle(tr("Ethernet Port for Keyset"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    auto* group = new QButtonGroup(this);
    for (int cell = 0; cell < 2; ++cell) {
        m_cells[size_t(cell)] = new QRadioButton(this);
        group->addButton(m_cells[size_t(cell)], cell);
    }
    layout->addWidget(m_cells[0]);
    auto* portRow = new QHBoxLayout;
    portRow->addSpacing(24);
    m_port = new TVKPortField(this);
    m_port->setAccessibleName(tr("Port"));
    portRow->addWidget(m_port);
    auto* find = new QPushButton(tr("&Find Free Port"), this);
    portRow->addWidget(find);
    portRow->addStretch(1);
    layout->addLayout(portRow);
    layout->addWidget(m_cells[1]);
    connect(find, &QPushButton::clicked, this, [this] {
        writeBack();
        m_controller.findAvailablePort();
    });
    connect(m_port, &QLineEdit::textEdited, this, [this] {
        writeBack();
        m_controller.appPortChanged();
    });
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        writeBack();
        m_controller.okAppPortWindow();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &TVKAppPortSheet::reject);
}

void TVKAppPortSheet::refresh()
{
    const TVKAppPortFields& f = m_controller.appPortFields();
    for (size_t cell = 0; cell < 2; ++cell)
        m_cells[cell]->setText(
            QString(f.cellTitles[cell]).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    m_cells[f.selectedCell == 1 ? 1 : 0]->setChecked(true);
    if (m_port->text() != f.port)
        m_port->setText(f.port);
}

void TVKAppPortSheet::writeBack()
{
    TVKAppPortFields& f = m_controller.appPortFields();
    f.selectedCell = m_cells[1]->isChecked() ? 1 : 0;
    f.cellStates = {f.selectedCell == 0, f.selectedCell == 1};
    f.port = m_port->text();
}

void TVKAppPortSheet::reject()
{
    m_controller.cancelAppPortWindow();
}
