// The names that a track gets on the server: from its tags, by the new and by the older scheme, and the limit of 221.
// Lengths are UTF-16 units. Pure functions over tags; any thread. A track whose file no reader knows has no tags at
// all (nullopt), which is different from a file without tags.
#pragma once

#include "core/state/TrackTexts.h"
#include "platform/Metadata.h"

#include <QString>

#include <optional>

namespace sonorel {

inline constexpr qsizetype kNameLimit = 221; // a relative name stays below

[[nodiscard]] TrackTexts trackTexts(const TrackTags &tags);

// The new-style file name of a source.
[[nodiscard]] QString changeSongFileName(const QString &sourcePath, const std::optional<TrackTags> &tags);
// The earlier scheme, under which tracks may lie on the share already.
[[nodiscard]] QString changeSongFileNameOlderWay(const QString &sourcePath, const std::optional<TrackTags> &tags);
// What a person calls the track: title, else album, else artists, else the end of the file name.
[[nodiscard]] QString getTitleOfTrack(const QString &sourcePath, const std::optional<TrackTags> &tags);
[[nodiscard]] QString returnsTitle(const QString &text);

// Shortens a name without extension; a plain name is never cut.
[[nodiscard]] QString truncateFileName(const QString &name);
// The limit rule on a relative name with extension: the folder part stays, the name part is shortened.
[[nodiscard]] QString withinNameLimit(const QString &relativeName);
// Drops leading folders while the relative name is too long, then applies the limit rule.
[[nodiscard]] QString shortenedRelativeName(const QString &relativeName);
// "Artist/Album/", "Album/" or nothing, from the components of the source path, cleaned.
[[nodiscard]] QString hierarchyFolder(const QString &sourcePath, bool withArtist);

} // namespace sonorel
