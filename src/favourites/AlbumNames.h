// The album attribute of dropped files, from the tags that the transfer has read already. Worker thread; blocks on
// the disk where a file was not read before.
#pragma once

#include "platform/Desktop.h"
#include "platform/Metadata.h"

#include <QString>

#include <functional>
#include <optional>

namespace sonorel {

class AlbumNames {
public:
  using Tags = std::function<std::optional<TrackTags>(const QString &path)>;

  // tags keeps what it has read; desktop must outlive the object.
  AlbumNames(Tags tags, Desktop &desktop) : m_tags(std::move(tags)), m_desktop(desktop) {}

  // Empty when the file has none; attributes that cannot be read are logged and count as none.
  [[nodiscard]] QString albumOf(const QString &sourceSongPath) const;

private:
  Tags m_tags;
  Desktop &m_desktop;
};

} // namespace sonorel
