#include "core/state/PathNames.h"

#include <algorithm>

namespace sonorel {

namespace {

qsizetype dotBeforeExtension(const QString &name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  return dot > 0 ? dot : -1;
}

} // namespace

QString lastPathComponent(const QString &path) {
  qsizetype end = path.size();
  while (end > 0 && path[end - 1] == u'/') {
    --end;
  }
  const qsizetype slash = end > 0 ? path.lastIndexOf(u'/', end - 1) : -1;
  return path.mid(slash + 1, end - slash - 1);
}

QString pathExtension(const QString &path) {
  const QString name = lastPathComponent(path);
  const qsizetype dot = dotBeforeExtension(name);
  return dot < 0 ? QString() : name.mid(dot + 1);
}

QString nameWithoutExtension(const QString &path) {
  const QString name = lastPathComponent(path);
  const qsizetype dot = dotBeforeExtension(name);
  return dot < 0 ? name : name.left(dot);
}

bool isPlainPath(const QString &path) {
  if (!path.startsWith(u'/')) {
    return false;
  }
  const auto components = QStringView(path).sliced(1).split(u'/');
  return std::none_of(components.begin(), components.end(), [](QStringView component) {
    return component.isEmpty() || component == u"." || component == u"..";
  });
}

QString withExtension(const QString &name, const QString &extension) {
  return extension.isEmpty() ? name : name + u'.' + extension;
}

} // namespace sonorel
