// The drops that the sweeps disturb.
#pragma once

#include "World.h"

#include <string>

namespace sonorel::test {

struct Scenario {
  std::string name;
  // Furnishes the local disk and the share; may let an undisturbed client work first.
  std::function<Dropped(World &)> prepare;
  // A title of the favourites from before may be gone while a client that died was replacing its file.
  bool replacesFiles = false;
  // A colour key takes a second drop of the same albums otherwise than the first: it is only looked into.
  bool onColourKey = false;
  // Tracks whose copy failed stand under the source's own name for good: own name to new name.
  QMap<QByteArray, QByteArray> ownNames;
  // What stands on the share at the end, and how many runs of tools it takes at least.
  QString placed = QStringLiteral("Music/Mac/Ben/Second/Ben-Second-Three.m4a");
  int tools = 3;
};

[[nodiscard]] const std::vector<Scenario> &scenarios();
// A client starts, connects, transfers the drop and ends.
void playUndisturbed(World &world, const Dropped &dropped);

} // namespace sonorel::test
