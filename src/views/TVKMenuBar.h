#pragma once

#include <QMenuBar>
#include <functional>
#include <vector>

class CorvaneController;
class QAction;

// The application's menus, made from the controller's menu items. Every window that takes the
// keyboard carries one, so the menus are there whichever window is in front; all of them share
// the same items, and so the same enabling, check marks and titles.
class TVKMenuBar : public QMenuBar
{
    Q_OBJECT
public:
    // Quit runs the given function, which ends the program through the controller. The view,
    // window and help items are the views' own, added after the controller's.
    TVKMenuBar(CorvaneController& controller, const std::vector<QAction*>& viewItems,
               const std::vector<QAction*>& windowItems, const std::vector<QAction*>& helpItems,
               std::function<void()> quit, QWidget* parent = nullptr);

    // The NV expander's menu, shown while the NV window is main; it goes before Help.
    void showCorvaneNVMenu(QMenu* menu, bool shown);
    QMenu* keysetsMenu() const { return m_keysets; }

private:
    void rebuildKeysetsMenu();

    CorvaneController& m_controller;
    QMenu* m_keysets = nullptr;
    QAction* m_helpMenu = nullptr;
};
