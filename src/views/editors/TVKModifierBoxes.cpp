#include "views/editors/TVKModifierBoxes.h"

#include "actions/editors/KeySequenceEditor.h"

#include <QCheckBox>
#include <QHBoxLayout>

using corvane::KeySequenceEditor;

TVKModifierBoxes::TVKModifierBoxes(QWidget* parent) : QWidget(parent)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    const std::pair<unsigned, QString> boxes[] = {{KeySequenceEditor::ShiftBox, tr("Shift")},
                                                  {KeySequenceEditor::ControlBox, tr("Ctrl")},
                                                  {KeySequenceEditor::OptionBox, tr("Alt")},
                                                  {KeySequenceEditor::CommandBox, tr("Super")}};
    for (const auto& [tag, title] : boxes) {
        auto* box = new QCheckBox(title, this);
        row->addWidget(box);
        m_boxes.emplace_back(tag, box);
        connect(box, &QCheckBox::clicked, this, &TVKModifierBoxes::clicked);
    }
    row->addStretch();
}

unsigned TVKModifierBoxes::tickedTags() const
{
    unsigned tags = 0;
    for (const auto& [tag, box] : m_boxes)
        if (box->isChecked())
            tags |= tag;
    return tags;
}

void TVKModifierBoxes::setTickedTags(unsigned tags)
{
    for (const auto& [tag, box] : m_boxes) {
        const QSignalBlocker block(box);
        box->setChecked(tags & tag);
    }
}

QCheckBox* TVKModifierBoxes::box(unsigned tag) const
{
    for (const auto& [boxTag, box] : m_boxes)
        if (boxTag == tag)
            return box;
    return nullptr;
}
