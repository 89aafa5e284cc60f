#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"

#include <QString>
#include <memory>

class TVKControl;

// What a control does, or what a display shows. Every concrete class has:
//   - a constructor taking the owning control (the system's initWithControl:),
//   - a constructor (const corvane::PlistValue& archive, TVKControl* control) that restores it
//     (initWithArchive:andControl:),
//   - copyWithZone(), a deep copy sharing nothing mutable with its source and pointing at the
//     same owning control.
// The control owns its action; the action's link back to the control is non-owning.
class TVKAction
{
public:
    TVKAction() = default;
    explicit TVKAction(TVKControl* control) : m_owningControl(control) {}
    TVKAction(const corvane::PlistValue& archive, TVKControl* control);
    virtual ~TVKAction() = default;

    virtual std::unique_ptr<TVKAction> copyWithZone() const = 0;
    // The one-line text the inspector and the keyset summary show; the base has none.
    virtual QString actionDescriptor() const { return QString(); }
    // The class's action type code; the base has none.
    virtual qint32 actionType() const { return 0; }
    // The inspector tab that edits this kind of action; 0 when there is none.
    virtual corvane::FourCharCode editorTabID() const;
    // Stores "TVKActnType"; subclasses call this first, then add their own keys.
    virtual void writeTo(corvane::PlistValue& dict) const;

    TVKControl* owningControl() const { return m_owningControl; }
    void setOwningControl(TVKControl* control) { m_owningControl = control; }

protected:
    TVKAction(const TVKAction&) = default;
    TVKAction& operator=(const TVKAction&) = default;

private:
    TVKControl* m_owningControl = nullptr;
};

// A family whose classes differ only in the kind of control they serve (built-in, mouse and
// special actions): each such class is its family's base with its own type code and a copy of
// its own class.
#define CORVANE_ACTION_FOR_CONTROL_KIND(Class, Base, Type)                                         \
    class Class final : public Base                                                                \
    {                                                                                              \
    public:                                                                                        \
        static constexpr qint32 kActionType = Type;                                                \
        using Base::Base;                                                                          \
        std::unique_ptr<TVKAction> copyWithZone() const override                                   \
        {                                                                                          \
            return std::unique_ptr<TVKAction>(new Class(*this));                                   \
        }                                                                                          \
        qint32 actionType() const override { return kActionType; }                                 \
                                                                                                   \
    private:                                                                                       \
        Class(const Class&) = default;                                                             \
    };
