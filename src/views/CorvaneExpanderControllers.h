#pragma once

#include "app/TVKViewInterfaces.h"
#include "core/NotificationCenter.h"
#include "views/CorvanePictures.h"

#include <QMainWindow>
#include <vector>

class CorvaneController;
class CorvaneSurfaceView;
class QLabel;
class QMenu;
class TVKMenuBar;
class TVKNextFrame;

// The window of one expander: the unit's picture, following the selection, the layer and the
// finish, with a line naming the keyset and layer it shows. Made on first use by the main
// controller's show commands and kept until the program ends.
class CorvaneExpanderWindowController : public QMainWindow
{
    Q_OBJECT
public:
    // The resource name chooses the unit ("ExpanderNib" is the TL).
    CorvaneExpanderWindowController(CorvaneController& master, const QString& nibName,
                                    TVKMenuBar* menuBar);

    CorvaneSurfaceView* surface() const { return m_surface; }
    TVKMenuBar* tvkMenuBar() const { return m_menuBar; }
    void showWindow();

Q_SIGNALS:
    void windowClosed();

protected:
    void closeEvent(QCloseEvent* event) override;
    virtual QString describeState() const;
    void updateStatus();

    CorvaneController& m_master;
    TVKMenuBar* m_menuBar;
    CorvaneSurfaceView* m_surface = nullptr;
    QLabel* m_status = nullptr;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};

// The TL: thirty-two channel strips.
class CorvaneExpanderController : public CorvaneExpanderWindowController
{
    Q_OBJECT
public:
    CorvaneExpanderController(CorvaneController& master, TVKMenuBar* menuBar);
};

// The TLW: eight LCD buttons with their displays, and the function keys.
class CorvaneTLWController : public CorvaneExpanderWindowController
{
    Q_OBJECT
public:
    CorvaneTLWController(CorvaneController& master, TVKMenuBar* menuBar);
};

// The TLW2: the TLW with eight encoders and their switches.
class CorvaneTLW2Controller : public CorvaneExpanderWindowController
{
    Q_OBJECT
public:
    CorvaneTLW2Controller(CorvaneController& master, TVKMenuBar* menuBar);
};

// The DZ: the main unit's displays, large, for a second screen or a meter bridge.
class CorvaneDZController : public CorvaneExpanderWindowController
{
    Q_OBJECT
public:
    CorvaneDZController(CorvaneController& master, TVKMenuBar* menuBar);
};

// The NV: ten banks of 24 LCD buttons, the bank and function keys, five parameter keys per
// function and four action keys per parameter, and the button groups. Touching (or clicking) a
// bank, function or parameter key shows its bank, as the hardware does.
class CorvaneNVController : public CorvaneExpanderWindowController, public CorvaneNVWindowCommands
{
    Q_OBJECT
public:
    // The NV menu's own commands, by tag.
    enum NVCommand
    {
        NewGroup = 1,
        RemoveFromGroup,
        PreviousBank,
        NextBank
    };

    CorvaneNVController(CorvaneController& master, TVKMenuBar* menuBar, TVKDialogs& dialogs);

    // The menu that the main menu shows while this window is main.
    QMenu* corvaneNVMenu() const { return m_menu; }
    int bank() const { return m_banks.bank; }
    int functionKey() const { return m_banks.function; }
    int parameter() const { return m_banks.parameter; }
    void setBank(int bank);
    void setFunctionKey(int function);
    void setParameter(int parameter);

    void addSelectionToGroup(int group) override;
    void deleteGroup(int group) override;
    void selectGroup(int group) override;
    bool validateCorvaneNVMenuItem(QAction* item) override;
    void handleCorvaneNVMenuItem(QAction* item) override;

protected:
    QString describeState() const override;

private:
    void followSelection();
    void rebuildGroupMenus();
    void applyBanks();
    // The selected NV LCD button's index in its group of 240; -1 when none is selected.
    int selectedButton() const;

    TVKDialogs& m_dialogs;
    QMenu* m_menu = nullptr;
    QMenu* m_addMenu = nullptr;
    QMenu* m_deleteMenu = nullptr;
    QMenu* m_selectMenu = nullptr;
    CorvaneNVBanks m_banks;
    TVKNextFrame* m_followNextFrame = nullptr;
};
