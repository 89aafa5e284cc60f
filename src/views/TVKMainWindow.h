#pragma once

#include "core/NotificationCenter.h"

#include <QMainWindow>
#include <array>
#include <functional>
#include <vector>

class CorvaneController;
class CorvaneSurfaceView;
class QLabel;
class QToolButton;
class TVKMenuBar;
class TVKNextFrame;

// The main window: the keyset's name and icon, the layer selector, the lock and the connection
// indicator above the picture of the RS main unit, and a status line that names the selected
// control, its user name and what it does.
class TVKMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // Closing the window runs quit, which ends the program.
    TVKMainWindow(CorvaneController& controller, TVKMenuBar* menuBar, std::function<void()> quit);

    // Made once the controller is awake: the picture's buttons follow the model from the start.
    void makeSurface();
    CorvaneSurfaceView* surface() const { return m_surface; }
    TVKMenuBar* tvkMenuBar() const { return m_menuBar; }

    void showKeysetName(const QString& name);
    void showKeysetIcon(const QImage& icon);
    void setLockButtonState(bool locked);
    void showHardwareImage(const QString& name);

    QString keysetName() const;
    bool lockButtonState() const;
    QToolButton* layerButton(int layer) const { return m_layerButtons[size_t(layer)]; }
    QToolButton* lockButton() const { return m_lock; }
    QToolButton* reconnectButton() const { return m_reconnect; }
    // The connection indicator: its picture and text, with the state's tool tip and a context
    // menu of what can be done about it.
    QWidget* connectionIndicator() const { return m_connectionIndicator; }
    QString connectionText() const;
    QString statusText() const;
    // What the status line says while edits are not protected against a crash; empty otherwise.
    QString protectionText() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void updateLayerSelector();
    void updateStatus();
    void updateConnection();
    void updateProtection();

    CorvaneController& m_controller;
    TVKMenuBar* m_menuBar;
    std::function<void()> m_quit;
    CorvaneSurfaceView* m_surface = nullptr;
    QString m_hardwareImage;
    QLabel* m_icon = nullptr;
    QLabel* m_name = nullptr;
    std::array<QToolButton*, 4> m_layerButtons{};
    QToolButton* m_lock = nullptr;
    QWidget* m_connectionIndicator = nullptr;
    QLabel* m_connectionImage = nullptr;
    QLabel* m_connectionText = nullptr;
    QToolButton* m_reconnect = nullptr;
    QLabel* m_status = nullptr;
    TVKNextFrame* m_statusNextFrame = nullptr;
    QLabel* m_unprotected = nullptr;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};
