#include "views/editors/TVKDisplayPreview.h"

#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKDisplayAction.h"
#include "views/editors/CorvaneROMIcons.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>

TVKDisplayPreview::TVKDisplayPreview(Look look, QWidget* parent) : QWidget(parent), m_look(look)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Display preview"));
}

QSize TVKDisplayPreview::sizeHint() const
{
    const int line = fontMetrics().height();
    return {200, m_look == Look::LcdButton ? line * 5 : line * 2 + 8};
}

void TVKDisplayPreview::showAction(TVKAction* action)
{
    m_icon = -1;
    m_text.clear();
    if (auto* icon = dynamic_cast<CorvaneLCDButtonDisplayIconAction*>(action))
        m_icon = icon->romIcon();
    else if (action)
        m_text = corvane::displaySampleText(action);
    setAccessibleDescription(m_icon >= 0 ? CorvaneROMIcons::name(m_icon) : m_text);
    update();
}

QFont TVKDisplayPreview::displayFont() const
{
    // The desktop's fixed-width font at the size of the window's text, which a theme may give
    // in pixels rather than points.
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPixelSize(
        int(QFontInfo(this->font()).pixelSize() * (m_look == Look::Timecode ? 1.4 : 1.0)));
    font.setBold(m_look == Look::Timecode);
    return font;
}

void TVKDisplayPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF glass = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (m_look == Look::LcdButton) {
        const double side = glass.height();
        glass = QRectF(glass.left(), glass.top(), side * 1.3, side);
    }
    // The glass of the surface's displays: dark with backlit amber characters, in every theme.
    const QColor bezel(0x1a, 0x1b, 0x1e);
    const QColor ink =
        m_look == Look::Timecode ? QColor(0xff, 0x5a, 0x36) : QColor(0xff, 0xc2, 0x57);
    painter.setPen(QPen(QColor(0x55, 0x58, 0x5e), 1));
    painter.setBrush(bezel);
    painter.drawRoundedRect(glass, 4, 4);
    const QRectF inner = glass.adjusted(8, 4, -8, -4);
    if (m_icon >= 0) {
        CorvaneROMIcons::paint(painter, inner, m_icon, ink);
        return;
    }
    painter.setFont(displayFont());
    painter.setPen(ink);
    if (m_text.isEmpty()) {
        painter.setPen(QColor(0x6a, 0x6c, 0x70));
        painter.drawText(inner, Qt::AlignCenter, tr("(blank)"));
        return;
    }
    const int flags =
        m_look == Look::LcdButton ? Qt::AlignCenter : Qt::AlignVCenter | Qt::AlignLeft;
    painter.drawText(inner, flags, m_text);
}
