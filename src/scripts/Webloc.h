// The browser's bookmark files (".webloc") and the ".url" files made of them. Any thread; reads and writes files.
#pragma once

#include <QByteArray>
#include <QString>

namespace sonorel {

// The address in a bookmark file's bytes, an XML or a binary property list. Throws Failure with the reason.
[[nodiscard]] QString addressInBookmark(const QByteArray &bytes);

// Writes the ".url" file beside the bookmark file, both on the host. Never over a file that is there. Throws Failure.
void convertBookmarkFile(const QString &path);

} // namespace sonorel
