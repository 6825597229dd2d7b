// A picture as the players show it: a JPEG. One that is a JPEG already stays byte for byte; any other is converted by
// a program of its own, because a track whose picture is a JPEG need not load what decodes all the others. Any
// thread.
#pragma once

#include <string>
#include <string_view>

namespace sonorel {

inline constexpr std::size_t kLargestPicture = 64UL * 1024 * 1024; // bytes; covers have a hundredth of it

// The head of a JPEG up to its first scan. What follows is not looked at.
[[nodiscard]] bool isJpeg(std::string_view bytes);

// converter: the host path of the program that reads a picture and writes a JPEG. Throws std::runtime_error with the
// reason when the bytes are no picture.
[[nodiscard]] std::string jpegOf(std::string bytes, const std::string &converter);

} // namespace sonorel
