// What many tests start from: the standard folder values, the shipped resources, a mounted share.
#pragma once

#include "core/state/ShareLayout.h"
#include "support/FakeFileSystem.h"
#include "support/Printers.h"

namespace sonorel::test {

// The folder values of the shipped client property file.
[[nodiscard]] ShareFolders standardFolders();
// The resource folder, ending in "/".
[[nodiscard]] QString resourceFolder();
// A shipped file, by its path below the resources; throws when it is missing.
[[nodiscard]] QByteArray shipped(const QString &name);
// The shipped English strings file in the resource folder of the fake tree.
void installStrings(FakeFileSystem &files);
// The share mounted, with its five folders, the product's name file and nothing else.
void mountShare(FakeFileSystem &files, const QString &productName = QStringLiteral("Auracore 5"));

} // namespace sonorel::test
