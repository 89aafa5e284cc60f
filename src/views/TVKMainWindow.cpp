#include "views/TVKMainWindow.h"

#include "actions/ActionDescription.h"
#include "actions/TVKAction.h"
#include "app/CorvaneController.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CheckedMark.h"
#include "views/CorvaneSurfaceView.h"
#include "views/TVKMenuBar.h"
#include "views/TVKNextFrame.h"

#include <QActionGroup>
#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QStatusBar>
#include <QStyle>
#include <QToolButton>

namespace note = corvane::note;

namespace {

QIcon lockIcon(bool locked)
{
    // Drawn here so that it reads the same in every icon theme and at every scale.
    QIcon icon;
    for (const int size : {16, 32}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 16.0, size / 16.0);
        const QColor ink = QApplication::palette().color(QPalette::ButtonText);
        p.setPen(QPen(ink, 1.6));
        p.setBrush(Qt::NoBrush);
        QPainterPath shackle;
        shackle.moveTo(5, 7);
        shackle.lineTo(5, 5);
        shackle.arcTo(QRectF(5, 1.5, 6, 7), 180, -180);
        if (locked)
            shackle.lineTo(11, 7);
        else
            shackle.lineTo(11, 4);
        p.drawPath(locked ? shackle : shackle.translated(3, -0.5));
        p.setPen(Qt::NoPen);
        p.setBrush(ink);
        p.drawRoundedRect(QRectF(3, 7, 10, 7.5), 1.5, 1.5);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

TVKMainWindow::TVKMainWindow(CorvaneController& controller, TVKMenuBar* menuBar,
                             std::function<void()> quit)
    : m_controller(controller), m_menuBar(menuBar), m_quit(std::move(quit))
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Corvane"));
    setMenuBar(menuBar);

    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);

