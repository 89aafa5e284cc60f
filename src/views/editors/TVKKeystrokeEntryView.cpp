#include "views/editors/TVKKeystrokeEntryView.h"

#include "actions/editors/KeyEventTranslator.h"

#include <QKeyEvent>
#include <QPainter>

TVKKeystrokeEntryView::TVKKeystrokeEntryView(QWidget* parent) : QFrame(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setAccessibleName(tr("Keystroke"));
    setToolTip(tr("Click, or press Return, then press the key to record"));
    setMinimumHeight(fontMetrics().height() * 2);
}

QSize TVKKeystrokeEntryView::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(QLatin1Char('M')) * 16, fontMetrics().height() * 2};
}

void TVKKeystrokeEntryView::setText(const QString& text)
{
    m_text = text;
    update();
}

void TVKKeystrokeEntryView::setArmed(bool armed)
{
    m_armed = armed && !m_locked;
    update();
}

bool TVKKeystrokeEntryView::event(QEvent* event)
{
    // An armed box takes every key before the shortcuts and the focus chain see it.
    if (event->type() == QEvent::ShortcutOverride && m_armed) {
        event->accept();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return QFrame::event(event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (m_locked || key->isAutoRepeat())
        return QFrame::event(event);
    if (!m_armed) {
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter ||
            key->key() == Qt::Key_Space) {
            setArmed(true);
            return true;
        }
        return QFrame::event(event);
    }
    const corvane::KeyEventData pressed{key->nativeScanCode(), key->key(), key->modifiers(),
                                        key->text()};
    const auto stroke = corvane::KeyEventTranslator::keystrokeForEvent(pressed);
    if (!stroke)
        return true; // a modifier alone: wait for the key it modifies
    setArmed(false);
    setText(stroke->label);
    Q_EMIT keystrokeEntered(stroke->label, stroke->keyCode, stroke->modifiers);
    return true;
}

void TVKKeystrokeEntryView::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::MouseFocusReason);
    setArmed(true);
    QFrame::mousePressEvent(event);
}

void TVKKeystrokeEntryView::focusOutEvent(QFocusEvent* event)
{
    setArmed(false);
    QFrame::focusOutEvent(event);
}

void TVKKeystrokeEntryView::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect inner = contentsRect().adjusted(6, 0, -6, 0);
    if (hasFocus()) {
        QPen pen(palette().color(QPalette::Highlight), m_armed ? 2 : 1);
        painter.setPen(pen);
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
    if (m_armed) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft, tr("Press a key…"));
        return;
    }
    const QString shown = m_text.trimmed();
    QFont font = painter.font();
    if (shown.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft,
                         isEnabled() ? tr("Click to record a key") : QString());
        return;
    }
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    painter.setFont(font);
    painter.setPen(palette().color(isEnabled() ? QPalette::Text : QPalette::PlaceholderText));
    painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft, m_text);
}
