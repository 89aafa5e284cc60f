#pragma once

#include "actions/TVKDisplayAction.h"

// Fixed custom text on a display.
class TVKDisplayTextAction : public TVKLCDDisplayAction
{
public:
    TVKDisplayTextAction() = default;
    explicit TVKDisplayTextAction(TVKControl* control) : TVKLCDDisplayAction(control) {}
    TVKDisplayTextAction(TVKControl* control, const QString& text);
    TVKDisplayTextAction(const corvane::PlistValue& archive, TVKControl* control);

    QString text() override { return m_text; }
    const QString& storedText() const { return m_text; }
    void setText(const QString& text) { m_text = text; }

    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKDisplayTextAction(const TVKDisplayTextAction&) = default;

private:
    QString m_text;
};

class TVKLCDDisplayTextAction : public TVKDisplayTextAction
{
public:
    static constexpr qint32 kActionType = 0x100001;
    using TVKDisplayTextAction::TVKDisplayTextAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKLCDDisplayTextAction(const TVKLCDDisplayTextAction&) = default;
};

// Text of a low-resolution LCD button. It is never restored from a file: such an archived
// action leaves its display without one.
class TVKLCDButtonDisplayTextAction : public TVKDisplayTextAction
{
public:
    static constexpr qint32 kActionType = 0x100401;
    using TVKDisplayTextAction::TVKDisplayTextAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKLCDButtonDisplayTextAction(const TVKLCDButtonDisplayTextAction&) = default;
};

// Up to four lines on a high-resolution LCD button; fewer lines leave room for more characters.
class CorvaneHiResLCDButtonDisplayTextAction : public TVKDisplayTextAction
{
public:
    static constexpr qint32 kActionType = 0x100701;
    static constexpr unsigned kMaxLines = 4;

    CorvaneHiResLCDButtonDisplayTextAction() = default;
    explicit CorvaneHiResLCDButtonDisplayTextAction(TVKControl* control)
        : TVKDisplayTextAction(control)
    {}
    CorvaneHiResLCDButtonDisplayTextAction(TVKControl* control, unsigned lineCount,
                                           const QString& line1, const QString& line2,
                                           const QString& line3, const QString& line4);
    CorvaneHiResLCDButtonDisplayTextAction(const corvane::PlistValue& archive, TVKControl* control);

    // 0 → 0, 1 → 0, 2 → 7, 3 → 8, 4 → 10; a single line has no room, as the service expects.
    static unsigned charsPerLineForLineCount(unsigned lineCount);
    // The first lineCount lines, each cut to the line length, joined by newlines.
    static QString joinLines(unsigned lineCount, const QStringList& lines);

    unsigned lineCount() const { return m_lineCount; }
    unsigned charsPerLine() const { return m_charsPerLine; }

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    CorvaneHiResLCDButtonDisplayTextAction(const CorvaneHiResLCDButtonDisplayTextAction&) = default;
    unsigned m_lineCount = 0;
    unsigned m_charsPerLine = 0;
};
