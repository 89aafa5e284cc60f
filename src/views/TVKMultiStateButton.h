#pragma once

#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "core/PlistValue.h"

#include <QAbstractButton>
#include <QPainterPath>
#include <QPointF>
#include <QStringList>
#include <memory>
#include <vector>

class TVKMultiStateButton;

// A picture's state images, by name (see TVKBundle); image k shows control k lit.
using TVKImageList = QStringList;
// Hit outlines by control number; entry 0 and missing entries are null.
using TVKHitTestPaths = std::vector<std::unique_ptr<QPainterPath>>;

// The cell of a picture button: which control the last click chose, whether one of the group's
// controls is shown selected, and how the picture follows the selection made elsewhere.
class TVKMultiStateButtonCell
{
public:
    explicit TVKMultiStateButtonCell(TVKMultiStateButton& button) : m_button(button) {}

    void setImageCount(qint64 numImages, const TVKImageList* images,
                       const TVKHitTestPaths* hitTestPaths);
    void startObserving();
    void startTrackingAt(QPointF point);
    void stopTracking(QPointF point, bool mouseIsUp);
    void handleSelectedGroupChange();
    void handleRemoteSelectionChange();
    void handleDisplayChange();

    quint64 imageIndex() const { return m_imageIndex; }
    void setImageIndex(quint64 index) { m_imageIndex = index; }
    qint64 integerValue() const { return qint64(m_imageIndex); }
    int intValue() const { return int(m_imageIndex); }
    int state() const { return m_state; }
    void setState(int state);
    qint64 tag() const { return m_tag; }
    void setTag(qint64 tag) { m_tag = tag; }

private:
    void hitTest(QPointF point);
    void remoteSelectionChange();

    TVKMultiStateButton& m_button;
    quint64 m_imageIndex = 0;
    qint64 m_numImages = 0;
    const TVKImageList* m_images = nullptr;
    const TVKHitTestPaths* m_hitTestPaths = nullptr;
    qint64 m_tag = 0;
    int m_state = 0;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};

// One clickable group of the surface's controls: one picture per state and one hit outline per
// control, read from the information dictionary under the button's key. Its tag is the on-screen
// group. State k (from 1) shows the k-th control that the group draws, in the surface constants'
// on-screen numbering; state 0 shows none. The NV's banked pictures show one bank of their group
// at a time, and their states count from the bank's first control.
//
// Beyond the click, the button can be worked from the keyboard: Left and Right step through the
// model group of the chosen control in order, into the picture that draws the next one; Up and
// Down step through this picture's own controls. Either selects each control in turn.
class TVKMultiStateButton : public QAbstractButton
{
    Q_OBJECT

public:
    // The key is the description's key: empty for the class's own (infoKey()).
    explicit TVKMultiStateButton(const QString& key = QString(), QWidget* parent = nullptr);
    ~TVKMultiStateButton() override;

    static QString infoKey() { return QStringLiteral("TVKMultiStateButton"); }
    QString descriptionKey() const { return m_key; }

    // Builds images, outlines and tag from the description.
    virtual void awakeFromNib();
    void parsePath(const corvane::PlistValue& operations, qsizetype index);
    // The closed outline that a list of path operations builds.
    static QPainterPath outlineFromOperations(const corvane::PlistValue& operations);

    static QPoint getOpOrigin(const corvane::PlistValue& op);
    static QSize getOpSize(const corvane::PlistValue& op);
    static QRect getOpRect(const corvane::PlistValue& op);
    static QPoint getOpPoint(const corvane::PlistValue& op);
    static QPoint getOpCenter(const corvane::PlistValue& op);
    static double getOpRadius(const corvane::PlistValue& op);
    static double getOpStartAngle(const corvane::PlistValue& op);
    static double getOpEndAngle(const corvane::PlistValue& op);

    TVKMultiStateButtonCell& cell() { return *m_cell; }
    const TVKMultiStateButtonCell& cell() const { return *m_cell; }
    qint64 tag() const { return m_tag; }
    void setTag(qint64 tag);
    qint64 integerValue() const { return m_cell->integerValue(); }
    qint64 numImages() const { return m_numImages; }
    const TVKImageList& images() const { return m_images; }
    const TVKHitTestPaths& hitTestPaths() const { return m_hitTestPaths; }
    const QString& image() const { return m_image; }
    const QString& alternateImage() const { return m_alternateImage; }
    void setImage(const QString& name);
    void setAlternateImage(const QString& name);
    // The picture drawn now: the alternate while a control is shown selected.
    QString shownImage() const;
    // The outline of control k, or none.
    const QPainterPath* hitTestPath(qint64 k) const;
    // The finish: the silver pictures as named, the midnight ones with "_Mid".
    const TVKImageList& silverImages() const { return m_silverImages; }
    const TVKImageList& midnightImages() const { return m_midnightImages; }
    virtual void hardwareStyleChanged();
    // The model's finish: 1 silver, anything else midnight (0 without a model).
    static int modelHardwareStyle();

