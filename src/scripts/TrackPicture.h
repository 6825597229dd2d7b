// Which picture belongs to a track: the one in its tags, else a cover, folder or front picture beside it. Any thread;
// reads files.
#pragma once

#include <string>

namespace sonorel {

// As a JPEG. A picture that is broken, empty or larger than kLargestPicture is passed over for the next one. Throws
// std::runtime_error with the reason when there is none left. converter: see jpegOf.
[[nodiscard]] std::string pictureOfTrack(const std::string &track, const std::string &converter);

} // namespace sonorel
