#pragma once

#include "core/NotificationCenter.h"

#include <QString>
#include <QWidget>
#include <vector>

class CorvaneAssignmentLabels;
class TVKDisplayView;
class TVKMultiStateButton;

// The picture of one unit of the surface: its panel in the current finish, with a picture button
// for every group of controls and a display view for every group of displays, placed as the
// unit's layout says.
class CorvaneSurfaceView : public QWidget
{
    Q_OBJECT
public:
    // The unit is named by its silver picture ("CorvaneRS", "Expander", "CorvaneNV"…).
    explicit CorvaneSurfaceView(const QString& unit, QWidget* parent = nullptr);

    const QString& unit() const { return m_unit; }
    // Shows a named panel picture (a file name as the controller gives it, ".png" optional).
    void showPicture(const QString& name);
    const QString& picture() const { return m_picture; }
    // Follows the finish of the model (style 1 silver, otherwise midnight).
    void followHardwareStyle();

    const std::vector<TVKMultiStateButton*>& buttons() const { return m_buttons; }
    const std::vector<TVKDisplayView*>& displays() const { return m_displays; }
    TVKMultiStateButton* buttonWithTag(qint64 tag) const;
    TVKDisplayView* displayWithTag(int tag) const;

    // Writes on the picture what each control does (View → Show Assignments).
    void setShowsAssignments(bool shown);
    bool showsAssignments() const;
    CorvaneAssignmentLabels* assignmentLabels() const { return m_labels; }
    // The pictures show other controls (another bank): their labels follow.
    void controlsShownChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_unit;
    QString m_silver;
    QString m_midnight;
    QString m_picture;
    std::vector<TVKMultiStateButton*> m_buttons;
    std::vector<TVKDisplayView*> m_displays;
    CorvaneAssignmentLabels* m_labels = nullptr;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};
