#include "views/CheckedMark.h"

#include <QAbstractButton>
#include <QFontMetrics>
#include <algorithm>

void markWhenChecked(QAbstractButton* button)
{
    const auto apply = [button](bool on) {
        QFont font = button->font();
        font.setBold(on);
        button->setFont(font);
        if (!on) {
            button->setPalette(QPalette());
            return;
        }
        QPalette marked =
            button->parentWidget() ? button->parentWidget()->palette() : button->palette();
        marked.setColor(QPalette::Button, marked.color(QPalette::Highlight));
        marked.setColor(QPalette::ButtonText, marked.color(QPalette::HighlightedText));
        button->setPalette(marked);
    };
    QFont bold = button->font();
    bold.setBold(true);
    const QString title = button->text();
    button->setMinimumWidth(
        std::max(button->minimumWidth(), button->sizeHint().width() +
                                             QFontMetrics(bold).horizontalAdvance(title) -
                                             button->fontMetrics().horizontalAdvance(title)));
    QObject::connect(button, &QAbstractButton::toggled, button, apply);
    apply(button->isChecked());
}
