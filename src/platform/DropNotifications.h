// What the drop agent's notifications are called, the keys of what they carry, and the names in them that mean
// something of their own. Fixed: agents and people's scripts post them as they stand here, also where they are
// misspelt. Their form on the session bus: docs/door.md.
#pragma once

#include <QStringView>

namespace sonorel {

inline constexpr QStringView kMusicDrag = u"TrackChute_DragRecieved";
inline constexpr QStringView kPhotoDrag = u"iPhoto_DragRecieved";
inline constexpr QStringView kBookmarkDrag = u"safari_drag_Notification";

inline constexpr QStringView kDraggedFilesKey = u"draggedFiles"; // of a music drag, and of each album
inline constexpr QStringView kPhotoDataKey = u"PhotoData";       // a list of albums
inline constexpr QStringView kAlbumNameKey = u"albumName";
inline constexpr QStringView kTitlesKey = u"Titles";
inline constexpr QStringView kUrlsKey = u"Urls";

// A dragged item that begins so is a radio station and no path.
inline constexpr QStringView kRadioPrefix = u"@~Radio";

// Names that are no list's: files without a list, and two that are never transferred.
inline constexpr QStringView kFinderName = u"Finder";
inline constexpr QStringView kTvShowsName = u"TV Shows";
inline constexpr QStringView kIpodGamesName = u"iPod Games";

} // namespace sonorel
