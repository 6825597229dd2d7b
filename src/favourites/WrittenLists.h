// Tells lists that stand on the server already from those that still have to be written. Pure.
#pragma once

#include "favourites/FavouritesModel.h"

namespace sonorel {

enum class MergeTry {
  First,
  Again, // a failed write may have come through after all: lists that stand there by their GUIDs are left out
};

// The new lists that do not stand among the stored ones; all of them at the first try.
[[nodiscard]] std::vector<NewList> stillToWrite(std::vector<NewList> newLists, const FavouriteLists &stored,
                                                MergeTry kind);

} // namespace sonorel
