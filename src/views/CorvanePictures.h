#pragma once

#include "views/TVKMultiStateButton.h"

#include <QRect>
#include <vector>

class CorvaneSurfaceView;

// A picture that shows one bank of a larger group: the NV's LCD buttons (24 of 240), its
// parameter buttons (the 5 of the chosen function key) and its action buttons (the 4 of the
// chosen parameter). Its states count from the first control of the bank shown.
class CorvaneBankedPicture : public TVKMultiStateButton
{
    Q_OBJECT
public:
    CorvaneBankedPicture(const QString& key, int bankSize, QWidget* parent = nullptr);

    int bankSize() const { return m_bankSize; }
    int bank() const { return m_bank; }
    // Shows another bank; the picture lights the selected control if it lies in that bank.
    void setBank(int bank);

protected:
    qsizetype firstShownControl() const override { return qsizetype(m_bank) * m_bankSize; }

private:
    int m_bankSize;
    int m_bank = 0;
};

// The multi-colour LCD buttons of the TLW, TLW2 and NV: over the key picture, each button's
// little screen shows its colours in the selected layer (the off colour, with the on colour
// along the top), and the NV buttons that belong to a group carry that group's mark.
class CorvaneLCDButtonPicture : public CorvaneBankedPicture
{
    Q_OBJECT
public:
    struct ControlFrame
    {
        int control;
        QRect frame;
    };

    CorvaneLCDButtonPicture(const QString& key, int bankSize, std::vector<ControlFrame> frames,
                            QWidget* parent = nullptr);
    void awakeFromNib() override;

protected:
    void paintOverlay(QPainter& painter) override;

private:
    std::vector<ControlFrame> m_frames;
};

// What the NV shows: the bank of its LCD buttons, and the function key and parameter whose
// parameter and action keys are shown. Touching (or clicking) a bank, function or parameter key,
// or a button of another bank, shows its bank, as the hardware does.
struct CorvaneNVBanks
{
    int bank = 0;
    int function = 0;
    int parameter = 0;

    // Follows the selection of an on-screen control; true when another bank is to be shown.
    bool follow(qint64 group, qint64 control);
    // Shows the banks on the NV's banked pictures and button displays.
    void apply(const CorvaneSurfaceView& surface) const;
};
