#include "views/editors/TVKIconEditorView.h"

#include "views/TVKEditorCells.h"
#include "views/editors/CorvaneROMIcons.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

TVKIconEditorView::TVKIconEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("ICON"), parent), m_logic(host.editedAction())
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Icon held by the button:"), this));
    auto* grid = new QGridLayout;
    grid->setSpacing(4);
    m_icons = new QButtonGroup(this);
    const int side = fontMetrics().height() * 2 + 6;
    for (int icon = 0; icon < CorvaneROMIcons::kCount; ++icon) {
        auto* button = new QToolButton(this);
        button->setCheckable(true);
        button->setFixedSize(side, side);
        button->setToolTip(CorvaneROMIcons::name(icon));
        button->setAccessibleName(CorvaneROMIcons::name(icon));
        const qreal dpr = devicePixelRatioF();
        QPixmap picture(QSize(side - 10, side - 10) * dpr);
        picture.setDevicePixelRatio(dpr);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        CorvaneROMIcons::paint(painter, QRectF(0, 0, side - 10, side - 10), icon,
                               palette().color(QPalette::ButtonText));
        painter.end();
        button->setIcon(QIcon(picture));
        button->setIconSize(QSize(side - 10, side - 10));
        grid->addWidget(button, icon / 8, icon % 8);
        m_icons->addButton(button, icon);
    }
    column->addLayout(grid);
    auto* clear = new QPushButton(tr("&No Icon"), this);
    column->addWidget(clear, 0, Qt::AlignLeft);
    column->addStretch();

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_icons, &QButtonGroup::idClicked, this, [this](int icon) {
        if (m_logic.chooseIcon(icon, m_host.shownControl()))
            edited();
    });
    connect(clear, &QPushButton::clicked, this, [this] {
        if (m_logic.clearIcon())
            edited();
    });
}

void TVKIconEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKIconEditorView::updateData()
{
    TVKEditorCells::selectCell(m_icons, m_logic.selectedIcon());
}
