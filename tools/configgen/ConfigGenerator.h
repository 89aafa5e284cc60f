#include "model/CorvaneModelData.h"
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <random>

class CorvaneModelData;
class TVKControl;
class TVKKeyset;

namespace corvane {

// Builds realistic configurations through the model classes: keysets for typical applications,
// four layers of every control and display, actions mixed the way real keysets mix them (mostly
// special and MIDI actions, some key sequences, emulation, mouse and built-in commands), a user
// name on about one control in twenty, display texts, NV button groups, and an icon on most
// keysets. The same seed always gives the same configuration.
class ConfigGenerator
{
public:
    explicit ConfigGenerator(quint32 seed = 20261121);

    // A configuration of exactly keysetCount keysets (the "Default" keyset is not kept).
    std::unique_ptr<CorvaneModelData> generateConfiguration(int keysetCount);
    // Gives every control and display of the keyset's four layers an action as above.
    void populateKeyset(TVKKeyset& keyset);
    // A square RGBA PNG of the given edge, drawn from the generator's random state.
    QByteArray makeIcon(int edge = 128);

private:
    void populateControl(TVKControl& control);
    void populateDisplay(TVKControl& display);
    int pick(int bound) { return int(m_random() % quint32(bound)); }

    std::mt19937 m_random;
    int m_nameCounter = 0;
};

// Encodes 8-bit RGBA pixels (edge × edge, row by row) as a PNG file without the GUI library.
QByteArray encodePngRgba(const QByteArray& pixels, int edge);

} // namespace corvane