    auto* header = new QWidget(central);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(12, 8, 12, 8);
    row->setSpacing(8);
    m_icon = new QLabel(header);
    m_icon->setFixedSize(32, 32);
    m_icon->setScaledContents(true);
    m_name = new QLabel(header);
    QFont nameFont = m_name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.3);
    nameFont.setBold(true);
    m_name->setFont(nameFont);
    m_name->setAccessibleName(tr("Keyset"));
    row->addWidget(m_icon);
    row->addWidget(m_name, 1);

    auto* layers = new QButtonGroup(this);
    layers->setExclusive(true);
    auto* layerBox = new QWidget(header);
    auto* layerRow = new QHBoxLayout(layerBox);
    layerRow->setContentsMargins(0, 0, 0, 0);
    layerRow->setSpacing(0);
    for (int layer = 0; layer < 4; ++layer) {
        auto* button = new QToolButton(layerBox);
        button->setText(tr("Layer %1").arg(layer + 1));
        button->setCheckable(true);
        button->setToolTip(tr("Edit layer %1 (Alt+%1)").arg(layer + 1));
        button->setShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + layer)));
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setMinimumWidth(64);
        markWhenChecked(button);
        layers->addButton(button, layer);
        layerRow->addWidget(button);
        m_layerButtons[size_t(layer)] = button;
    }
    connect(layers, &QButtonGroup::idClicked, this,
            [this](int layer) { m_controller.handleTVKLayerSelector(layer); });
    row->addWidget(layerBox);
    row->addSpacing(12);

    m_lock = new QToolButton(header);
    m_lock->setCheckable(true);
    m_lock->setIcon(lockIcon(false));
    m_lock->setToolTip(tr("Lock the keyset against changes"));
    m_lock->setAccessibleName(tr("Lock keyset"));
    connect(m_lock, &QToolButton::clicked, this, [this](bool checked) {
        m_lock->setIcon(lockIcon(checked));
        m_controller.handleLockUnlockButton(checked);
    });
    row->addWidget(m_lock);
    row->addSpacing(12);

    m_connectionIndicator = new QWidget(header);
    m_connectionIndicator->setObjectName(QStringLiteral("ConnectionIndicator"));
    auto* indicatorRow = new QHBoxLayout(m_connectionIndicator);
    indicatorRow->setContentsMargins(0, 0, 0, 0);
    indicatorRow->setSpacing(6);
    m_connectionImage = new QLabel(m_connectionIndicator);
    m_connectionImage->setFixedSize(24, 24);
    m_connectionText = new QLabel(m_connectionIndicator);
    indicatorRow->addWidget(m_connectionImage);
    indicatorRow->addWidget(m_connectionText);
    // Right-click: what can be done about the state shown.
    m_connectionIndicator->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_connectionIndicator->addAction(controller.connectionMenuItem());
    if (QAction* start = controller.menuItem(TVKMenuCommand::StartBackgroundService))
        m_connectionIndicator->addAction(start);
    m_reconnect = new QToolButton(header);
    m_reconnect->setDefaultAction(controller.connectionMenuItem());
    m_reconnect->setAutoRaise(true);
    // Hidden while there is nothing to do, its place kept.
    QSizePolicy kept = m_reconnect->sizePolicy();
    kept.setRetainSizeWhenHidden(true);
    m_reconnect->setSizePolicy(kept);
    row->addWidget(m_connectionIndicator);
    row->addWidget(m_reconnect);
    connect(controller.connectionMenu(), &QAction::changed, this, [this] { updateConnection(); });
    connect(controller.connectionMenuItem(), &QAction::changed, this,
            [this] { updateConnection(); });
    column->addWidget(header);

    auto* scroll = new QScrollArea(central);
    scroll->setObjectName(QStringLiteral("SurfaceScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setAlignment(Qt::AlignCenter);
    scroll->setWidgetResizable(false);
    column->addWidget(scroll, 1);
    setCentralWidget(central);

    m_status = new QLabel(this);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    statusBar()->addWidget(m_status, 1);
    // While the recovery journal cannot be written, the status line says so, until it can.
    m_unprotected = new QLabel(this);
    m_unprotected->setObjectName(QStringLiteral("EditsUnprotected"));
    m_unprotected->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_unprotected->setStyleSheet(QStringLiteral("color: #b3261e; font-weight: bold;"));
    statusBar()->addPermanentWidget(m_unprotected);
    connect(&m_controller, &TVKController::journalProtectionChanged, this,
            [this] { updateProtection(); });
    updateProtection();

    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    center.observeEach<note::SelectedLayerChange, note::RemoteLayerChange,
                       note::SelectedKeysetChange>(m_observations, nullptr, [this] {
        updateLayerSelector();
        updateStatus();
    });
    // The status line follows the selection on the next frame, not inside the touch's notice.
    m_statusNextFrame = new TVKNextFrame(this, [this] { updateStatus(); });
    center.observeEach<note::SelectionChange, note::RemoteSelectionChange,
                       note::DisplaySelectionChange, note::RemoteDisplaySelectionChange,
                       note::UserNameChange, note::InspUpdate, note::UpdateKSum,
                       note::ControlPropertyChange, note::ShowUserNameChange, note::EmulChg,
                       note::KeysetCountChange>(m_observations, nullptr,
                                                [this] { m_statusNextFrame->request(); });
    updateLayerSelector();
    updateConnection();
}

void TVKMainWindow::makeSurface()
{
    auto* scroll = findChild<QScrollArea*>(QStringLiteral("SurfaceScroll"));
    m_surface = new CorvaneSurfaceView(QStringLiteral("CorvaneRS"));
    if (!m_hardwareImage.isEmpty())
        m_surface->showPicture(m_hardwareImage);
    scroll->setWidget(m_surface);
    // Open to the whole unit where the screen allows.
    const QSize wanted = m_surface->size() + QSize(24, 140);
    resize(wanted);
    updateStatus();
}

void TVKMainWindow::showKeysetName(const QString& name)
{
    m_name->setText(name);
    setWindowTitle(name.isEmpty() ? QStringLiteral("Corvane")
                                  : QStringLiteral("%1 — Corvane").arg(name));
}

QString TVKMainWindow::keysetName() const
{
    return m_name->text();
}

void TVKMainWindow::showKeysetIcon(const QImage& icon)
{
    m_icon->setPixmap(QPixmap::fromImage(icon));
}

void TVKMainWindow::setLockButtonState(bool locked)
{
    m_lock->setChecked(locked);
    m_lock->setIcon(lockIcon(locked));
}

bool TVKMainWindow::lockButtonState() const
{
    return m_lock->isChecked();
}

void TVKMainWindow::showHardwareImage(const QString& name)
{
    m_hardwareImage = name;
    if (m_surface)
        m_surface->showPicture(name);
}

void TVKMainWindow::updateLayerSelector()
{
    const qint64 layer = m_controller.selectedLayer();
    if (layer >= 0 && layer < 4)
        m_layerButtons[size_t(layer)]->setChecked(true);
}

void TVKMainWindow::updateConnection()
{
    const QAction* indicator = m_controller.connectionMenu();
    // At the screen's own scale, so that the @2x drawing is used where there is one.
    m_connectionImage->setPixmap(indicator->icon().pixmap(QSize(24, 24), devicePixelRatioF()));
    m_connectionText->setText(indicator->text());
    m_connectionIndicator->setToolTip(indicator->toolTip());
    m_connectionImage->setAccessibleName(indicator->text());
    m_connectionImage->setAccessibleDescription(indicator->toolTip());
    // "(connected)" beside "Surface connected" says nothing more: the button shows while there
    // is something to do.
    m_reconnect->setVisible(m_controller.connectionMenuItem()->isEnabled());
}

QString TVKMainWindow::connectionText() const
{
    return m_connectionText->text();
}

QString TVKMainWindow::statusText() const
{
    return m_status->text();
}

QString TVKMainWindow::protectionText() const
{
    return m_unprotected->isHidden() ? QString() : m_unprotected->text();
}

void TVKMainWindow::updateProtection()
{
    const QString& reason = m_controller.editsUnprotected();
    m_unprotected->setVisible(!reason.isEmpty());
    m_unprotected->setText(tr("Edits not protected against a crash"));
    m_unprotected->setToolTip(
        tr("The recovery journal cannot be written (%1). Edits made now are lost if Corvane ends "
           "without saving; Corvane keeps trying and saves them as soon as it can.")
            .arg(reason));
}

void TVKMainWindow::updateStatus()
{
    const TVKModelData* model = m_controller.modelData();
    if (!model) {
        m_status->clear();
        return;
    }
    const TVKControl* control =
        m_controller.displaySelected()
            ? model->selectedDisplay()
            : model->controlForKeyset(int(m_controller.selectedKeyset()),
                                      int(m_controller.selectedLayer()),
                                      int(m_controller.modelDataGroupIndex()),
                                      int(m_controller.modelDataControlIndex()));
    if (!control) {
        m_status->clear();
        return;
    }
    QStringList parts{control->name()};
    if (!control->userName().isEmpty())
        parts << QStringLiteral("“%1”").arg(control->userName());
    const TVKAction* action = control->action();
    const QString descriptor = action ? action->actionDescriptor() : QString();
    parts << (descriptor.isEmpty() ? tr("no action") : descriptor);
    // Beside the system's descriptor, what the action does in the desktop's words.
    if (corvane::isAssigned(action)) {
        const QString described = corvane::describeAction(*action, corvane::Detail::Full);
        if (described != descriptor)
            parts << described;
    }
    m_status->setText(parts.join(QStringLiteral("  ·  ")));
}

void TVKMainWindow::closeEvent(QCloseEvent* event)
{
    // Closing the main window ends the program, after the configuration is safely written.
    event->ignore();
    m_quit();
}
