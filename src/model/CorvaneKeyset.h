#pragma once

#include "model/TVKKeyset.h"

#include <memory>
#include <vector>

class CorvaneLayer;

// The keyset of the surface family: CorvaneLayer layers, the reversed R and B rows, and the NV
// button-group operations, which always mean the layer selected in the model data.
class CorvaneKeyset : public TVKKeyset
{
public:
    // initWithOwner: the "Default" keyset, signature "----".
    explicit CorvaneKeyset(TVKModelData* owner);
    // initWithName:signature:andOwner: (bundle identifier: the empty text).
    CorvaneKeyset(const QString& name, corvane::FourCharCode signature, TVKModelData* owner);
    // initWithName:signature:appID:andOwner:
    CorvaneKeyset(const QString& name, corvane::FourCharCode signature,
                  std::optional<QString> bundleID, TVKModelData* owner);
    // initFromArchive:withOwner:
    CorvaneKeyset(const corvane::PlistValue& archive, TVKModelData* owner);

    void createLayers() override;
    std::unique_ptr<TVKLayer> createLayerFromArchive(const corvane::PlistValue& dict,
                                                     int index) override;
    std::unique_ptr<TVKKeyset> copyWithoutEmulation() const override;
    void writeTo(corvane::PlistValue& dict) const override;

    bool reverseRBButtons() const { return m_reverseRBButtons; }
    void setReverseRBButtons(bool reverse) { m_reverseRBButtons = reverse; }

    // NV button groups of the selected layer.
    void createCorvaneNVGroupNamed(const QString& name);
    QString nameOfGroupWithID(int group) const;
    int numCorvaneNVGroups() const;
    void addButtonID(int button, int group);
    void deleteButtonID(int button, int group);
    bool buttonID(int button, int& group) const;
    void deleteCorvaneNVGroup(int group);
    const corvane::PlistValue* corvaneNVGroupWithID(int group) const;
    int corvaneNVGroupForButtonWithID(int button) const;
    int nextAvailableCorvaneNVGroupColor();
    void putBackCorvaneNVGroupColor(int color);
    int colorForCorvaneNVGroupWithID(int group) const;
    int colorForCorvaneNVGroup(const corvane::PlistValue& group) const;
    const std::vector<corvane::PlistValue>* corvaneNVGroups() const;

private:
    // The layer at the owner's selected layer index (layer 0 without an owner).
    CorvaneLayer* selectedCorvaneLayer() const;
    // Fresh layers at the indices an archive did not fill.
    void createMissingLayers();

    bool m_reverseRBButtons = false;
};
