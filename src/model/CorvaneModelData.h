#pragma once

#include "model/TVKModelData.h"

class CorvaneKeyset;

// The model data of the surface family: makes CorvaneKeyset keysets, starts with the "Default"
// keyset, keeps the stand-alone expander flags and the hardware style, and forwards the NV
// button-group operations to the selected keyset.
class CorvaneModelData : public TVKModelData
{
public:
    // The class version the archiver records.
    static constexpr int kClassVersion = 1;

    // init: the "Default" keyset alone.
    CorvaneModelData();
    // initWithArchive:
    explicit CorvaneModelData(const corvane::PlistValue& archive);

    std::unique_ptr<TVKKeyset> createKeysetWithName(const QString& name,
                                                    corvane::FourCharCode signature) override;
    std::unique_ptr<TVKKeyset> createKeysetWithName(const QString& name,
                                                    corvane::FourCharCode signature,
                                                    const QString& bundleID) override;
    std::unique_ptr<TVKKeyset> createKeysetWithPropertiesOfKeyset(const TVKKeyset& source) override;
    std::unique_ptr<TVKKeyset> createKeysetFromArchive(const corvane::PlistValue& dict) override;

    void writeTo(corvane::PlistValue& dict) const override;

    bool standaloneTL() const { return m_standaloneTL; }
    void setStandaloneTL(bool on) { m_standaloneTL = on; }
    bool standaloneTLW() const { return m_standaloneTLW; }
    void setStandaloneTLW(bool on) { m_standaloneTLW = on; }
    bool standaloneTLW2() const { return m_standaloneTLW2; }
    void setStandaloneTLW2(bool on) { m_standaloneTLW2 = on; }
    bool standaloneNV() const { return m_standaloneNV; }
    void setStandaloneNV(bool on) { m_standaloneNV = on; }
    bool standaloneDZ() const { return m_standaloneDZ; }
    void setStandaloneDZ(bool on) { m_standaloneDZ = on; }
    int hardwareStyle() const { return m_hardwareStyle; }
    void setHardwareStyle(int style) { m_hardwareStyle = style; }

    // NV button groups of the selected keyset's selected layer.
    void createCorvaneNVGroupNamed(const QString& name);
    QString nameOfGroupWithID(int group) const;
    int numCorvaneNVGroups() const;
    void addButtonID(int button, int group);
    void deleteButtonID(int button, int group);
    bool buttonID(int button, int& group) const;
    void deleteCorvaneNVGroup(int group);
    const corvane::PlistValue* corvaneNVGroupWithID(int group) const;
    int corvaneNVGroupForButtonWithID(int button) const;
    int colorForCorvaneNVGroup(const corvane::PlistValue& group) const;
    int colorForCorvaneNVGroupWithID(int group) const;

private:
    CorvaneKeyset* selectedCorvaneKeyset() const;

    int m_hardwareStyle = 0;
    bool m_standaloneTL = false;
    bool m_standaloneTLW = false;
    bool m_standaloneTLW2 = false;
    bool m_standaloneNV = false;
    bool m_standaloneDZ = false;
};
