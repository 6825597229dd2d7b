// What everything that carries an item works with. All of it must outlive the object.
#pragma once

#include "core/state/TransferBoard.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Processes.h"
#include "platform/Scripts.h"
#include "transfer/MetadataCache.h"

#include <QString>

namespace sonorel {

struct TransferTools {
  FileSystem &files;
  Processes &processes;
  Scripts &scripts;
  Clock &clock;
  Desktop &desktop;
  MetadataCache &metadata;
  TransferBoard &board;
  QString homePath = {}; // the user's home folder, no "/" at its end
};

} // namespace sonorel
