// Places a picture on the share: written beside first and then renamed, so that no player ever sees half of one, and
// not written at all when it stands there already. Main thread; blocks on the share.
#pragma once

#include <string>
#include <string_view>

namespace sonorel {

// The folder below the music folder that a text like "Artist:Album:" means; the music folder itself for an empty one.
// Throws std::invalid_argument for a text that would lead elsewhere.
[[nodiscard]] std::string pictureFolder(const std::string &musicFolder, const std::string &folders);

// What an earlier run for the same client left in the folder when it was killed. temporaryName is that client's
// alone; empty: it has none. Throws std::invalid_argument for what is no temporary name.
void removeLeftOver(const std::string &folder, const std::string &temporaryName);

// name: with its extension. temporaryName: as above; a random one when it is empty. Throws std::runtime_error or
// std::system_error; then nothing has changed.
void placePicture(const std::string &folder, const std::string &name, std::string_view bytes,
                  const std::string &temporaryName = {});

// From now on a request to end (SIGTERM), or the end of the process that has started this one, makes placePicture
// stop and leave nothing behind.
void obeyRequestsToEnd();

} // namespace sonorel
