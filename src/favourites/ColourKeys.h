// The four colour-key lists Red, Green, Yellow and Blue: PlaylistIDs "1" to "4", the first four lists of a music
// favourites file. Pure, except the settings that keep their GUIDs across rebuilds.
#pragma once

#include "core/state/Settings.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"
#include "platform/Desktop.h"
#include "platform/Identifiers.h"

#include <array>

namespace sonorel {

using ColourGuids = std::array<QByteArray, kColourKeys>;

// "CFLGUIDRed" and so on; a missing one is made and stored at once. A save that fails is logged.
[[nodiscard]] ColourGuids colourGuids(Settings &settings, Identifiers &identifiers, Desktop &desktop);
// The key with that index (0 Red to 3 Blue), without titles.
[[nodiscard]] FavouriteList colourKeyList(int index, const ColourGuids &guids);
// "1" to "4".
[[nodiscard]] bool isColourKeyId(const QString &playlistId);

// When one of the four IDs is missing, the four keys are put in front of everything that is there, whatever it holds.
// True when something changed.
bool createCFLEntriesIfMissing(FavouriteLists &lists, const ColourGuids &guids);
// When the four IDs are there but not in front in their order, their first holders are moved there; the rest keeps
// its order. True when something changed.
bool moveColourKeysToFront(FavouriteLists &lists);

} // namespace sonorel
