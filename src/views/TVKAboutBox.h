#pragma once

#include <QDialog>

class QVariantAnimation;

// The about box: the RS main unit, the program's name, version and maker. play() runs the
// surface's start-up light sweep across the picture once.
class TVKAboutBox : public QDialog
{
    Q_OBJECT
public:
    explicit TVKAboutBox(QWidget* parent = nullptr);
    void play();
    bool isPlaying() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVariantAnimation* m_sweep = nullptr;
    qreal m_position = -1; // where the sweep is, across the picture; below 0 when still
};
