#include "views/TVKSetupViewControllers.h"

#include "core/EthernetSettings.h"
#include "core/NetworkFields.h"
#include "core/PlistValue.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "views/CheckedMark.h"
#include "views/TVKNetworkFields.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

// A field's integer value as a number formatter gives it: the leading digits, 0 for none.
qint64 integerValue(const QLineEdit* field)
{
    const QString text = field->text().trimmed();
    qint64 value = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            break;
        value = value * 10 + (c.unicode() - u'0');
        if (value > 1'000'000'000)
            break;
    }
    return value;
}

} // namespace

// TVKSetupViewController

std::unique_ptr<TVKSetupViewController>
TVKSetupViewController::make(const QString& className, const QString& nibName,
                             const QString& controllerName, corvane::TVKUserDefaults& defaults,
                             CorvaneModelData* model)
{
    std::unique_ptr<TVKSetupViewController> page;
    if (className == u"corvaneEthernetSetupViewController")
        page = std::make_unique<corvaneEthernetSetupViewController>(nibName, controllerName,
                                                                    defaults, model);
    else if (className == u"TVKEthernetSetupViewController")
        page = std::make_unique<TVKEthernetSetupViewController>(nibName, controllerName, defaults);
    if (page)
        page->awakeFromNib();
    return page;
}

TVKSetupViewController::TVKSetupViewController(const QString& nibName,
                                               const QString& controllerName,
                                               corvane::TVKUserDefaults& defaults, QWidget* parent)
    : QWidget(parent), m_defaults(defaults), m_nibName(nibName), m_controller(controllerName)
{
    setObjectName(nibName);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);

    auto* help = new QVBoxLayout;
    help->setSpacing(6);
    m_helpButtons = new QWidget(this);
    auto* buttons = new QHBoxLayout(m_helpButtons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addStretch(1);
    help->addWidget(m_helpButtons);
    m_helpIndex = new QButtonGroup(this);
    m_helpIndex->setExclusive(true);
    connect(m_helpIndex, &QButtonGroup::idClicked, this, &TVKSetupViewController::handleHelpIndex);
    m_helpDisplay = new QTextBrowser(this);
    m_helpDisplay->setOpenExternalLinks(true);
    m_helpDisplay->setMinimumSize(300, 220);
    m_helpDisplay->setAccessibleName(tr("Help"));
    help->addWidget(m_helpDisplay, 1);
    layout->addLayout(help, 1);

    m_fields = new QWidget(this);
    layout->addWidget(m_fields);
}

void TVKSetupViewController::addHelpPage(int tag, const QString& title)
{
    auto* button = new QPushButton(title, m_helpButtons);
    button->setCheckable(true);
    markWhenChecked(button);
    button->setChecked(tag == m_currentHelpPage);
    m_helpIndex->addButton(button, tag);
    auto* layout = static_cast<QHBoxLayout*>(m_helpButtons->layout());
    layout->insertWidget(layout->count() - 1, button);
}

void TVKSetupViewController::awakeFromNib()
{
    readSetupPrefs();
    populate();
    showCurrentHelpPage();
}

void TVKSetupViewController::showCurrentHelpPage()
{
    QFile page(
        QStringLiteral(":/setup/%1_setup_help_%2.html").arg(m_controller).arg(m_currentHelpPage));
    // A missing page leaves the help empty.
    m_helpDisplay->setHtml(page.open(QIODevice::ReadOnly) ? QString::fromUtf8(page.readAll())
                                                          : QString());
    if (QAbstractButton* button = m_helpIndex->button(m_currentHelpPage))
        button->setChecked(true);
}

void TVKSetupViewController::handleHelpIndex(int page)
{
    m_currentHelpPage = page;
    showCurrentHelpPage();
}

bool TVKSetupViewController::finishSetup()
{
    if (!validate())
        return false;
    collectSetupPrefs();
    writeSetupPrefs();
    return true;
}

// TVKEthernetSetupViewController

TVKEthernetSetupViewController::TVKEthernetSetupViewController(const QString& nibName,
                                                               const QString& controllerName,
                                                               corvane::TVKUserDefaults& defaults,
                                                               QWidget* parent)
    : TVKSetupViewController(nibName, controllerName, defaults, parent)
{
    addHelpPage(0, tr("Network"));
    auto* fields = new QVBoxLayout(fieldArea());
    fields->setContentsMargins(0, 0, 0, 0);
    auto* network = new QGroupBox(tr("Surface on the network"), fieldArea());
    auto* form = new QFormLayout(network);
    m_address = new TVKAddressField(network);
    m_address->setAccessibleName(tr("Address"));
    for (int part = 0; part < 4; ++part)
        m_ipFields[size_t(part)] = m_address->part(part);
    auto* addressLabel = new QLabel(tr("IP &address:"), network);
    addressLabel->setBuddy(m_ipFields[0]);
    form->addRow(addressLabel, m_address);
    m_portField = new TVKPortField(network);
    m_portField->setAccessibleName(tr("Port"));
    form->addRow(tr("&Port:"), m_portField);
    fields->addWidget(network);
}

