// What a drag holds, as one Drop: which entries are queued, which tracks and pictures get a record, and of which list
// or album. Reads no tags and nothing of the share; dropOf asks whether the dropped files are there, the rest is
// pure. Controller's thread. Read next: DropIntake.h for the caller.
#pragma once

#include "core/state/TransferBoard.h"
#include "platform/FileSystem.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>

namespace sonorel {

// A source of the music program that no product can play, or a drag of nothing.
[[nodiscard]] bool isNotTransferable(const QString &name, const QStringList &paths);

// A drag of files under the name of a playlist, of a colour key, of none, or of the file browser, whose paths are
// queued without a look and without records.
[[nodiscard]] Drop dropOf(const QString &name, const QStringList &paths, FileSystem &files,
                          const QString &deviceName);

// Albums of the picture program: "albumName" and "draggedFiles" of each. imagesOf tells the image behind each path
// and is asked once for all.
[[nodiscard]] Drop dropOfAlbums(const QVariantList &photoData,
                                const std::function<QStringList(const QStringList &)> &imagesOf);

// Pairs up to the shorter of the two lists.
[[nodiscard]] Drop dropOfBookmarks(const QStringList &titles, const QStringList &urls);

} // namespace sonorel
