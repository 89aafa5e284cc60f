#pragma once

#include <QString>
#include <QWidget>

class TVKAction;

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
    // The characters of the display: of one width in every theme.
    QFont displayFont() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Look m_look;
    QString m_text;
    int m_icon = -1;
};
