// Which kind of item a file is, by its extension, compared ignoring case. Pure; any thread.
#pragma once

#include <QStringView>

namespace sonorel {

enum class FileType { Sound, PhotoOrVideo, Bookmark, Invalid };

[[nodiscard]] bool checkFileType(QStringView extension, QStringView fileType);
[[nodiscard]] FileType fileTypeOf(QStringView extension);

} // namespace sonorel
