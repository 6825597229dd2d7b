// Reading and writing of whole files at a place on the host, with every error of the operating system turned into a
// failure. shown is the path for the failure's text. Any thread; may block.
#pragma once

#include "platform/FileSystem.h"
#include "platform/linux/Volumes.h"

#include <sys/stat.h>
#include <sys/types.h>

namespace sonorel {

// nullopt when there is certainly none; throws Unknown otherwise.
[[nodiscard]] std::optional<struct stat> statOf(const Place &place, Links links, const QString &shown);
[[nodiscard]] FileAttributes attributesOf(const struct stat &facts);
// Opens a regular file and nothing else: not even a FIFO that would block.
[[nodiscard]] FileDescriptor openForReading(const Place &place, const QString &shown);
// Creates it when missing; empty in any case.
[[nodiscard]] FileDescriptor openForWriting(const Place &place, const QString &shown);
// Fails with Exists.
[[nodiscard]] FileDescriptor createNew(const Place &place, mode_t mode, const QString &shown);
void writeAll(const FileDescriptor &file, const QByteArray &bytes, const QString &shown);
void syncToDisk(const FileDescriptor &file, const QString &shown);
// What a network file system could not write may be reported only here.
void closeChecked(FileDescriptor file, const QString &shown);
// A new file with these bytes; a half-written one is removed unless the volume does not answer.
void writeNew(const Place &place, const QByteArray &bytes, const QString &shown);

} // namespace sonorel
