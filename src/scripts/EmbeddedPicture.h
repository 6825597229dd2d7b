// The album picture that a sound file carries in its tags: mp3, aac, flac, mp4, m4a, wma. Any thread; reads the file.
#pragma once

#include <string>

namespace sonorel {

// The front cover, else the first picture; empty when there is none, or when the file's tags make no sense. The kind
// of the file is told by its extension, in any case. The bytes are the file's own and may be anything.
[[nodiscard]] std::string embeddedPicture(const std::string &track);

} // namespace sonorel