    // The on-screen controls of the group, in state order (every bank's, for a banked picture).
    const QList<int>& groupControls() const { return m_controls; }
    // The on-screen control that state k shows; -1 for state 0 or a state beyond the picture.
    qint64 controlForImageIndex(quint64 k) const;
    // The state that shows an on-screen control of the group; -1 when the picture does not show
    // it (another group, or another bank).
    qint64 imageIndexForControl(qint64 control) const;
    // The on-screen control of this group that is the model's control (model-data group and
    // index), in any bank; -1 when the group does not draw it.
    qint64 controlForModelControl(int group, int index) const;
    // Selects an on-screen control of the group as a click on it does, in whatever bank it lies.
    void chooseControl(qint64 control);
    // The on-screen control whose outline holds the point, as a click there finds it; -1 when
    // none does.
    qint64 controlAt(QPointF point) const;

protected:
    void setDescriptionImages(const TVKImageList& names);
    void applyImageSet(const TVKImageList& images);
    void parsePathList(const corvane::PlistValue& pathList);
    void updateMask();
    // The state the keyboard is on.
    qint64 focusIndex() const;
    // The on-screen control the keyboard is on.
    qint64 focusControl() const;
    void stepThroughPicture(int step);
    void stepThroughModelGroup(int step);
    void sendAction();
    // How many controls of the group come before the first shown (the bank's start).
    virtual qsizetype firstShownControl() const { return 0; }

    // Tooltips name the control under the pointer and what it does.
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool hitButton(const QPoint& pos) const override;
    // Extra drawing over the picture (colours of LCD buttons).
    virtual void paintOverlay(QPainter&) {}

    QString m_key;
    qint64 m_tag = 0;
    qint64 m_numImages = 0;
    TVKImageList m_images;
    TVKImageList m_silverImages;
    TVKImageList m_midnightImages;
    TVKHitTestPaths m_hitTestPaths;
    QString m_image;
    QString m_alternateImage;
    std::unique_ptr<TVKMultiStateButtonCell> m_cell;
    QList<int> m_controls;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
    int m_hardwareStyle = 0;
};

// The jog wheel and shuttle ring.
class JogShuttleControl : public TVKMultiStateButton
{
    Q_OBJECT
public:
    using TVKMultiStateButton::TVKMultiStateButton;
    static QString infoKey() { return QStringLiteral("JogShuttleControlInfo"); }
};

// The surface family's jog wheel: its pictures follow the finish.
class CorvaneJogShuttleControl : public JogShuttleControl
{
    Q_OBJECT
public:
    explicit CorvaneJogShuttleControl(QWidget* parent = nullptr);
    int hardwareStyle() const { return m_hardwareStyle; }
    // After a change of finish the jog picture shows images 0 and 1 again.
    void hardwareStyleChanged() override;
};

// The four-way cursor switch.
class VStickControl : public TVKMultiStateButton
{
    Q_OBJECT
public:
    explicit VStickControl(QWidget* parent = nullptr);
    static QString infoKey() { return QStringLiteral("VStickControlInfo"); }
};

// A joystick; this family has none, but a description under its key makes one.
class JoystickControl : public TVKMultiStateButton
{
    Q_OBJECT
public:
    explicit JoystickControl(QWidget* parent = nullptr);
    static QString infoKey() { return QStringLiteral("JoystickControlInfo"); }
};

// A trackball with its ring; the ring shows the trackball's colour in the selected layer.
class TrackballRingControl : public TVKMultiStateButton
{
    Q_OBJECT
public:
    // The ring's number: 0 for the first trackball.
    explicit TrackballRingControl(int trackballNumber, QWidget* parent = nullptr);
    static QString infoKey() { return QStringLiteral("TrackballRingControlInfo"); }

    void awakeFromNib() override;
    void setColor(qint64 color);
    void handleColorChange(const corvane::note::DispColorChange& notice);
    void handleLayerChange();
    int groupID() const;
    int trackballNumber() const { return m_trackballNumber; }
    qint64 color() const { return m_color; }
    // The colour sets by colour index: plain, green, blue, red (and white in the family's ring).
    const std::vector<TVKImageList>& imageList() const { return m_imageList; }

protected:
    // The set at a colour index as the finish shows it.
    virtual TVKImageList finishedSet(const TVKImageList& set) const { return set; }

    int m_trackballNumber = 0;
    qint64 m_color = 0;
    std::vector<TVKImageList> m_imageList;
    TVKImageList m_greenImages;
    TVKImageList m_blueImages;
    TVKImageList m_redImages;
};

// The surface family's ring: a white set, and the finish. In the midnight finish colour 2 shows
// the white pictures in place of the blue ones.
class CorvaneTrackballRingControl : public TrackballRingControl
{
    Q_OBJECT
public:
    explicit CorvaneTrackballRingControl(int trackballNumber, QWidget* parent = nullptr);
    void awakeFromNib() override;
    void hardwareStyleChanged() override;
    const TVKImageList& whiteImages() const { return m_whiteImages; }
    int hardwareStyle() const { return m_hardwareStyle; }

protected:
    TVKImageList finishedSet(const TVKImageList& set) const override;

private:
    TVKImageList m_whiteImages;
};