void TVKEthernetSetupViewController::readSetupPrefs()
{
    const corvane::EthernetSettings ethernet = corvane::storedEthernetSettings(m_defaults);
    m_ip = ethernet.ipAddress;
    m_port = ethernet.port;
}

void TVKEthernetSetupViewController::populate()
{
    m_portField->setText(QString::number(m_port));
    // An address of fewer parts fills the fields it has and leaves the others empty.
    const QStringList parts = m_ip.split(u'.');
    for (int i = 0; i < 4; ++i)
        m_ipFields[size_t(i)]->setText(parts.value(i));
}

bool TVKEthernetSetupViewController::validateIPField(const QLineEdit* field) const
{
    return corvane::addressPartValue(field->text().trimmed()).has_value();
}

bool TVKEthernetSetupViewController::validatePortField() const
{
    // Unlike the preference sheet, this page has always refused 65535; kept.
    const std::optional<quint16> port = corvane::portValue(m_portField->text().trimmed());
    return port && *port < 65535;
}

bool TVKEthernetSetupViewController::validate()
{
    for (const QLineEdit* field : m_ipFields) {
        if (!validateIPField(field))
            return false;
    }
    return validatePortField();
}

void TVKEthernetSetupViewController::collectSetupPrefs()
{
    m_ip = QStringLiteral("%1.%2.%3.%4")
               .arg(integerValue(m_ipFields[0]))
               .arg(integerValue(m_ipFields[1]))
               .arg(integerValue(m_ipFields[2]))
               .arg(integerValue(m_ipFields[3]));
    m_port = uint(integerValue(m_portField));
}

void TVKEthernetSetupViewController::writeSetupPrefs()
{
    m_defaults.setObject(key::IPAdr, PlistValue(m_ip));
    m_defaults.setObject(key::EnetPrt, PlistValue(quint64(m_port)));
    PlistValue model = m_defaults.objectForKey(key::ModelData);
    if (model.isDict()) {
        model.insert(key::IPAdr, PlistValue(m_ip));
        model.insert(key::EnetPrt, PlistValue(quint64(m_port)));
        m_defaults.setObject(key::ModelData, std::move(model));
    }
    m_defaults.synchronize();
}

// corvaneEthernetSetupViewController

corvaneEthernetSetupViewController::corvaneEthernetSetupViewController(
    const QString& nibName, const QString& controllerName, corvane::TVKUserDefaults& defaults,
    CorvaneModelData* model, QWidget* parent)
    : TVKEthernetSetupViewController(nibName, controllerName, defaults, parent), m_model(model)
{
    addHelpPage(1, tr("Expanders"));
    auto* fields = static_cast<QVBoxLayout*>(fieldArea()->layout());

    auto* expanders = new QGroupBox(tr("Expander used without the RS"), fieldArea());
    auto* expanderLayout = new QVBoxLayout(expanders);
    const QString titles[] = {tr("&TL"), tr("TL&W"), tr("TLW&2"), tr("&NV")};
    const std::array<void (corvaneEthernetSetupViewController::*)(), 4> handlers = {
        &corvaneEthernetSetupViewController::handleStandaloneTLSACheckBox,
        &corvaneEthernetSetupViewController::handleStandaloneTLWCheckBox,
        &corvaneEthernetSetupViewController::handleTLW2CheckBox,
        &corvaneEthernetSetupViewController::handleStandaloneNVCheckBox};
    for (size_t i = 0; i < 4; ++i) {
        m_checks[i] = new QCheckBox(titles[i], expanders);
        expanderLayout->addWidget(m_checks[i]);
        connect(m_checks[i], &QCheckBox::clicked, this, handlers[i]);
    }
    fields->addWidget(expanders);

    auto* finish = new QGroupBox(tr("Finish of the surface pictures"), fieldArea());
    auto* finishLayout = new QHBoxLayout(finish);
    m_themeRadioGroup = new QButtonGroup(this);
    const QString styles[] = {tr("&Midnight"), tr("&Silver")};
    for (int style = 0; style < 2; ++style) {
        auto* radio = new QRadioButton(styles[style], finish);
        m_themeRadioGroup->addButton(radio, style);
        finishLayout->addWidget(radio);
    }
    finishLayout->addStretch(1);
    fields->addWidget(finish);
    fields->addStretch(1);
}

