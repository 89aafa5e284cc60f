#pragma once

#include "actions/editors/DisplayTextEditor.h"
#include "views/TVKActionEditors.h"

#include <QWidget>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class TVKAction;

// The pictures held in an LCD button's ROM, drawn as the button draws them.
namespace CorvaneROMIcons {
inline constexpr int kCount = 16;
QString name(int icon);
void paint(QPainter& painter, const QRectF& rect, int icon, const QColor& ink);
} // namespace CorvaneROMIcons

// What a display will show for an action: its sample text in the display's own look, or the
// ROM icon of an icon action.
class TVKDisplayPreview : public QWidget
{
    Q_OBJECT
public:
    enum class Look
    {
        Lcd,       // a line of a character display
        LcdButton, // the small screen of an LCD button
        Timecode
    };
    explicit TVKDisplayPreview(Look look, QWidget* parent = nullptr);
    void showAction(TVKAction* action);
    QString text() const { return m_text; }
    int icon() const { return m_icon; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Look m_look;
    QString m_text;
    int m_icon = -1;
};

// Custom text on a character display: one line, as long as the display is wide.
class TVKDisplayTextEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKDisplayTextEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;
    QLineEdit* textField() const { return m_text; }

private:
    void apply();

    QLineEdit* m_text = nullptr;
    QLabel* m_limit = nullptr;
};

// Custom text on an LCD button: up to four lines, the line count fixing their length.
class TVKHiResTextEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKHiResTextEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;
    corvane::HiResTextEditor& logic() { return m_logic; }
    QButtonGroup* lineCountGroup() const { return m_lineCount; }
    QLineEdit* lineField(int index) const { return m_lines[index]; }
    QLabel* limitLabel() const { return m_label; }

private:
    void redraw();

    corvane::HiResTextEditor m_logic;
    bool m_redrawing = false;
    QButtonGroup* m_lineCount = nullptr;
    QLineEdit* m_lines[4] = {};
    QLabel* m_label = nullptr;
};

// The names of the controls that share a display (encoders or buttons, or the NV's functions
// and parameters).
class TVKControlNamesEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    // actionType: the encoder-name, button-name or NV button-name display action.
    TVKControlNamesEditorView(TVKActionEditorHost& host, qint32 actionType,
                              QWidget* parent = nullptr);
    void updateForNewAction() override;
    QCheckBox* showNamesBox() const { return m_show; }
    QComboBox* modePopUp() const { return m_mode; }

private:
    void apply();

    qint32 m_actionType;
    QCheckBox* m_show = nullptr;
    QComboBox* m_mode = nullptr;
};

// What the emulated console sends for the display: a line or the pot values of a character
// display, or the timecode.
class TVKDisplayEmulationEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKDisplayEmulationEditorView(TVKActionEditorHost& host, qint32 actionType,
                                  QWidget* parent = nullptr);
    void updateForNewAction() override;
    QComboBox* sourcePopUp() const { return m_source; }
    QCheckBox* timecodeBox() const { return m_timecode; }

private:
    void apply();

    qint32 m_actionType;
    QLabel* m_mode = nullptr;
    QComboBox* m_source = nullptr;
    QCheckBox* m_timecode = nullptr;
};

// One of the LCD button's ROM icons.
class TVKIconEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKIconEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;
    QButtonGroup* iconGroup() const { return m_icons; }

private:
    QButtonGroup* m_icons = nullptr;
};

// The status line of an LCD button: native MIDI, or the emulation mode.
class TVKStatusLineEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKStatusLineEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;
    QButtonGroup* modeGroup() const { return m_modes; }

private:
    QButtonGroup* m_modes = nullptr;
};
