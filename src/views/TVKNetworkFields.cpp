#include "views/TVKNetworkFields.h"

#include "core/NetworkFields.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QValidator>
#include <algorithm>
#include <utility>

namespace {

bool allAsciiDigits(const QString& text)
{
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}

// A part on its own, or a whole address on its way to being spread over the four parts.
class AddressPartValidator : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString& input, int& position) const override
    {
        if (input.isEmpty())
            return Intermediate;
        // A digit typed after a part's zero replaces it, as the part "0" a fresh address shows
        // is clicked into and typed over; "019" is no way to write 19.
        if (input.size() > 1 && input.front() == QLatin1Char('0') && allAsciiDigits(input)) {
            qsizetype zeros = 0;
            while (zeros < input.size() - 1 && input.at(zeros) == QLatin1Char('0'))
                ++zeros;
            input.remove(0, zeros);
            position = int(std::max<qsizetype>(0, position - zeros));
        }
        if (corvane::addressPartValue(input))
            return Acceptable;
        if (corvane::addressParts(input))
            return Intermediate;
        return Invalid;
    }
};

class PortValidator : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString& input, int&) const override
    {
        if (input.isEmpty())
            return Intermediate;
        if (corvane::portValue(input))
            return Acceptable;
        // Zeros alone may still become a port with more digits typed after them.
        if (input.size() <= 5 && allAsciiDigits(input) &&
            input.count(QLatin1Char('0')) == input.size())
            return Intermediate;
        return Invalid;
    }
};

int fieldWidth(const QLineEdit* field, int digits)
{
    QStyleOptionFrame option;
    option.initFrom(field);
    const int text = field->fontMetrics().horizontalAdvance(QString(digits + 2, u'0'));
    return field->style()
        ->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(text, field->fontMetrics().height()),
                           field)
        .width();
}

} // namespace

// One part of the address: keys that move between the parts, and a pasted address spread
// over all four.
class TVKAddressPartEdit : public QLineEdit
{
public:
    TVKAddressPartEdit(TVKAddressField& owner, int index)
        : QLineEdit(&owner), m_owner(owner), m_index(index)
    {}

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->matches(QKeySequence::Paste) &&
            m_owner.fillFromAddress(QGuiApplication::clipboard()->text())) {
            Q_EMIT m_owner.edited();
            return;
        }
        const int key = event->key();
        const bool plain = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
        const bool movedOnHere = std::exchange(m_owner.m_movedOnTo, -1) == m_index;
        if (plain && (key == Qt::Key_Period || key == Qt::Key_Comma)) {
            // "." ends a part; on an empty part, or one just moved on to, it waits for digits.
            if (!text().isEmpty() && !movedOnHere)
                m_owner.moveTo(m_index, 1, false);
            return;
        }
        if (plain && key == Qt::Key_Backspace && cursorPosition() == 0 && !hasSelectedText()) {
            m_owner.moveTo(m_index, -1, true);
            return;
        }
        if (plain && key == Qt::Key_Left && cursorPosition() == 0 && !hasSelectedText()) {
            m_owner.moveTo(m_index, -1, true);
            return;
        }
        if (plain && key == Qt::Key_Right && cursorPosition() == text().size() &&
            !hasSelectedText()) {
            m_owner.moveTo(m_index, 1, false);
            return;
        }
        QLineEdit::keyPressEvent(event);
    }

private:
    TVKAddressField& m_owner;
    int m_index;
};

TVKAddressField::TVKAddressField(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (int index = 0; index < 4; ++index) {
        auto* edit = new TVKAddressPartEdit(*this, index);
        edit->setValidator(new AddressPartValidator(edit));
        edit->setAlignment(Qt::AlignCenter);
        edit->setFixedWidth(fieldWidth(edit, 3));
        layout->addWidget(edit);
        if (index < 3)
            layout->addWidget(new QLabel(QStringLiteral("."), this));
        m_parts[size_t(index)] = edit;
        connect(edit, &QLineEdit::textEdited, this, [this, edit](const QString& text) {
            if (!fillFromAddress(text) && text.size() == 3 &&
                edit->cursorPosition() == text.size()) {
                // A part is complete at three digits: go on to the next one.
                const int full =
                    int(std::find(m_parts.begin(), m_parts.end(), edit) - m_parts.begin());
                moveTo(full, 1, false);
                m_movedOnTo = full + 1;
            }
            Q_EMIT edited();
        });
    }
    setFocusProxy(m_parts[0]);
}

std::array<QString, 4> TVKAddressField::parts() const
{
    std::array<QString, 4> out;
    for (size_t i = 0; i < 4; ++i)
        out[i] = m_parts[i]->text();
    return out;
}

void TVKAddressField::setParts(const std::array<QString, 4>& parts)
{
    for (size_t i = 0; i < 4; ++i) {
        if (m_parts[i]->text() != parts[i])
            m_parts[i]->setText(parts[i]);
    }
}

void TVKAddressField::setAccessibleName(const QString& name)
{
    QWidget::setAccessibleName(name);
    for (int i = 0; i < 4; ++i)
        m_parts[size_t(i)]->setAccessibleName(tr("%1 part %2").arg(name).arg(i + 1));
}

void TVKAddressField::moveTo(int index, int step, bool atEnd)
{
    const int target = index + step;
    if (target < 0 || target > 3)
        return;
    QLineEdit* edit = m_parts[size_t(target)];
    edit->setFocus(Qt::OtherFocusReason);
    if (atEnd)
        edit->end(false);
    else
        edit->selectAll();
}

bool TVKAddressField::fillFromAddress(const QString& text)
{
    const std::optional<std::array<QString, 4>> parts = corvane::addressParts(text);
    if (!parts)
        return false;
    for (size_t i = 0; i < 4; ++i)
        m_parts[i]->setText((*parts)[i]);
    m_parts[3]->setFocus(Qt::OtherFocusReason);
    m_parts[3]->end(false);
    return true;
}

TVKPortField::TVKPortField(QWidget* parent) : QLineEdit(parent)
{
    setValidator(new PortValidator(this));
    setFixedWidth(fieldWidth(this, 5));
}