void corvaneEthernetSetupViewController::readSetupPrefs()
{
    TVKEthernetSetupViewController::readSetupPrefs();
    const PlistValue& model = m_defaults.objectForKey(key::ModelData);
    if (!model.isDict()) {
        m_tlsa = m_tlwsa = m_tlw2 = m_cnvsa = false;
        m_theme = 0;
        return;
    }
    m_tlsa = model.value(key::StandaloneTL).toInteger() != 0;
    m_tlwsa = model.value(key::StandaloneTLW).toInteger() != 0;
    m_tlw2 = model.value(key::StandaloneTLW2).toInteger() != 0;
    m_cnvsa = model.value(key::StandaloneNV).toInteger() != 0;
    m_theme = int(model.value(key::HardwareStyle).toInteger());
}

void corvaneEthernetSetupViewController::populate()
{
    TVKEthernetSetupViewController::populate();
    if (QAbstractButton* radio = m_themeRadioGroup->button(m_theme))
        radio->setChecked(true);
    m_checks[0]->setChecked(m_tlsa);
    m_checks[1]->setChecked(m_tlwsa);
    m_checks[2]->setChecked(m_tlw2);
    m_checks[3]->setChecked(m_cnvsa);
    handleStandaloneCheckBoxEnablingForTL(m_tlsa, m_tlwsa, m_tlw2, m_cnvsa);
}

void corvaneEthernetSetupViewController::collectSetupPrefs()
{
    TVKEthernetSetupViewController::collectSetupPrefs();
    m_theme = std::max(0, m_themeRadioGroup->checkedId());
    m_tlsa = m_checks[0]->checkState() == Qt::Checked;
    m_tlwsa = m_checks[1]->checkState() == Qt::Checked;
    m_tlw2 = m_checks[2]->checkState() == Qt::Checked;
    m_cnvsa = m_checks[3]->checkState() == Qt::Checked;
}

void corvaneEthernetSetupViewController::writeSetupPrefs()
{
    TVKEthernetSetupViewController::writeSetupPrefs();
    PlistValue model = m_defaults.objectForKey(key::ModelData);
    if (model.isDict()) {
        model.insert(key::StandaloneTL, PlistValue(qint64(m_tlsa ? 1 : 0)));
        model.insert(key::StandaloneTLW, PlistValue(qint64(m_tlwsa ? 1 : 0)));
        model.insert(key::StandaloneTLW2, PlistValue(qint64(m_tlw2 ? 1 : 0)));
        model.insert(key::StandaloneNV, PlistValue(qint64(m_cnvsa ? 1 : 0)));
        model.insert(key::HardwareStyle, PlistValue(qint64(m_theme)));
        m_defaults.setObject(key::ModelData, std::move(model));
        m_defaults.synchronize();
    }
    if (m_model) {
        m_model->setHardwareStyle(m_theme);
        m_model->setStandaloneTL(m_tlsa);
        m_model->setStandaloneTLW(m_tlwsa);
        m_model->setStandaloneNV(m_cnvsa);
        m_model->setStandaloneTLW2(m_tlw2);
    }
}

void corvaneEthernetSetupViewController::readCheckBoxes()
{
    m_tlsa = m_checks[0]->isChecked();
    m_tlwsa = m_checks[1]->isChecked();
    m_tlw2 = m_checks[2]->isChecked();
    m_cnvsa = m_checks[3]->isChecked();
    handleStandaloneCheckBoxEnablingForTL(m_tlsa, m_tlwsa, m_tlw2, m_cnvsa);
}

void corvaneEthernetSetupViewController::handleStandaloneTLSACheckBox()
{
    readCheckBoxes();
}

void corvaneEthernetSetupViewController::handleStandaloneTLWCheckBox()
{
    readCheckBoxes();
}

void corvaneEthernetSetupViewController::handleTLW2CheckBox()
{
    readCheckBoxes();
}

void corvaneEthernetSetupViewController::handleStandaloneNVCheckBox()
{
    readCheckBoxes();
}

void corvaneEthernetSetupViewController::handleStandaloneCheckBoxEnablingForTL(bool tl, bool tlw,
                                                                               bool tlw2, bool nv)
{
    m_checks[0]->setEnabled(!tlw && !tlw2 && !nv);
    m_checks[1]->setEnabled(!tl && !tlw2 && !nv);
    m_checks[2]->setEnabled(!tl && !tlw && !nv);
    m_checks[3]->setEnabled(!tl && !tlw && !tlw2);
}
