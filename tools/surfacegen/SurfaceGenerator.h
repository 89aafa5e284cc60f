#pragma once

#include <QString>
#include <QStringList>

// Generates everything the windows draw from the unit layouts: the panel pictures and their lit
// counterparts in both finishes at device pixel ratios 1 and 2, the picture buttons' descriptions
// (images and hit outlines, "Info.plist"), the image table that composes each state picture
// ("Images.plist"), the windows' placement table ("Surfaces.plist"), the summary's group icons
// and the connection images.
namespace surfacegen {

struct Options
{
    QStringList layouts; // layout sources, in the order the units are listed
    QString outputDir;
};

// False with the reason printed when a layout cannot be read or a file cannot be written.
bool generate(const Options& options, QString& error);

} // namespace surfacegen
