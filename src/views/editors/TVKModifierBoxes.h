#pragma once

#include <QWidget>
#include <utility>
#include <vector>

class QCheckBox;

// Modifier check boxes with the editors' cell tags (2 Shift, 4 Control, 8 Option, 16 Command).
class TVKModifierBoxes : public QWidget
{
    Q_OBJECT
public:
    explicit TVKModifierBoxes(QWidget* parent = nullptr);
    unsigned tickedTags() const;
    void setTickedTags(unsigned tags);
    QCheckBox* box(unsigned tag) const;

Q_SIGNALS:
    void clicked();

private:
    std::vector<std::pair<unsigned, QCheckBox*>> m_boxes;
};
