// The limits of the four colour keys: how many items a key may hold and whether that counts. The client reads and
// edits the product's limits file and never creates it. Worker thread; blocks on the share. See LimitsFile.h.
#pragma once

#include "core/state/ShareLayout.h"
#include "favourites/FavouritesModel.h"
#include "favourites/LimitsFile.h"
#include "favourites/LimitsRewrite.h"
#include "platform/Desktop.h"
#include "platform/Failure.h"
#include "platform/FileSystem.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace sonorel {

class ColourLimits {
public:
  // quit asks for an orderly end of the program that waits for the worker: a limits file that cannot be edited is not
  // to be worked on any further. What the tools refer to must outlive the object.
  ColourLimits(const LimitsRewrite::Tools &tools, const ShareFolders &folders, std::function<void()> quit);

  // False when there is no limits file or it cannot be read now; the values keep what they were, also when the file
  // is damaged (logged).
  bool presentLimitSettings();
  void setLimitInOrvFile(const QString &enables, const QString &limits);
  // Adapts the limits of the changed colour keys to what stands on them now, and writes all of them.
  void executeLimitOperatingLogic(const QStringList &changedNames, const FavouriteLists &lists);
  // At connect: completes the file when this client was interrupted in the middle of writing it. Throws nothing;
  // failures are logged.
  void completeInterruptedWrite();
  // Enables all four, keeping their numbers.
  void enableCFLLimits();

  [[nodiscard]] const KeyLimits &values() const { return m_values; }

private:
  // A damaged file ends the program. Values that were not read are not written, although it may be whole by now.
  bool giveUpDamaged();
  void failEdit(const std::exception &exception);

  Desktop &m_desktop;
  LimitsRewrite m_file;
  std::function<void()> m_quit;
  KeyLimits m_values;
  std::optional<Failure> m_damage; // of the file at the last look
};

} // namespace sonorel
