#pragma once

#include <QFrame>
#include <QString>

// The focusable box that records one keystroke: any key at all, Tab, Escape and Return and the
// keys that are shortcuts elsewhere included. A click, or Return or Space while it has the focus,
// arms it; the next key pressed is the keystroke, and the box disarms so that the keyboard can
// leave it again.
class TVKKeystrokeEntryView : public QFrame
{
    Q_OBJECT
public:
    explicit TVKKeystrokeEntryView(QWidget* parent = nullptr);
    void setText(const QString& text);
    QString text() const { return m_text; }
    bool armed() const { return m_armed; }
    void setArmed(bool armed);
    void setLocked(bool locked) { m_locked = locked; }
    QSize sizeHint() const override;

Q_SIGNALS:
    void keystrokeEntered(const QString& label, quint32 keyCode, quint64 modifiers);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QString m_text;
    bool m_armed = false;
    bool m_locked = false;
};
