#pragma once

#include <QLineEdit>
#include <QWidget>
#include <array>

// The surface's IPv4 address as four small fields, as a network address is entered on this
// desktop: each part takes 0 to 255 and nothing else, "." moves on to the next part, and a whole
// address pasted or dropped into any part fills all four.
class TVKAddressField : public QWidget
{
    Q_OBJECT
public:
    explicit TVKAddressField(QWidget* parent = nullptr);

    QLineEdit* part(int index) const { return m_parts[size_t(index)]; }
    std::array<QString, 4> parts() const;
    void setParts(const std::array<QString, 4>& parts);
    // Labels the parts for assistive technology: "<name> part 1" …
    void setAccessibleName(const QString& name);

Q_SIGNALS:
    // The user changed one or more parts.
    void edited();

private:
    friend class TVKAddressPartEdit;
    // Moves the caret to the part beside index (-1 back, +1 on); atEnd puts it after the text,
    // otherwise the part's text is selected, ready to be typed over.
    void moveTo(int index, int step, bool atEnd);
    // True when text was a whole address and now fills the four parts.
    bool fillFromAddress(const QString& text);

    std::array<QLineEdit*, 4> m_parts{};
    // The part that a full part moved on to, until the next key: a "." typed there is the one
    // that ended the full part, not a move past this one.
    int m_movedOnTo = -1;
};

// A TCP port: 1 to 65535, digits only.
class TVKPortField : public QLineEdit
{
    Q_OBJECT
public:
    explicit TVKPortField(QWidget* parent = nullptr);
};
