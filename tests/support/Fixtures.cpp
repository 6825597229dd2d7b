#include "support/Fixtures.h"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

ShareFolders standardFolders() {
  ShareFolders folders;
  folders.volume = u"/Volumes/"_s;
  folders.sharedFolder = u"VB-SHARE$"_s;
  folders.systemFolder = u"/System/"_s;
  folders.musicFolder = u"/Music/"_s;
  folders.photoFolder = u"/Photo/"_s;
  folders.videoFolder = u"/Video/"_s;
  folders.favoriteFolder = u"/Favorites/"_s;
  folders.macFolder = u"Mac/"_s;
  return folders;
}

QString resourceFolder() {
  return u"/Applications/Sonorel/Sonorel.app/Contents/Resources/"_s;
}

QByteArray shipped(const QString &name) {
  const std::string path = std::string(SONOREL_RESOURCES) + "/" + name.toStdString();
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("no such resource: " + path);
  }
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return QByteArray::fromStdString(bytes);
}

void installStrings(FakeFileSystem &files) {
  files.put(resourceFolder() + u"StringsEnglish"_s, shipped(u"StringsEnglish"_s));
}

void mountShare(FakeFileSystem &files, const QString &productName) {
  const QString root = kMountPoint.toString();
  files.mount(root);
  for (const QString &folder : {u"/System"_s, u"/Music"_s, u"/Photo"_s, u"/Video"_s, u"/Favorites"_s}) {
    files.makeFolders(root + folder);
  }
  files.put(root + u"/System/OrvProductName.orv"_s, productName.toUtf8());
}

} // namespace sonorel::test
