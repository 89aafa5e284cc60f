#include "views/ControlToolTips.h"

#include "actions/ActionDescription.h"
#include "actions/TVKAction.h"
#include "app/TVKController.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMultiStateButton.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace corvane {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(ControlToolTips)
};

} // namespace

std::optional<PictureScope> applicationScope()
{
    const TVKController* controller = TVKController::c();
    const TVKModelData* model = TVKModelData::defaultModelData();
    if (!controller || !model)
        return std::nullopt;
    return PictureScope{model, int(controller->selectedKeyset()), int(controller->selectedLayer())};
}

TVKControl* controlAt(const TVKMultiStateButton& picture, QPoint point, const PictureScope& scope)
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    const qint64 onscreen = picture.controlAt(point);
    int group = 0;
    int index = 0;
    if (!scope.model || !constants || onscreen < 0 ||
        !constants->onscreenGroup(int(picture.tag()), int(onscreen), group, index))
        return nullptr;
    return scope.model->controlForKeyset(scope.keyset, scope.layer, group, index);
}

TVKControl* displayAt(const TVKDisplayView& view, QPoint point, const PictureScope& scope)
{
    int group = 0;
    int index = 0;
    if (!scope.model || !view.modelDisplayAt(point, group, index))
        return nullptr;
    return scope.model->displayForKeyset(scope.keyset, scope.layer, group, index);
}

QString controlToolTip(const TVKControl& control)
{
    // One line each, whatever blanks and line breaks the names hold.
    QString name = control.name().simplified();
    const QString userName = control.userName().simplified();
    if (!userName.isEmpty())
        name = Words::tr("%1 “%2”").arg(name, userName);
    const TVKAction* action = control.action();
    const QString does = isAssigned(action) ? describeAction(*action, Detail::Full)
                         : ControlType::isDisplayType(control.tvkControlType())
                             ? Words::tr("No function assigned")
                             : Words::tr("No action assigned");
    return name + QLatin1Char('\n') + does;
}

namespace {

// Where the pointer may move with the tooltip staying: the control's outline, or the cell.
QRect toolTipArea(QWidget& picture, QPoint point)
{
    if (const auto* button = qobject_cast<const TVKMultiStateButton*>(&picture)) {
        const QPainterPath* outline =
            button->hitTestPath(button->imageIndexForControl(button->controlAt(point)));
        if (outline)
            return outline->boundingRect().toAlignedRect();
    }
    if (const auto* view = qobject_cast<const TVKDisplayView*>(&picture)) {
        for (const TVKDisplayView::Cell& cell : view->cells()) {
            if (cell.frame.contains(point))
                return cell.frame;
        }
    }
    return picture.rect();
}

} // namespace

void showControlToolTip(QWidget& picture, const QHelpEvent& event, const TVKControl* control)
{
    if (!control) {
        QToolTip::hideText();
        return;
    }
    // As plain text: a key or a user name may hold "<" and must not be read as markup.
    QToolTip::showText(event.globalPos(),
                       Qt::convertFromPlainText(controlToolTip(*control), Qt::WhiteSpaceNormal),
                       &picture, toolTipArea(picture, event.pos()));
}

} // namespace corvane
