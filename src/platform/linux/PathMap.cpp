#include "platform/linux/PathMap.h"

#include "platform/ApplicationPaths.h"

#include <QStringList>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QLatin1String kVolumes("/Volumes");
constexpr QLatin1String kTemporary("/private/tmp");
// What is set aside beside them keeps the name and adds an extension.
constexpr std::array<QStringView, 2> kPropertyFiles{kClientPropertyFile, kAgentPropertyFile};

bool isAtOrBelow(QStringView path, QStringView folder) {
  return path.startsWith(folder) && (path.size() == folder.size() || path.at(folder.size()) == u'/');
}

// A lone surrogate would silently become another character, a NUL would cut the path.
bool hasHostForm(const QString &path) {
  return !path.contains(QChar(0)) && path.isValidUtf16();
}

QString cleanRoot(const QString &path) {
  return PathMap::cleaned(path).value_or(QString());
}

bool isPropertyFile(QStringView cleanedPath) {
  if (!isAtOrBelow(cleanedPath, kAppDataPath)) {
    return false;
  }
  const QStringView rest = cleanedPath.mid(kAppDataPath.size() + 1);
  for (const QStringView name : kPropertyFiles) {
    if (rest.startsWith(name) && (rest.size() == name.size() || rest.at(name.size()) == u'.')) {
      return true;
    }
  }
  return false;
}

} // namespace

PathMap::PathMap(Roots roots) : m_roots(std::move(roots)) {
  for (QString *root : {&m_roots.data, &m_roots.runtime, &m_roots.home, &m_roots.resources, &m_roots.scripts,
                        &m_roots.embedded, &m_roots.agent, &m_roots.mountProgram, &m_roots.unmountProgram}) {
    *root = cleanRoot(*root);
  }
  const QString resources = kBundleResourcesPath.toString();
  m_rows.append({kVolumes, m_roots.runtime + kVolumes});
  if (m_roots.home.size() > 1) {
    m_rows.append({m_roots.home + u"/Library"_s, m_roots.data + u"/Home/Library"_s});
  }
  m_rows.append({u"/Library"_s, m_roots.data + u"/Library"_s});
  m_rows.append({resources + u'/' + kAgentProgram.toString(), m_roots.agent});
  m_rows.append({resources, m_roots.resources});
  m_rows.append({kAppDataPath.toString(), m_roots.scripts});
  m_rows.append({kTemporary, m_roots.data + u"/Temporary"_s});
  if (rowOf(m_roots.data) != nullptr) {
    m_rows.prepend({m_roots.data, m_roots.data}); // not led elsewhere a second time
  }
}

std::optional<QString> PathMap::cleaned(const QString &path) {
  if (!path.startsWith(u'/') || !hasHostForm(path)) {
    return std::nullopt;
  }
  QStringList parts;
  for (const QString &part : path.split(u'/', Qt::SkipEmptyParts)) {
    if (part == u".."_s) {
      if (!parts.isEmpty()) {
        parts.removeLast();
      }
    } else if (part != u"."_s) {
      parts.append(part);
    }
  }
  return u'/' + parts.join(u'/');
}

QString PathMap::volumeName(const QString &cleanedPath) {
  const qsizetype start = kVolumes.size() + 1;
  if (!isAtOrBelow(cleanedPath, u"/Volumes") || cleanedPath.size() <= start) {
    return {};
  }
  const qsizetype end = cleanedPath.indexOf(u'/', start);
  return cleanedPath.mid(start, end < 0 ? -1 : end - start);
}

QString PathMap::belowVolume(const QString &cleanedPath) {
  const qsizetype end = cleanedPath.indexOf(u'/', kVolumes.size() + 1);
  return volumeName(cleanedPath).isEmpty() || end < 0 ? QString() : cleanedPath.mid(end + 1);
}

QString PathMap::hostVolumes() const {
  return m_roots.runtime + kVolumes;
}

const PathMap::Row *PathMap::rowOf(const QString &cleanedPath) const {
  for (const Row &row : m_rows) {
    if (isAtOrBelow(cleanedPath, row.logical)) {
      return &row;
    }
  }
  return nullptr;
}

std::optional<QString> PathMap::host(const QString &path) const {
  const auto clean = cleaned(path);
  if (!clean) {
    return std::nullopt;
  }
  if (isPropertyFile(*clean)) {
    return m_roots.data + u"/App Data"_s + clean->mid(kAppDataPath.size());
  }
  const Row *row = rowOf(*clean);
  return row == nullptr ? *clean : row->host + clean->mid(row->logical.size());
}

std::optional<QString> PathMap::fromOutside(const QString &hostPath, QString *reason) const {
  const auto refuse = [reason](const QString &why) {
    if (reason != nullptr) {
      *reason = why;
    }
    return std::nullopt;
  };
  const auto clean = cleaned(hostPath);
  if (!clean) {
    return refuse(u"not an absolute path: "_s + hostPath);
  }
  const QString volumes = hostVolumes();
  if (isAtOrBelow(*clean, volumes) && clean->size() > volumes.size() + 1) {
    return kVolumes + clean->mid(volumes.size());
  }
  if (const Row *row = rowOf(*clean)) {
    return refuse(u"the names below "_s + row->logical + u" are the program's own: "_s + *clean);
  }
  return *clean;
}

} // namespace sonorel
